#include "platform/x11/X11Connection.h"

#include <poll.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <string_view>

namespace stavelin::platform::x11 {

std::expected<std::unique_ptr<X11Connection>, std::string> X11Connection::open()
{
    const char *name = std::getenv("DISPLAY");
    if (name == nullptr || *name == '\0')
        return std::unexpected("there is no X display (DISPLAY is not set)");
    // The library that finds the session's secret keeps the name of its file in one place for all threads.
    static std::mutex connecting;
    int number = 0;
    xcb_connection_t *connection = nullptr;
    {
        const std::lock_guard lock(connecting);
        connection = xcb_connect(nullptr, &number);
    }
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        return std::unexpected(std::string("the X display ") + name + " does not answer");
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number > 0 && screens.rem > 1; --number)
        xcb_screen_next(&screens);
    return std::unique_ptr<X11Connection>(new X11Connection(connection, screens.data));
}

std::expected<std::unique_ptr<X11Connection>, std::string> X11Connection::openForKeys()
{
    auto connection = open();
    if (!connection)
        return connection;
    if (std::string missing = (*connection)->prepareForKeys(); !missing.empty())
        return std::unexpected(std::move(missing));
    return connection;
}

X11Connection::~X11Connection()
{
    xcb_disconnect(m_connection);
}

void X11Connection::roundTrip()
{
    ReplyPointer<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

void X11Connection::waitForEvents(int descriptor,
                                  std::optional<std::chrono::steady_clock::time_point> deadline)
{
    flush();
    int milliseconds = -1;
    if (deadline) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
        milliseconds = static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
    }
    pollfd descriptors[] = {{xcb_get_file_descriptor(m_connection), POLLIN, 0}, {descriptor, POLLIN, 0}};
    ::poll(descriptors, 2, milliseconds);
}

std::string X11Connection::prepareForKeys()
{
    const auto *xtest = xcb_get_extension_data(m_connection, &xcb_test_id);
    if (xtest == nullptr || xtest->present == 0)
        return "the X server has no XTEST extension";

    const auto *input = xcb_get_extension_data(m_connection, &xcb_input_id);
    const bool hasInput = input != nullptr && input->present != 0;
    // From 2.1 on raw events come also while someone holds the keyboard; 2.2 is what every server of the last
    // decade has.
    const ReplyPointer<xcb_input_xi_query_version_reply_t> version(
        hasInput ? xcb_input_xi_query_version_reply(m_connection,
                                                    xcb_input_xi_query_version(m_connection, 2, 2), nullptr)
                 : nullptr);
    if (!version || version->major_version < 2 || (version->major_version == 2 && version->minor_version < 2))
        return "the X server has no XInput 2.2";
    m_inputOpcode = input->major_opcode;

    if (xkb_x11_setup_xkb_extension(m_connection, XKB_X11_MIN_MAJOR_XKB_VERSION,
                                    XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                    nullptr, nullptr, &m_xkbEventCode, nullptr) == 0)
        return "the X server has no XKB extension";
    m_xtestKeyboards = xtestKeyboards();
    return {};
}

std::vector<std::uint16_t> X11Connection::xtestKeyboards()
{
    const ReplyPointer<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
        m_connection, xcb_input_xi_query_device(m_connection, XCB_INPUT_DEVICE_ALL), nullptr));
    std::vector<std::uint16_t> found;
    if (!devices)
        return found;
    for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        const std::string_view name(
            xcb_input_xi_device_info_name(device.data),
            static_cast<std::size_t>(xcb_input_xi_device_info_name_length(device.data)));
        if (name.ends_with("XTEST keyboard"))
            found.push_back(device.data->deviceid);
    }
    return found;
}

void X11Connection::selectRawKeys(std::uint32_t mask)
{
    struct
    {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, mask};
    xcb_input_xi_select_events(m_connection, root(), 1, &selection.head);
}

std::optional<X11Connection::RawKey> X11Connection::rawKey(const xcb_generic_event_t &event) const
{
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC)
        return std::nullopt;
    const auto &raw = reinterpret_cast<const xcb_input_raw_key_press_event_t &>(event);
    if (raw.extension != m_inputOpcode ||
        (raw.event_type != XCB_INPUT_RAW_KEY_PRESS && raw.event_type != XCB_INPUT_RAW_KEY_RELEASE))
        return std::nullopt;
    return RawKey{raw.event_type == XCB_INPUT_RAW_KEY_PRESS, static_cast<std::uint8_t>(raw.detail),
                  std::ranges::find(m_xtestKeyboards, raw.sourceid) != m_xtestKeyboards.end()};
}

std::bitset<256> X11Connection::keysDown()
{
    std::bitset<256> down;
    const ReplyPointer<xcb_query_keymap_reply_t> keymap(
        xcb_query_keymap_reply(m_connection, xcb_query_keymap(m_connection), nullptr));
    for (std::size_t keycode = 0; keymap && keycode < down.size(); ++keycode)
        down[keycode] = (keymap->keys[keycode / 8] >> (keycode % 8) & 1) != 0;
    return down;
}

} // namespace stavelin::platform::x11
