#pragma once

#include <QTimer>

#include "support/Clock.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace stavelin::platform::qt {

/// The real time, in the event loop of the thread that makes this object. One timer, which runs only while an
/// action is pending; delays do not notice that someone sets the wall clock. An action that nests an event
/// loop does not hold up the others.
class QtClock final : public support::Clock
{
public:
    QtClock();

    [[nodiscard]] support::Timestamp now() const override;
    support::TimerHandle after(std::chrono::nanoseconds delay, std::function<void()> action) override;

private:
    using Moment = std::chrono::steady_clock::time_point;
    struct Action
    {
        std::shared_ptr<bool> pending;
        std::function<void()> run;
    };

    void runDueActions();
    /// Sets the timer to the first pending action, and stops it when there is none.
    void arm();

    QTimer m_timer;
    std::map<std::pair<Moment, std::uint64_t>, Action> m_actions; ///< by moment, then in the order of asking
    std::uint64_t m_nextNumber = 0;
};

} // namespace stavelin::platform::qt
