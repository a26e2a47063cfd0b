#include "platform/x11/X11Session.h"

#include "platform/x11/X11Connection.h"

#include <cstdlib>
#include <string_view>

namespace stavelin::platform::x11 {

namespace {

std::string_view variable(const char *name)
{
    const char *value = std::getenv(name);
    return value == nullptr ? std::string_view{} : std::string_view{value};
}

xcb_atom_t atomNamed(X11Connection &connection, std::string_view name)
{
    const ReplyPointer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection.get(),
        xcb_intern_atom(connection.get(), 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    return atom ? atom->atom : xcb_atom_t{XCB_ATOM_NONE};
}

ReplyPointer<xcb_get_property_reply_t> property(X11Connection &connection, xcb_window_t window,
                                                std::string_view name)
{
    const auto asked = xcb_get_property(connection.get(), 0, window, atomNamed(connection, name),
                                        XCB_GET_PROPERTY_TYPE_ANY, 0, 64);
    return ReplyPointer<xcb_get_property_reply_t>(xcb_get_property_reply(connection.get(), asked, nullptr));
}

} // namespace

std::string whyKeysAreHidden()
{
    if (!variable("WAYLAND_DISPLAY").empty() || variable("XDG_SESSION_TYPE") == "wayland")
        return "this is a Wayland session, which shows no program the keys of others";
    return {};
}

bool isSuperKeyTaken(X11Connection &connection)
{
    // The window manager names itself on a window of its own (Extended Window Manager Hints).
    const auto check = property(connection, connection.root(), "_NET_SUPPORTING_WM_CHECK");
    if (!check || check->format != 32 || check->value_len != 1)
        return false;
    const auto window = *static_cast<const xcb_window_t *>(xcb_get_property_value(check.get()));
    const auto title = property(connection, window, "_NET_WM_NAME");
    if (!title || title->format != 8)
        return false;
    const std::string_view name(static_cast<const char *>(xcb_get_property_value(title.get())),
                                title->value_len);
    return name == "GNOME Shell" || name.starts_with("Mutter");
}

} // namespace stavelin::platform::x11
