#include "platform/x11/X11FocusedWindow.h"

#include "platform/x11/X11Connection.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <string_view>

namespace stavelin::platform::x11 {

namespace {

// In lower case. A terminal's instance and class are either its name or its application identifier.
constexpr std::array<std::string_view, 48> controlShiftTerminals{
    "gnome-terminal",
    "gnome-terminal-server",
    "org.gnome.terminal",
    "kgx",
    "org.gnome.console",
    "org.gnome.ptyxis",
    "ptyxis",
    "konsole",
    "org.kde.konsole",
    "yakuake",
    "org.kde.yakuake",
    "xfce4-terminal",
    "mate-terminal",
    "lxterminal",
    "qterminal",
    "deepin-terminal",
    "pantheon-terminal",
    "io.elementary.terminal",
    "alacritty",
    "kitty",
    "terminator",
    "tilix",
    "com.gexperts.tilix",
    "guake",
    "tilda",
    "foot",
    "footclient",
    "wezterm",
    "wezterm-gui",
    "org.wezfurlong.wezterm",
    "ghostty",
    "com.mitchellh.ghostty",
    "contour",
    "rio",
    "terminology",
    "sakura",
    "roxterm",
    "termite",
    "cool-retro-term",
    "blackbox",
    "com.raggesilver.blackbox",
    "hyper",
    "tabby",
    "warp",
    "dev.warp.warp",
    "terminus",
    "st",
    "st-256color",
};
constexpr std::array<std::string_view, 9> primaryTerminals{
    "xterm", "uxterm", "koi8rxterm", "lxterm", "rxvt", "urxvt", "urxvtc", "aterm", "eterm",
};

// Deeper than any tree of windows that a focus stands in; a server that answers nonsense must not hold us.
constexpr int deepestTree = 64;

std::string classOf(X11Connection &connection, xcb_window_t window)
{
    const ReplyPointer<xcb_get_property_reply_t> property(xcb_get_property_reply(
        connection.get(),
        xcb_get_property(connection.get(), 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 128), nullptr));
    if (!property || property->type != XCB_ATOM_STRING)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(property.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(property.get()))};
}

xcb_window_t windowUnderPointer(X11Connection &connection)
{
    xcb_window_t window = connection.root();
    for (int depth = 0; depth < deepestTree; ++depth) {
        const ReplyPointer<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(connection.get(), xcb_query_pointer(connection.get(), window), nullptr));
        if (!pointer || pointer->child == XCB_NONE)
            break;
        window = pointer->child;
    }
    return window;
}

/// Instance and class of the nearest window around the focus that has them, both ended by a zero byte.
std::string focusedClass(X11Connection &connection)
{
    const ReplyPointer<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection.get(), xcb_get_input_focus(connection.get()), nullptr));
    if (!focus || focus->focus == XCB_NONE)
        return {};
    xcb_window_t window =
        focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT ? windowUnderPointer(connection) : focus->focus;
    for (int depth = 0; depth < deepestTree && window != connection.root() && window != XCB_NONE; ++depth) {
        if (std::string both = classOf(connection, window); !both.empty())
            return both;
        const ReplyPointer<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection.get(), xcb_query_tree(connection.get(), window), nullptr));
        window = tree ? tree->parent : xcb_window_t{XCB_NONE};
    }
    return {};
}

} // namespace

ClipboardHabit focusedHabit(X11Connection &connection)
{
    std::string both = focusedClass(connection);
    std::ranges::transform(both, both.begin(), [](unsigned char c) { return std::tolower(c); });
    const auto isOneOf = [&](const auto &names) {
        std::string_view rest = both;
        while (!rest.empty()) {
            const auto end = std::min(rest.find('\0'), rest.size());
            if (std::ranges::find(names, rest.substr(0, end)) != names.end())
                return true;
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        return false;
    };
    if (isOneOf(primaryTerminals))
        return ClipboardHabit::primary;
    return isOneOf(controlShiftTerminals) ? ClipboardHabit::controlShift : ClipboardHabit::control;
}

} // namespace stavelin::platform::x11
