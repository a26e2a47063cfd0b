#include "platform/x11/X11AccessibilityPermission.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Session.h"

namespace stavelin::platform::x11 {

bool X11AccessibilityPermission::isTrusted(bool)
{
    return reason().empty();
}

std::string X11AccessibilityPermission::reason()
{
    if (std::string hidden = whyKeysAreHidden(); !hidden.empty())
        return hidden;
    const auto connection = X11Connection::openForKeys();
    if (!connection)
        return connection.error();
    // Chords of Ctrl reach other programs there, and those of the literal mapping's saving and pasting are
    // such.
    if (m_roles == ModifierRoles::byUse && isSuperKeyTaken(**connection))
        return "this desktop keeps the Super key to itself; the setting modifierRoles=literal works with "
               "Ctrl instead";
    return {};
}

} // namespace stavelin::platform::x11
