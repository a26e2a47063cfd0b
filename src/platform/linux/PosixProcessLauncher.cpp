#include "platform/linux/PosixProcessLauncher.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace stavelin::platform {

namespace {

constexpr int firstExtraDescriptor = 3;

/// A descriptor above the standard three for the child's output, or -1.
class OutputFile
{
public:
    explicit OutputFile(const std::optional<std::filesystem::path> &path)
    {
        if (!path)
            return;
        const int opened = ::open(path->c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        if (opened < 0 || opened >= firstExtraDescriptor) {
            m_descriptor = opened;
            return;
        }
        // This process runs with one of the standard three closed: setting the child's up would overwrite the
        // file's.
        m_descriptor = ::fcntl(opened, F_DUPFD_CLOEXEC, firstExtraDescriptor);
        ::close(opened);
    }
    ~OutputFile()
    {
        if (isOpen())
            ::close(m_descriptor);
    }
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int descriptor() const { return m_descriptor; }

private:
    int m_descriptor = -1;
};

class FileActions
{
public:
    explicit FileActions(const OutputFile &output)
    {
        ::posix_spawn_file_actions_init(&m_actions);
        ::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (output.isOpen()) {
            ::posix_spawn_file_actions_adddup2(&m_actions, output.descriptor(), STDOUT_FILENO);
            ::posix_spawn_file_actions_adddup2(&m_actions, output.descriptor(), STDERR_FILENO);
        }
        ::posix_spawn_file_actions_addclosefrom_np(&m_actions, firstExtraDescriptor);
    }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t *get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

class Attributes
{
public:
    Attributes()
    {
        ::posix_spawnattr_init(&m_attributes);
        ::posix_spawnattr_setflags(&m_attributes,
                                   POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&m_attributes, &signals);
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&m_attributes, &signals);
    }
    ~Attributes() { ::posix_spawnattr_destroy(&m_attributes); }
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;

    [[nodiscard]] const posix_spawnattr_t *get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes{};
};

/// Waits for the child on a thread of its own, which costs nothing while it sleeps. A handler for SIGCHLD or
/// ignoring that signal would change how every other child of this process ends; an intermediate process that
/// does the waiting would take this process's place as the child's parent.
void leaveNoZombie(pid_t child)
{
    std::thread([child] {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }).detach();
}

} // namespace

std::expected<int, LaunchError> PosixProcessLauncher::launch(const LaunchRequest &request)
{
    std::vector<std::string> variables;
    std::vector<char *> environment;
    variables.reserve(request.environment.size()); // so that the texts stay where they are
    environment.reserve(request.environment.size() + 1);
    for (const auto &[name, value] : request.environment)
        environment.push_back(variables.emplace_back(name).append(1, '=').append(value).data());
    environment.push_back(nullptr);

    std::string executable = request.executable.native();
    const std::array<char *, 2> arguments{executable.data(), nullptr};

    const OutputFile output(request.outputFile);
    const FileActions actions(output);
    const Attributes attributes;
    pid_t child = 0;
    const int error = ::posix_spawn(&child, executable.c_str(), actions.get(), attributes.get(),
                                    arguments.data(), environment.data());
    if (error != 0)
        return std::unexpected(LaunchError{.description = std::generic_category().message(error)});
    leaveNoZombie(child);
    return child;
}

} // namespace stavelin::platform
