#pragma once

#include "platform/KeySender.h"
#include "support/Log.h"

#include <string>
#include <utility>

namespace stavelin::platform::unavailable {

/// Sends nothing, and says so once in the log.
class UnavailableKeySender final : public KeySender
{
public:
    UnavailableKeySender(support::Log &log, std::string reason) : m_log(log), m_reason(std::move(reason)) {}

    void simulateKeyPress(std::int64_t) override
    {
        if (!std::exchange(m_wasSaid, true))
            m_log.line("Keys cannot be sent to other programs: " + m_reason);
    }

private:
    support::Log &m_log;
    std::string m_reason;
    bool m_wasSaid = false;
};

} // namespace stavelin::platform::unavailable
