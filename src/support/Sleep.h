#pragma once

// Headers with Q_OBJECT must not include this before a Qt header: moc 6.4 fails on <coroutine>.
#include "support/Clock.h"

#include <coroutine>

namespace stavelin::support {

/// `co_await sleep(clock, 50ms);` suspends the calling coroutine without blocking its thread.
class SleepAwaiter
{
public:
    SleepAwaiter(Clock &clock, std::chrono::nanoseconds delay) : m_clock(clock), m_delay(delay) {}
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiting)
    {
        m_clock.after(m_delay, [waiting] { waiting.resume(); });
    }
    void await_resume() const noexcept {}

private:
    Clock &m_clock;
    std::chrono::nanoseconds m_delay;
};

[[nodiscard]] inline SleepAwaiter sleep(Clock &clock, std::chrono::nanoseconds delay)
{
    return SleepAwaiter(clock, delay);
}

} // namespace stavelin::support
