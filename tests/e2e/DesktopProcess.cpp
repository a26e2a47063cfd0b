#include "e2e/DesktopProcess.h"

#include "e2e/Unmet.h"
#include "e2e/Wait.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace stavelin::e2e {

namespace {

std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

DesktopProcess::DesktopProcess(const Command &command) : m_output(command.output)
{
    std::vector<std::string> arguments = command.arguments;
    std::vector<std::string> variables;
    for (const auto &[name, value] : command.environment) {
        variables.push_back(name + "=" + value);
    }

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, m_output.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                     0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setpgroup(&attributes, 0);
    // A test that runs in the background ignores interrupts; its programs must not.
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    const int fault = posix_spawnp(&m_id, arguments.front().c_str(), &actions, &attributes,
                                   pointersTo(arguments).data(), pointersTo(variables).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (fault != 0) {
        throw Unmet("cannot start " + arguments.front() + ": " + std::strerror(fault));
    }
}

DesktopProcess::~DesktopProcess()
{
    end();
}

bool DesktopProcess::isRunning()
{
    if (!m_hasEnded) {
        m_hasEnded = ::waitpid(m_id, nullptr, WNOHANG) != 0;
    }
    return !m_hasEnded;
}

void DesktopProcess::signal(int number) const
{
    // A process that was reaped may have passed its id on.
    if (!m_hasEnded) {
        ::kill(m_id, number);
    }
}

void DesktopProcess::signalGroup(int number) const
{
    if (!m_hasEnded) {
        ::kill(-m_id, number);
    }
}

bool DesktopProcess::waitForEnd(std::chrono::milliseconds deadline)
{
    return waitUntil([this] { return !isRunning(); }, deadline);
}

void DesktopProcess::end()
{
    signal(SIGTERM);
    if (!waitForEnd(std::chrono::seconds(2))) {
        signal(SIGKILL);
        waitForEnd(patience);
    }
}

std::string DesktopProcess::output() const
{
    return contentOf(m_output);
}

std::string contentOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<pid_t> processesNamed(const std::string &name)
{
    std::vector<pid_t> found;
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        const std::string digits = entry.path().filename();
        pid_t id = 0;
        const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
        if (fault != std::errc() || end != digits.data() + digits.size()) {
            continue;
        }
        // "12 (name) S ...": the name may itself hold brackets and blanks.
        const std::string status = contentOf(entry.path() / "stat");
        const auto opening = status.find('(');
        const auto closing = status.rfind(')');
        if (opening == std::string::npos || closing == std::string::npos || closing + 2 >= status.size()) {
            continue;
        }
        if (status.substr(opening + 1, closing - opening - 1) == name && status[closing + 2] != 'Z') {
            found.push_back(id);
        }
    }
    return found;
}

} // namespace stavelin::e2e
