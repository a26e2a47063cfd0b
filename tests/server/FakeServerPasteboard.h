#pragma once

#include "server/Pasteboard.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace stavelin::testkit {

/// Keeps what is put there. Completes at once, or, when it is told to wait, when the test says so.
class FakeServerPasteboard final : public server::Pasteboard
{
public:
    void put(std::string text, bool isSecret, Completion completion) override
    {
        m_texts.push_back(std::move(text));
        m_wasSecret = isSecret;
        m_waiting.push_back(std::move(completion));
        if (!m_waits)
            complete();
    }

    void failWith(std::string description) { m_failure = std::move(description); }
    void wait() { m_waits = true; }
    void complete()
    {
        for (Completion &completion : std::exchange(m_waiting, {})) {
            if (m_failure)
                completion(std::unexpected(server::PasteboardError{*m_failure}));
            else
                completion({});
        }
    }

    [[nodiscard]] const std::vector<std::string> &texts() const { return m_texts; }
    [[nodiscard]] bool wasSecret() const { return m_wasSecret; }

private:
    std::vector<std::string> m_texts;
    std::vector<Completion> m_waiting;
    std::optional<std::string> m_failure;
    bool m_wasSecret = false;
    bool m_waits = false;
};

} // namespace stavelin::testkit
