#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace stavelin::support {

/// An absolute point in time, as fine as the system's wall clock.
using Timestamp = std::chrono::system_clock::time_point;

/// An action that a Clock will run later. Copies refer to the same action. Dropping every copy leaves the
/// action pending; only cancel() ends it.
class TimerHandle
{
public:
    TimerHandle() = default;
    explicit TimerHandle(std::shared_ptr<bool> pending) : m_pending(std::move(pending)) {}

    /// After this the action never runs. Harmless on an empty, finished or cancelled handle.
    void cancel()
    {
        if (m_pending)
            *m_pending = false;
    }
    [[nodiscard]] bool isPending() const { return m_pending && *m_pending; }

private:
    std::shared_ptr<bool> m_pending; // the Clock sets it to false just before it runs the action
};

/// The one source of time. Belongs to the main thread; only now() may be called from any thread.
class Clock
{
public:
    virtual ~Clock() = default;

    [[nodiscard]] virtual Timestamp now() const = 0;

    /// Runs `action` once on the main thread when `delay` has passed, never inside this call. Actions that
    /// are due at the same moment run in the order in which they were asked for.
    virtual TimerHandle after(std::chrono::nanoseconds delay, std::function<void()> action) = 0;
};

} // namespace stavelin::support
