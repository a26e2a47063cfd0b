#pragma once

#include "support/Clock.h"

#include <cstdint>
#include <map>
#include <utility>

namespace stavelin::testkit {

/// A clock that stands still until the test moves it. Starts at 2024-05-01T10:00:00Z.
class VirtualClock final : public support::Clock
{
public:
    [[nodiscard]] support::Timestamp now() const override { return m_now; }
    support::TimerHandle after(std::chrono::nanoseconds delay, std::function<void()> action) override;

    /// Moves time forward and runs, in order and each at its own moment, all that falls due, also what is
    /// asked for on the way.
    void advance(std::chrono::nanoseconds by);
    /// How many actions are waiting and not cancelled.
    [[nodiscard]] std::size_t pendingCount() const;

private:
    struct Action
    {
        std::shared_ptr<bool> pending;
        std::function<void()> run;
    };
    support::Timestamp m_now{std::chrono::seconds(1714557600)};
    std::uint64_t m_nextNumber = 0;
    std::map<std::pair<support::Timestamp, std::uint64_t>, Action> m_actions;
};

} // namespace stavelin::testkit
