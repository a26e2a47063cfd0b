#pragma once

#include "platform/x11/X11Connection.h"

#include <cstdint>
#include <stdexcept>

namespace stavelin::platform::x11 {

/// Another program that has taken a key for itself (DISPLAY), as window managers do, and gives it up at its
/// end.
class KeyHolder
{
public:
    KeyHolder(std::uint8_t keycode, std::uint16_t modifiers)
        : m_connection(std::move(X11Connection::open().value()))
    {
        const auto cookie = xcb_grab_key_checked(m_connection->get(), 0, m_connection->root(), modifiers,
                                                 keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        if (ReplyPointer<xcb_generic_error_t>(xcb_request_check(m_connection->get(), cookie)))
            throw std::runtime_error("the key is held already");
    }
    /// The presses that it got so far.
    int presses()
    {
        m_connection->roundTrip();
        while (const EventPointer event = m_connection->nextEvent())
            m_presses += (event->response_type & 0x7F) == XCB_KEY_PRESS ? 1 : 0;
        return m_presses;
    }

private:
    std::unique_ptr<X11Connection> m_connection;
    int m_presses = 0;
};

} // namespace stavelin::platform::x11
