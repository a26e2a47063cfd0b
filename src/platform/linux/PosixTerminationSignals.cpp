#include "platform/linux/PosixTerminationSignals.h"

#include <atomic>
#include <cerrno>
#include <signal.h>

namespace stavelin::platform {

namespace {

constexpr int handledSignals[] = {SIGTERM, SIGINT, SIGHUP};

// A signal handler has no argument to carry an object in.
std::atomic<const support::WakeUp *> woken = nullptr;
static_assert(std::atomic<const support::WakeUp *>::is_always_lock_free);

void handle(int)
{
    const int interruptedError = errno;
    if (const support::WakeUp *wakeUp = woken.load())
        wakeUp->signal();
    errno = interruptedError;
}

} // namespace

PosixTerminationSignals::PosixTerminationSignals()
{
    woken = &m_wakeUp;
    struct sigaction action = {};
    action.sa_handler = handle;
    // A program that hangs on its way out can still be ended by asking a second time.
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    for (const int number : handledSignals)
        ::sigaction(number, &action, nullptr);
}

PosixTerminationSignals::~PosixTerminationSignals()
{
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (const int number : handledSignals)
        ::sigaction(number, &action, nullptr);
    woken = nullptr;
}

} // namespace stavelin::platform
