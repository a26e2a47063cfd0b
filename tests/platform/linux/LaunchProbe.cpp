// A child for the launcher's tests. Says on standard output what it was started with, and stays until it is
// killed; a SIGUSR1 makes it say so again. With EXIT_AT_ONCE in its environment it ends after the report.

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <signal.h>
#include <string>
#include <unistd.h>

namespace {

void sayAlive(int)
{
    constexpr char alive[] = "alive\n";
    [[maybe_unused]] const auto written = ::write(STDOUT_FILENO, alive, sizeof alive - 1);
}

/// The standard signals; the C library keeps the first two realtime ones to itself.
void reportSignals()
{
    sigset_t blocked;
    ::sigprocmask(SIG_SETMASK, nullptr, &blocked);
    for (int number = 1; number < 32; ++number) {
        struct sigaction action = {};
        ::sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_DFL || ::sigismember(&blocked, number) == 1)
            std::cout << "signal " << number << '\n';
    }
}

void reportDescriptors()
{
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        std::error_code error;
        const auto target =
            std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error);
        if (!error)
            std::cout << "descriptor " << descriptor << ": " << target.native() << '\n';
    }
}

} // namespace

int main()
{
    std::cout << "report\n";
    reportSignals();
    ::signal(SIGUSR1, sayAlive);
    std::cout << "parent " << ::getppid() << '\n';
    std::cout << "session " << ::getsid(0) << '\n';
    for (char **variable = environ; *variable; ++variable)
        std::cout << "variable " << *variable << '\n';
    reportDescriptors();
    std::cout << "ready" << std::endl;
    if (std::getenv("EXIT_AT_ONCE"))
        return 0;
    for (;;)
        ::pause();
}
