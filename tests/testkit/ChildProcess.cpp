#include "testkit/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace stavelin::testkit {

namespace {

constexpr int patienceMilliseconds = 5000;

[[noreturn]] void become(const std::vector<char *> &arguments, const std::vector<std::string> &environment,
                         int descriptor, pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent)
        ::_exit(127);
    for (const std::string &variable : environment)
        ::putenv(const_cast<char *>(variable.c_str()));
    const int nowhere = ::open("/dev/null", O_RDWR);
    for (const int standard : {0, 1, 2})
        ::dup2(nowhere, standard);
    if (descriptor == 3)
        ::fcntl(3, F_SETFD, 0);
    else if (descriptor >= 0)
        ::dup2(descriptor, 3);
    ::execvp(arguments.front(), arguments.data());
    ::_exit(127);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string> &command,
                           const std::vector<std::string> &environment, int descriptor)
{
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    const pid_t parent = ::getpid();
    m_id = ::fork();
    if (m_id == 0)
        become(arguments, environment, descriptor, parent);
    if (m_id < 0)
        throw std::runtime_error("cannot start " + command.front());
}

ChildProcess::~ChildProcess()
{
    if (m_id < 0)
        return;
    // Servers that are asked nicely take their lock files with them.
    signal(SIGCONT);
    signal(SIGTERM);
    const int handle = static_cast<int>(::syscall(SYS_pidfd_open, m_id, 0));
    pollfd descriptor{handle, POLLIN, 0};
    if (handle < 0 || ::poll(&descriptor, 1, patienceMilliseconds) != 1)
        signal(SIGKILL);
    if (handle >= 0)
        ::close(handle);
    wait();
}

void ChildProcess::signal(int number) const
{
    if (m_id > 0)
        ::kill(m_id, number);
}

int ChildProcess::wait()
{
    int status = 0;
    while (::waitpid(m_id, &status, 0) < 0 && errno == EINTR) {
    }
    m_id = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace stavelin::testkit
