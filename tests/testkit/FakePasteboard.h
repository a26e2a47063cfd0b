#pragma once

#include "platform/Pasteboard.h"
#include "support/Clock.h"

#include <memory>
#include <utility>
#include <vector>

namespace stavelin::testkit {

/// A pasteboard in memory, in the time of the test's clock. The test puts on it what other programs would.
class FakePasteboard final : public platform::Pasteboard
{
public:
    explicit FakePasteboard(support::Clock &clock) : m_clock(clock) {}

    /// Someone copies a text, or, with nothing, something that is no text.
    void put(std::optional<std::string> text)
    {
        m_text = std::move(text);
        ++m_changeCount;
        for (const auto &reading : std::exchange(m_waiting, {}))
            answer(reading);
    }

    [[nodiscard]] std::uint64_t changeCount() const override { return m_changeCount; }

    void readString(std::uint64_t before, StringCompletion completion) override
    {
        ++reads;
        const auto reading = std::make_shared<StringCompletion>(std::move(completion));
        if (m_changeCount != before) {
            answer(reading);
            return;
        }
        m_waiting.push_back(reading);
        m_clock.after(std::chrono::milliseconds(400), [this, reading] {
            if (std::erase(m_waiting, reading) > 0)
                answer(reading);
        });
    }

    int reads = 0; ///< calls of readString()

private:
    void answer(const std::shared_ptr<StringCompletion> &reading)
    {
        m_clock.after(std::chrono::nanoseconds::zero(), [this, reading] {
            (*reading)(m_text && m_text->size() <= maximumTextSize ? m_text : std::nullopt);
        });
    }

    support::Clock &m_clock;
    std::optional<std::string> m_text;
    std::uint64_t m_changeCount = 0;
    std::vector<std::shared_ptr<StringCompletion>> m_waiting;
};

} // namespace stavelin::testkit
