#include "server/DaemonProcess.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace stavelin::testkit {

namespace {

constexpr std::chrono::seconds longestWait{10};

std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

DaemonProcess::DaemonProcess(std::vector<std::string> arguments, std::vector<std::string> environment)
{
    std::array<int, 2> output{};
    if (::pipe2(output.data(), O_CLOEXEC) != 0)
        return;
    arguments.insert(arguments.begin(), STAVELIN_DAEMON);
    const auto argumentPointers = pointersTo(arguments);
    const auto environmentPointers = pointersTo(environment);
    m_process = ::fork();
    if (m_process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(output[1], STDOUT_FILENO);
        ::dup2(output[1], STDERR_FILENO);
        ::execve(STAVELIN_DAEMON, argumentPointers.data(), environmentPointers.data());
        ::_exit(127);
    }
    ::close(output[1]);
    m_descriptor = output[0];
}

DaemonProcess::~DaemonProcess()
{
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::close(m_descriptor);
}

void DaemonProcess::signal(int number) const
{
    ::kill(m_process, number);
}

bool DaemonProcess::says(const std::string &text)
{
    const auto deadline = std::chrono::steady_clock::now() + longestWait;
    while (!m_output.contains(text)) {
        if (!readMore(deadline))
            return false;
    }
    return true;
}

std::optional<int> DaemonProcess::exitStatus()
{
    const auto deadline = std::chrono::steady_clock::now() + longestWait;
    while (readMore(deadline)) {
    }
    if (std::chrono::steady_clock::now() >= deadline)
        return std::nullopt;
    int status = 0;
    ::waitpid(m_process, &status, 0); // it has closed its output and has nothing else to do
    m_process = -1;
    return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

bool DaemonProcess::readMore(std::chrono::steady_clock::time_point deadline)
{
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd input{m_descriptor, POLLIN, 0};
    if (left.count() <= 0 || ::poll(&input, 1, static_cast<int>(left.count())) != 1)
        return false;
    std::array<char, 4096> bytes{};
    const ssize_t size = ::read(m_descriptor, bytes.data(), bytes.size());
    if (size <= 0)
        return false;
    m_output.append(bytes.data(), static_cast<std::size_t>(size));
    return true;
}

} // namespace stavelin::testkit
