#pragma once

#include "platform/AccessibilityPermission.h"

#include <utility>

namespace stavelin::platform::unavailable {

/// Never trusted, and says why.
class UnavailableAccessibilityPermission final : public AccessibilityPermission
{
public:
    explicit UnavailableAccessibilityPermission(std::string reason) : m_reason(std::move(reason)) {}

    [[nodiscard]] bool isTrusted(bool) override { return false; }
    [[nodiscard]] std::string reason() override { return m_reason; }

private:
    std::string m_reason;
};

} // namespace stavelin::platform::unavailable
