#pragma once

#include "platform/EventTap.h"
#include "platform/ModifierRoles.h"

#include <memory>

namespace stavelin::support {
class Log;
}

namespace stavelin::platform::x11 {

class X11ExpectedKeys;

/// Taps the keyboard of an X11 session (DISPLAY) by grabs. A tap has a thread and a connection of its own; it
/// calls its client on that thread while the keyboard is frozen.
class X11EventTapFactory final : public EventTapFactory
{
public:
    /// `log` outlives every tap made here. `expectedKeys` is the key sender's.
    X11EventTapFactory(support::Log &log, ModifierRoles roles, std::shared_ptr<X11ExpectedKeys> expectedKeys);

    /// Fails without a display, in a Wayland session and on a server without XTEST or XInput 2.2. The grabs
    /// are in place when it returns; those that other programs hold are named in the log and in conflicts().
    [[nodiscard]] std::expected<std::unique_ptr<EventTap>, TapError> createTap(TapClient &client) override;

private:
    support::Log &m_log;
    ModifierRoles m_roles;
    std::shared_ptr<X11ExpectedKeys> m_expectedKeys;
};

} // namespace stavelin::platform::x11
