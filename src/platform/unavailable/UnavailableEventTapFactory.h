#pragma once

#include "platform/EventTap.h"

#include <utility>

namespace stavelin::platform::unavailable {

/// Installs nothing, and says why.
class UnavailableEventTapFactory final : public EventTapFactory
{
public:
    explicit UnavailableEventTapFactory(std::string reason) : m_reason(std::move(reason)) {}

    [[nodiscard]] std::expected<std::unique_ptr<EventTap>, TapError> createTap(TapClient &) override
    {
        return std::unexpected(TapError{m_reason});
    }

private:
    std::string m_reason;
};

} // namespace stavelin::platform::unavailable
