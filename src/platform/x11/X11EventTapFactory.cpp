#include "platform/x11/X11EventTapFactory.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11EventTap.h"
#include "platform/x11/X11ExpectedKeys.h"
#include "platform/x11/X11Session.h"
#include "platform/x11/X11TapLoop.h"

#include <utility>

namespace stavelin::platform::x11 {

X11EventTapFactory::X11EventTapFactory(support::Log &log, ModifierRoles roles,
                                       std::shared_ptr<X11ExpectedKeys> expectedKeys)
    : m_log(log), m_roles(roles), m_expectedKeys(std::move(expectedKeys))
{}

std::expected<std::unique_ptr<EventTap>, TapError> X11EventTapFactory::createTap(TapClient &client)
{
    if (std::string hidden = whyKeysAreHidden(); !hidden.empty())
        return std::unexpected(TapError{std::move(hidden)});
    auto connection = X11Connection::openForKeys();
    if (!connection)
        return std::unexpected(TapError{std::move(connection.error())});
    auto loop = std::make_unique<X11TapLoop>(std::move(*connection), client, m_log, m_roles, m_expectedKeys);
    if (!loop->install())
        return std::unexpected(TapError{"the X server does not tell what its keyboard is"});
    return std::make_unique<X11EventTap>(std::move(loop));
}

} // namespace stavelin::platform::x11
