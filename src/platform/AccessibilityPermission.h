#pragma once

#include <string>

namespace stavelin::platform {

/// Whether this program may watch and send keys for the whole session.
class AccessibilityPermission
{
public:
    virtual ~AccessibilityPermission() = default;

    /// With `prompt`, also asks the user for it where the platform has a way to.
    [[nodiscard]] virtual bool isTrusted(bool prompt) = 0;
    /// One line for people: why not, or empty when trusted.
    [[nodiscard]] virtual std::string reason() = 0;
};

} // namespace stavelin::platform
