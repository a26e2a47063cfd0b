#pragma once

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11ExpectedKeys.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/selection/SelectionOwner.h"
#include "support/HandOver.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace stavelin::support {
class Log;
}

namespace stavelin::platform::x11 {

/// What the key sender's thread does. For the terminals that paste PRIMARY it also owns selections, and
/// serves them as long as it owns them.
class X11KeySenderThread
{
public:
    X11KeySenderThread(support::Log &log, std::shared_ptr<X11ExpectedKeys> expectedKeys);

    /// Returns after stop(), with no key left down.
    void run();

    void stop();                     ///< Any thread.
    void send(std::int64_t keyCode); ///< Any thread.

private:
    [[nodiscard]] bool connect();
    void disconnect();
    void readEvents();
    void handle(const xcb_generic_event_t &event);
    void onRawRelease(const X11Connection::RawKey &key);

    void sendNow(std::int64_t keyCode);
    /// `position` is where the key stands on most keyboards: the user may hold that one.
    void sendChord(const X11Keyboard &keyboard, std::uint8_t keycode, std::uint8_t position,
                   std::uint16_t modifiers);
    void fake(std::uint8_t keycode, bool isPress);
    void fake(const X11Keyboard::Keycodes &keycodes, bool isPress);

    /// Makes the text of one selection that of another. False when there is none or it cannot be had.
    bool copySelection(std::string_view from, std::string_view to);

    support::Log &m_log;
    std::shared_ptr<X11ExpectedKeys> m_expectedKeys;
    support::HandOver m_tasks;
    bool m_isStopping = false;

    std::unique_ptr<X11Connection> m_connection; // null while there is none
    std::optional<X11Keyboard> m_keyboard;       // nothing when it has to be read again
    std::unique_ptr<selection::SelectionOwner> m_primary;
    std::unique_ptr<selection::SelectionOwner> m_clipboard;
    X11Keyboard::Keycodes m_repressed; // down on our device, because the user holds them on another
};

} // namespace stavelin::platform::x11
