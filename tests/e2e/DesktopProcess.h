#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace stavelin::e2e {

using Environment = std::map<std::string, std::string>;

/// One program that a test started, in a process group of its own. The destructor ends it.
class DesktopProcess
{
public:
    struct Command
    {
        std::vector<std::string> arguments; ///< the program first, found by PATH
        Environment environment;            ///< all of it, nothing is inherited
        std::filesystem::path output;       ///< gets standard output and standard error
    };

    /// Throws Unmet when the program cannot be started.
    explicit DesktopProcess(const Command &command);
    ~DesktopProcess();
    DesktopProcess(const DesktopProcess &) = delete;
    DesktopProcess &operator=(const DesktopProcess &) = delete;

    [[nodiscard]] pid_t id() const { return m_id; }
    [[nodiscard]] bool isRunning();

    void signal(int number) const;
    void signalGroup(int number) const;

    /// False when it still runs after `deadline`.
    bool waitForEnd(std::chrono::milliseconds deadline);

    /// Asks it to end; kills it when it does not within two seconds.
    void end();

    /// What it wrote until now.
    [[nodiscard]] std::string output() const;

private:
    std::filesystem::path m_output;
    pid_t m_id = -1;
    bool m_hasEnded = false;
};

/// The whole content of a file, empty when there is none.
[[nodiscard]] std::string contentOf(const std::filesystem::path &file);

/// The running processes of this exact name (at most 15 characters count), zombies left out.
[[nodiscard]] std::vector<pid_t> processesNamed(const std::string &name);

} // namespace stavelin::e2e
