#include "platform/x11/X11ExpectedKeys.h"

#include <algorithm>

namespace stavelin::platform::x11 {

void X11ExpectedKeys::begin()
{
    const std::lock_guard lock(m_mutex);
    m_announcements.clear();
}

void X11ExpectedKeys::announce(std::uint8_t keycode, std::uint16_t modifiers)
{
    const std::lock_guard lock(m_mutex);
    m_announcements.push_back({keycode, modifiers, true, true});
}

bool X11ExpectedKeys::takePress(std::uint8_t keycode, std::uint16_t modifiers)
{
    const std::lock_guard lock(m_mutex);
    const auto found = std::ranges::find_if(m_announcements, [&](const Announcement &announcement) {
        return announcement.isPressPending && announcement.keycode == keycode &&
               announcement.modifiers == modifiers;
    });
    if (found == m_announcements.end())
        return false;
    found->isPressPending = false;
    return true;
}

bool X11ExpectedKeys::takeRawPress(std::uint8_t keycode)
{
    const std::lock_guard lock(m_mutex);
    const auto found = std::ranges::find_if(m_announcements, [&](const Announcement &announcement) {
        return announcement.isRawPressPending && announcement.keycode == keycode;
    });
    if (found == m_announcements.end())
        return false;
    found->isRawPressPending = false;
    return true;
}

void X11ExpectedKeys::setSwallowed(const Keycodes &keycodes)
{
    const std::lock_guard lock(m_mutex);
    m_swallowed = keycodes;
}

X11ExpectedKeys::Keycodes X11ExpectedKeys::swallowed() const
{
    const std::lock_guard lock(m_mutex);
    return m_swallowed;
}

} // namespace stavelin::platform::x11
