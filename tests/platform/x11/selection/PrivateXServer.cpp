#include "platform/x11/selection/PrivateXServer.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace stavelin::testkit {

std::unique_ptr<PrivateXServer> PrivateXServer::start()
{
    for (int number = 40; number < 50; ++number) {
        std::unique_ptr<PrivateXServer> server(new PrivateXServer(":" + std::to_string(number)));
        if (server->launch())
            return server;
    }
    return nullptr;
}

PrivateXServer::~PrivateXServer()
{
    end();
}

void PrivateXServer::freeze() const
{
    ::kill(m_process, SIGSTOP);
}

void PrivateXServer::thaw() const
{
    ::kill(m_process, SIGCONT);
}

void PrivateXServer::end()
{
    if (m_process < 0)
        return;
    ::kill(m_process, SIGCONT);
    ::kill(m_process, SIGTERM);
    ::waitpid(m_process, nullptr, 0);
    m_process = -1;
}

bool PrivateXServer::startAgain()
{
    end();
    return launch();
}

bool PrivateXServer::launch()
{
    std::array<int, 2> ready{};
    if (::pipe(ready.data()) != 0)
        return false;
    const pid_t parent = ::getpid();
    m_process = ::fork();
    if (m_process == 0) {
        // It must not stay behind when the test is killed.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != parent)
            ::_exit(1);
        const int quiet = ::open("/dev/null", O_RDWR);
        ::dup2(quiet, STDOUT_FILENO);
        ::dup2(quiet, STDERR_FILENO);
        ::close(ready[0]);
        const std::string descriptor = std::to_string(ready[1]);
        ::execlp("Xvfb", "Xvfb", m_display.c_str(), "-displayfd", descriptor.c_str(), "-screen", "0",
                 "640x480x24", "-nolisten", "tcp", "-noreset", nullptr);
        ::_exit(1);
    }
    ::close(ready[1]);
    // A line with the number comes when it is ready; the end of the pipe when the display was taken. The
    // whole line must be read: a server that cannot write the rest of it dies.
    pollfd input{ready[0], POLLIN, 0};
    char byte = 0;
    while (m_process > 0 && byte != '\n' && ::poll(&input, 1, 10000) == 1 &&
           ::read(ready[0], &byte, 1) == 1) {
    }
    const bool isReady = byte == '\n';
    ::close(ready[0]);
    if (!isReady)
        end();
    return isReady;
}

} // namespace stavelin::testkit
