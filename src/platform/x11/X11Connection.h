#pragma once

#include "platform/x11/selection/ServerReply.h"

#include <bitset>
#include <chrono>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <xcb/xcb.h>

namespace stavelin::platform::x11 {

template <typename Reply>
using ReplyPointer = selection::ReplyPointer<Reply>;
using EventPointer = ReplyPointer<xcb_generic_event_t>;

/// A connection to the X server that DISPLAY names. One thread at a time. A connection that is lost stays an
/// object: what is asked of it gives nothing.
class X11Connection
{
public:
    /// On failure one line for people.
    [[nodiscard]] static std::expected<std::unique_ptr<X11Connection>, std::string> open();
    /// Also wants what watching and sending keys takes: XTEST, XInput 2.2 and XKB.
    [[nodiscard]] static std::expected<std::unique_ptr<X11Connection>, std::string> openForKeys();
    ~X11Connection();
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;

    [[nodiscard]] xcb_connection_t *get() const { return m_connection; }
    [[nodiscard]] const xcb_screen_t *screen() const { return m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] bool isLost() const { return xcb_connection_has_error(m_connection) != 0; }

    /// The next event that has arrived, or null.
    [[nodiscard]] EventPointer nextEvent() { return EventPointer(xcb_poll_for_event(m_connection)); }
    void flush() { xcb_flush(m_connection); }
    /// Returns when the server has done what was asked so far.
    void roundTrip();
    /// Waits until the server or `descriptor` has something to say, or until the deadline if there is one.
    /// Only to be called when nextEvent() has just given nothing.
    void waitForEvents(int descriptor, std::optional<std::chrono::steady_clock::time_point> deadline);

    /// Of connections opened for keys.
    [[nodiscard]] std::uint8_t xkbEventCode() const { return m_xkbEventCode; }
    /// Asks for raw key presses or releases of the whole session (XCB_INPUT_XI_EVENT_MASK_RAW_KEY_..., 0 for
    /// none).
    void selectRawKeys(std::uint32_t mask);
    /// A raw key event: which key of which device, or nothing when the event is another one.
    struct RawKey
    {
        bool isPress;
        std::uint8_t keycode;
        bool isSynthesized; ///< comes from a program by way of XTEST
    };
    [[nodiscard]] std::optional<RawKey> rawKey(const xcb_generic_event_t &event) const;
    /// The keys that are down, as applications know it, a bit per key code.
    [[nodiscard]] std::bitset<256> keysDown();

private:
    X11Connection(xcb_connection_t *connection, const xcb_screen_t *screen)
        : m_connection(connection), m_screen(screen)
    {}
    /// What is missing, or empty.
    [[nodiscard]] std::string prepareForKeys();
    [[nodiscard]] std::vector<std::uint16_t> xtestKeyboards();

    xcb_connection_t *m_connection;
    const xcb_screen_t *m_screen;
    std::uint8_t m_xkbEventCode = 0;
    std::uint8_t m_inputOpcode = 0;
    std::vector<std::uint16_t> m_xtestKeyboards;
};

} // namespace stavelin::platform::x11
