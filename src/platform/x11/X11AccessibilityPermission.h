#pragma once

#include "platform/AccessibilityPermission.h"
#include "platform/ModifierRoles.h"

namespace stavelin::platform::x11 {

/// X11 lets every program watch and send keys, so there is nothing to grant; but not every session has what
/// it takes.
class X11AccessibilityPermission final : public AccessibilityPermission
{
public:
    /// The mapping matters on desktops that keep the Super key to themselves.
    explicit X11AccessibilityPermission(ModifierRoles roles) : m_roles(roles) {}

    [[nodiscard]] bool isTrusted(bool prompt) override;
    [[nodiscard]] std::string reason() override;

private:
    ModifierRoles m_roles;
};

} // namespace stavelin::platform::x11
