#include "platform/qt/QtClock.h"

#include <algorithm>
#include <limits>

namespace stavelin::platform::qt {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

QtClock::QtClock()
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { runDueActions(); });
}

support::Timestamp QtClock::now() const
{
    return std::chrono::system_clock::now();
}

support::TimerHandle QtClock::after(std::chrono::nanoseconds delay, std::function<void()> action)
{
    const Moment due = steady_clock::now() + std::max(delay, std::chrono::nanoseconds::zero());
    auto pending = std::make_shared<bool>(true);
    m_actions.emplace(std::pair(due, m_nextNumber++), Action{pending, std::move(action)});
    arm();
    return support::TimerHandle(std::move(pending));
}

void QtClock::runDueActions()
{
    const Moment now = steady_clock::now();
    const std::uint64_t end =
        m_nextNumber; // what the actions ask for waits for the next round of the event loop
    while (!m_actions.empty() && m_actions.begin()->first.first <= now &&
           m_actions.begin()->first.second < end) {
        Action action = std::move(m_actions.extract(m_actions.begin()).mapped());
        if (!*action.pending)
            continue;
        arm(); // first, because the action may nest an event loop
        *action.pending = false;
        action.run();
    }
    arm();
}

void QtClock::arm()
{
    // A cancelled action goes here, or when its moment comes if others stand before it.
    while (!m_actions.empty() && !*m_actions.begin()->second.pending)
        m_actions.erase(m_actions.begin());
    if (m_actions.empty()) {
        m_timer.stop();
        return;
    }
    const auto left = std::chrono::ceil<milliseconds>(m_actions.begin()->first.first - steady_clock::now());
    const milliseconds longest(std::numeric_limits<int>::max());
    m_timer.start(std::clamp(left, milliseconds::zero(), longest));
}

} // namespace stavelin::platform::qt
