#include "testkit/VirtualClock.h"

#include <algorithm>

namespace stavelin::testkit {

support::TimerHandle VirtualClock::after(std::chrono::nanoseconds delay, std::function<void()> action)
{
    auto pending = std::make_shared<bool>(true);
    const auto due = m_now + std::chrono::duration_cast<support::Timestamp::duration>(delay);
    m_actions.emplace(std::pair(due, m_nextNumber++), Action{pending, std::move(action)});
    return support::TimerHandle(std::move(pending));
}

void VirtualClock::advance(std::chrono::nanoseconds by)
{
    const auto end = m_now + std::chrono::duration_cast<support::Timestamp::duration>(by);
    while (!m_actions.empty() && m_actions.begin()->first.first <= end) {
        auto node = m_actions.extract(m_actions.begin());
        m_now = std::max(m_now, node.key().first);
        Action &action = node.mapped();
        if (*action.pending) {
            *action.pending = false;
            action.run();
        }
    }
    m_now = end;
}

std::size_t VirtualClock::pendingCount() const
{
    return static_cast<std::size_t>(
        std::ranges::count_if(m_actions, [](const auto &entry) { return *entry.second.pending; }));
}

} // namespace stavelin::testkit
