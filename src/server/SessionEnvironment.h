#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace stavelin::server {

/// The user's session, found from a process that was started with an empty environment: HOME, XDG_DATA_HOME,
/// XDG_RUNTIME_DIR, DISPLAY, XAUTHORITY, WAYLAND_DISPLAY, DBUS_SESSION_BUS_ADDRESS. Each question looks
/// afresh, since the session may end and another begin. Copies may be asked on any thread.
class SessionEnvironment
{
public:
    using Variables = std::map<std::string, std::string, std::less<>>;

    /// Where it looks.
    struct Sources
    {
        Variables own;                  ///< this process's environment
        std::filesystem::path procRoot; ///< "/proc"
        std::function<pid_t()> parent;
        uid_t uid = 0;              ///< whose processes are believed
        std::filesystem::path home; ///< as the user database has it; may be empty
    };
    [[nodiscard]] static Sources sourcesOfThisProcess();

    explicit SessionEnvironment(Sources sources);

    /// The first of: this process's environment, the parent's if it is of the same user, for HOME the user
    /// database, and what most of the user's other processes have. An empty value counts as none.
    [[nodiscard]] std::optional<std::string> find(std::string_view name) const;

    /// A display and the file with the key to it.
    struct Display
    {
        std::string name;
        std::optional<std::filesystem::path> authority;

        friend bool operator==(const Display &, const Display &) = default;
    };
    /// The displays that the same sources name, in the same order, each once.
    [[nodiscard]] std::vector<Display> displays() const;

    /// $XDG_DATA_HOME, or .local/share in the home folder. Nothing when there is no home folder.
    [[nodiscard]] std::optional<std::filesystem::path> dataFolder() const;

private:
    [[nodiscard]] std::optional<Variables> environmentOf(pid_t process) const;
    [[nodiscard]] Variables environmentOfParent() const;
    /// Those of the user's other processes that have a display, each with the number of processes in which
    /// this set of variables is found; the most frequent first.
    [[nodiscard]] std::vector<Variables> environmentsOfSession() const;
    [[nodiscard]] std::optional<std::filesystem::path> authorityIn(const Variables &variables) const;

    Sources m_sources;
};

} // namespace stavelin::server
