#pragma once

#include "platform/AccessibilityPermission.h"

#include <vector>

namespace stavelin::testkit {

/// Answers what the test says.
class FakeAccessibilityPermission final : public platform::AccessibilityPermission
{
public:
    [[nodiscard]] bool isTrusted(bool prompt) override
    {
        prompts.push_back(prompt);
        return trusted;
    }
    [[nodiscard]] std::string reason() override { return trusted ? std::string() : "the test said no"; }

    bool trusted = true;
    std::vector<bool> prompts; ///< `prompt` of every question so far
};

} // namespace stavelin::testkit
