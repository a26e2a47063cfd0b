#include "testkit/WitnessWindow.h"

#include <xcb/xcb.h>

#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace stavelin::testkit {

namespace {

using EventPointer = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;

xcb_window_t rootOf(xcb_connection_t *connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

/// The next event, or null when none comes until the deadline.
EventPointer nextEvent(xcb_connection_t *connection, std::chrono::steady_clock::time_point deadline)
{
    for (;;) {
        if (EventPointer event{xcb_poll_for_event(connection), &std::free})
            return event;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || xcb_connection_has_error(connection) != 0)
            return {nullptr, &std::free};
        pollfd descriptor{xcb_get_file_descriptor(connection), POLLIN, 0};
        ::poll(&descriptor, 1, static_cast<int>(left.count()));
    }
}

} // namespace

WitnessWindow::WitnessWindow(const std::string &display, const std::string &windowClass)
    : m_connection(xcb_connect(display.c_str(), nullptr))
{
    if (xcb_connection_has_error(m_connection) != 0)
        throw std::runtime_error("no display " + display);
    m_window = xcb_generate_id(m_connection);
    const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                                 XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_FOCUS_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, rootOf(m_connection), 0, 0, 400, 300, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    if (!windowClass.empty()) {
        // Two strings, each with its end: the instance and the class (ICCCM 4.1.2.5).
        const std::string both = windowClass + '\0' + windowClass + '\0';
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                            8, static_cast<std::uint32_t>(both.size()), both.data());
    }
    xcb_map_window(m_connection, m_window);
    xcb_flush(m_connection);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(8);
    while (const EventPointer event = nextEvent(m_connection, deadline)) {
        if ((event->response_type & 0x7F) == XCB_EXPOSE)
            break;
    }
    setFocus();
}

WitnessWindow::~WitnessWindow()
{
    xcb_disconnect(m_connection);
}

void WitnessWindow::setFocus()
{
    xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_PARENT, m_window, XCB_CURRENT_TIME);
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

std::vector<SeenKey> WitnessWindow::keysUntil(std::uint8_t keycode, std::chrono::milliseconds patience)
{
    return keysUntil(true, keycode, patience);
}

std::vector<SeenKey> WitnessWindow::keysUntilReleaseOf(std::uint8_t keycode,
                                                       std::chrono::milliseconds patience)
{
    return keysUntil(false, keycode, patience);
}

std::vector<SeenKey> WitnessWindow::keysUntil(bool isPress, std::uint8_t keycode,
                                              std::chrono::milliseconds patience)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    std::vector<SeenKey> seen;
    while (const EventPointer event = nextEvent(m_connection, deadline)) {
        const auto type = event->response_type & 0x7F;
        if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE)
            continue;
        const auto &key = reinterpret_cast<const xcb_key_press_event_t &>(*event);
        seen.push_back({type == XCB_KEY_PRESS, key.detail, key.state});
        if (seen.back().isPress == isPress && key.detail == keycode)
            break;
    }
    return seen;
}

void WitnessWindow::forget()
{
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    while (const EventPointer event{xcb_poll_for_event(m_connection), &std::free}) {
    }
}

std::vector<std::uint8_t> WitnessWindow::keysDown()
{
    const std::unique_ptr<xcb_query_keymap_reply_t, decltype(&std::free)> keymap(
        xcb_query_keymap_reply(m_connection, xcb_query_keymap(m_connection), nullptr), &std::free);
    std::vector<std::uint8_t> down;
    for (int keycode = 8; keymap && keycode < 256; ++keycode) {
        if ((keymap->keys[keycode / 8] >> (keycode % 8) & 1) != 0)
            down.push_back(static_cast<std::uint8_t>(keycode));
    }
    return down;
}

std::vector<SeenKey> presses(const std::vector<SeenKey> &keys)
{
    std::vector<SeenKey> found;
    std::ranges::copy_if(keys, std::back_inserter(found), &SeenKey::isPress);
    return found;
}

} // namespace stavelin::testkit
