#include "e2e/Screen.h"

#include "e2e/Unmet.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

// The header names a member `explicit`.
#define explicit explicitActions
#include <xcb/xkb.h>
#undef explicit

namespace stavelin::e2e {

namespace {

struct Free
{
    void operator()(void *memory) const { std::free(memory); }
};

template <typename Reply>
std::unique_ptr<Reply, Free> owned(Reply *reply)
{
    return std::unique_ptr<Reply, Free>(reply);
}

constexpr xcb_window_t noWindow = XCB_WINDOW_NONE;
constexpr std::uint32_t pager = 2; ///< a request made for the user, which the window manager follows

} // namespace

Screen::Screen(const std::string &display)
{
    int number = 0;
    m_connection.reset(xcb_connect(display.c_str(), &number));
    if (xcb_connection_has_error(m_connection.get()) != 0) {
        throw Unmet("cannot open display " + display);
    }
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data;
    listenToBell();
}

Screen::~Screen() = default;

void Screen::listenToBell()
{
    auto *connection = m_connection.get();
    const auto extension =
        owned(xcb_xkb_use_extension_reply(connection, xcb_xkb_use_extension(connection, 1, 0), nullptr));
    const auto *data = xcb_get_extension_data(connection, &xcb_xkb_id);
    if (!extension || !data || data->present == 0) {
        throw Unmet("the display has no XKB");
    }
    m_xkbFirstEvent = data->first_event;
    xcb_xkb_select_events(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_BELL_NOTIFY, 0,
                          XCB_XKB_EVENT_TYPE_BELL_NOTIFY, 0, 0, nullptr);
    xcb_flush(connection);
}

int Screen::bellCount()
{
    // Not an event of the core protocol: the second byte says which of the extension's events it is.
    while (const auto event = owned(xcb_poll_for_event(m_connection.get()))) {
        if ((event->response_type & 0x7F) == m_xkbFirstEvent && event->pad0 == XCB_XKB_BELL_NOTIFY) {
            ++m_bellCount;
        }
    }
    return m_bellCount;
}

Rectangle Screen::size() const
{
    return {0, 0, m_screen->width_in_pixels, m_screen->height_in_pixels};
}

xcb_atom_t Screen::atom(std::string_view name) const
{
    const auto cookie =
        xcb_intern_atom(m_connection.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(m_connection.get(), cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::string Screen::property(xcb_window_t window, std::string_view name) const
{
    const auto cookie = xcb_get_property(m_connection.get(), 0, window, atom(name), XCB_ATOM_ANY, 0, 1 << 16);
    const auto reply = owned(xcb_get_property_reply(m_connection.get(), cookie, nullptr));
    if (!reply) {
        return {};
    }
    const auto *bytes = static_cast<const char *>(xcb_get_property_value(reply.get()));
    return {bytes, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::vector<std::uint32_t> Screen::numbers(xcb_window_t window, std::string_view name) const
{
    const std::string bytes = property(window, name);
    std::vector<std::uint32_t> values(bytes.size() / sizeof(std::uint32_t));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(std::uint32_t));
    return values;
}

bool Screen::hasWindowManager() const
{
    return !numbers(m_screen->root, "_NET_SUPPORTING_WM_CHECK").empty();
}

std::vector<xcb_window_t> Screen::windowsOf(pid_t process) const
{
    std::vector<xcb_window_t> windows = numbers(m_screen->root, "_NET_CLIENT_LIST");
    std::erase_if(windows, [&](xcb_window_t window) {
        return numbers(window, "_NET_WM_PID") != std::vector{static_cast<std::uint32_t>(process)};
    });
    return windows;
}

std::string Screen::titleOf(xcb_window_t window) const
{
    std::string title = property(window, "_NET_WM_NAME");
    return title.empty() ? property(window, "WM_NAME") : title;
}

xcb_window_t Screen::activeWindow() const
{
    const auto windows = numbers(m_screen->root, "_NET_ACTIVE_WINDOW");
    return windows.empty() ? noWindow : windows.front();
}

bool Screen::hasFocus(xcb_window_t window) const
{
    const auto focus = owned(
        xcb_get_input_focus_reply(m_connection.get(), xcb_get_input_focus(m_connection.get()), nullptr));
    for (xcb_window_t at = focus ? focus->focus : noWindow; at > XCB_INPUT_FOCUS_POINTER_ROOT;) {
        if (at == window) {
            return true;
        }
        const auto tree =
            owned(xcb_query_tree_reply(m_connection.get(), xcb_query_tree(m_connection.get(), at), nullptr));
        at = tree ? tree->parent : noWindow;
    }
    return false;
}

void Screen::tellWindowManager(xcb_window_t window, std::string_view message,
                               const std::vector<std::uint32_t> &data) const
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(message);
    std::ranges::copy(data, event.data.data32);
    xcb_send_event(m_connection.get(), 0, m_screen->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(m_connection.get());
}

void Screen::activate(xcb_window_t window) const
{
    tellWindowManager(window, "_NET_ACTIVE_WINDOW", {pager, XCB_CURRENT_TIME, 0});
}

void Screen::place(xcb_window_t window, const Rectangle &place) const
{
    constexpr std::uint32_t allFour = 0xF00;
    tellWindowManager(window, "_NET_MOVERESIZE_WINDOW",
                      {allFour | pager << 12 | XCB_GRAVITY_NORTH_WEST, static_cast<std::uint32_t>(place.x),
                       static_cast<std::uint32_t>(place.y), static_cast<std::uint32_t>(place.width),
                       static_cast<std::uint32_t>(place.height)});
}

Rectangle Screen::placeOf(xcb_window_t window) const
{
    auto *connection = m_connection.get();
    const auto geometry =
        owned(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    const auto origin = owned(xcb_translate_coordinates_reply(
        connection, xcb_translate_coordinates(connection, window, m_screen->root, 0, 0), nullptr));
    if (!geometry || !origin) {
        return {};
    }
    return {origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

std::vector<xcb_keycode_t> Screen::heldKeys() const
{
    const auto keymap =
        owned(xcb_query_keymap_reply(m_connection.get(), xcb_query_keymap(m_connection.get()), nullptr));
    std::vector<xcb_keycode_t> held;
    for (unsigned code = 0; keymap && code < 256; ++code) {
        if ((keymap->keys[code / 8] >> code % 8 & 1) != 0) {
            held.push_back(static_cast<xcb_keycode_t>(code));
        }
    }
    return held;
}

xcb_window_t Screen::clipboardOwner() const
{
    const auto cookie = xcb_get_selection_owner(m_connection.get(), atom("CLIPBOARD"));
    const auto reply = owned(xcb_get_selection_owner_reply(m_connection.get(), cookie, nullptr));
    return reply ? reply->owner : noWindow;
}

Picture Screen::capture() const
{
    return captureDrawable(m_screen->root, m_screen->width_in_pixels, m_screen->height_in_pixels);
}

Picture Screen::capture(xcb_window_t window) const
{
    const Rectangle place = placeOf(window);
    return captureDrawable(window, place.width, place.height);
}

Picture Screen::captureDrawable(xcb_drawable_t drawable, int width, int height) const
{
    const auto cookie =
        xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, 0, 0,
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), ~0U);
    const auto reply = owned(xcb_get_image_reply(m_connection.get(), cookie, nullptr));
    const auto bytes =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * sizeof(std::uint32_t);
    if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) != bytes) {
        return {};
    }
    Picture picture{width, height, std::vector<std::uint32_t>(bytes / sizeof(std::uint32_t))};
    std::memcpy(picture.pixels.data(), xcb_get_image_data(reply.get()), bytes);
    for (std::uint32_t &pixel : picture.pixels) {
        pixel &= 0x00FFFFFF;
    }
    return picture;
}

void Screen::paintBackground(std::uint32_t colour) const
{
    xcb_change_window_attributes(m_connection.get(), m_screen->root, XCB_CW_BACK_PIXEL, &colour);
    xcb_clear_area(m_connection.get(), 0, m_screen->root, 0, 0, 0, 0);
    xcb_flush(m_connection.get());
}

xcb_keycode_t Screen::keyCodeOf(xcb_keysym_t symbol, int column) const
{
    const auto *setup = xcb_get_setup(m_connection.get());
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto reply = owned(xcb_get_keyboard_mapping_reply(
        m_connection.get(),
        xcb_get_keyboard_mapping(m_connection.get(), setup->min_keycode, static_cast<std::uint8_t>(count)),
        nullptr));
    if (!reply || column >= reply->keysyms_per_keycode) {
        return 0;
    }
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    for (int key = 0; key < count; ++key) {
        if (symbols[key * reply->keysyms_per_keycode + column] == symbol) {
            return static_cast<xcb_keycode_t>(setup->min_keycode + key);
        }
    }
    return 0;
}

} // namespace stavelin::e2e
