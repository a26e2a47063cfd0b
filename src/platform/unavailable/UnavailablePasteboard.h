#pragma once

#include "platform/Pasteboard.h"
#include "support/HandOver.h"
#include "support/Log.h"

#include <memory>
#include <utility>

namespace stavelin::platform::unavailable {

/// Always empty, and says so once in the log.
class UnavailablePasteboard final : public Pasteboard
{
public:
    UnavailablePasteboard(support::HandOver &mainThread, support::Log &log, std::string reason)
        : m_mainThread(mainThread), m_log(log), m_reason(std::move(reason))
    {}

    [[nodiscard]] std::uint64_t changeCount() const override { return 0; }

    void readString(std::uint64_t, StringCompletion completion) override
    {
        if (!std::exchange(m_wasSaid, true))
            m_log.line("The pasteboard cannot be read: " + m_reason);
        m_mainThread.post([alive = std::weak_ptr(m_alive), completion = std::move(completion)]() mutable {
            if (!alive.expired())
                completion(std::nullopt);
        });
    }

private:
    support::HandOver &m_mainThread;
    support::Log &m_log;
    std::string m_reason;
    bool m_wasSaid = false;
    std::shared_ptr<bool> m_alive =
        std::make_shared<bool>(true); // no completion comes after this object has gone
};

} // namespace stavelin::platform::unavailable
