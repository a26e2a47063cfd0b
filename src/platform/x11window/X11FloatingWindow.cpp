#include "platform/x11window/X11FloatingWindow.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace stavelin::platform::x11window {

namespace {

xcb_atom_t atom(xcb_connection_t *connection, std::string_view name)
{
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void setProperty(xcb_connection_t *connection, xcb_window_t window, xcb_prop_mode_t mode, xcb_atom_t name,
                 xcb_atom_t type, std::uint32_t value)
{
    if (name != XCB_ATOM_NONE)
        xcb_change_property(connection, mode, window, name, type, 32, 1, &value);
}

} // namespace

void X11FloatingWindow::prepareToShow(std::uintptr_t windowId)
{
    auto *application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (application == nullptr || application->connection() == nullptr)
        return;
    xcb_connection_t *connection = application->connection();
    const auto window = static_cast<xcb_window_t>(windowId);

    // Both are needed (Extended Window Manager Hints): openbox does not look at the sticky state, and xfwm4
    // places the window wrongly when it is given the desktop alone.
    constexpr std::uint32_t everyDesktop = 0xFFFFFFFF;
    setProperty(connection, window, XCB_PROP_MODE_REPLACE, atom(connection, "_NET_WM_DESKTOP"),
                XCB_ATOM_CARDINAL, everyDesktop);
    setProperty(connection, window, XCB_PROP_MODE_REPLACE, atom(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM,
                atom(connection, "_NET_WM_STATE_STICKY"));
}

} // namespace stavelin::platform::x11window
