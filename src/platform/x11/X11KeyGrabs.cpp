#include "platform/x11/X11KeyGrabs.h"

#include <algorithm>

namespace stavelin::platform::x11 {

namespace {

constexpr std::uint8_t firstDigit = 10;
constexpr std::uint8_t lastDigit = 18;

bool isBefore(std::uint32_t sequence, std::optional<std::uint32_t> mark)
{
    // Sequence numbers wrap around.
    return mark && static_cast<std::int32_t>(sequence - *mark) < 0;
}

} // namespace

xcb_void_cookie_t X11KeyGrabs::grabKey(std::uint8_t keycode, std::uint16_t modifiers)
{
    return xcb_grab_key_checked(m_connection.get(), 0, m_connection.root(), modifiers, keycode,
                                XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC);
}

bool X11KeyGrabs::isGranted(xcb_void_cookie_t cookie)
{
    return ReplyPointer<xcb_generic_error_t>(xcb_request_check(m_connection.get(), cookie)) == nullptr;
}

std::vector<X11KeyGrabs::Refusal> X11KeyGrabs::grabChords(const std::vector<X11Chord> &chords,
                                                          const X11Keyboard &keyboard)
{
    xcb_ungrab_key(m_connection.get(), XCB_GRAB_ANY, m_connection.root(), XCB_MOD_MASK_ANY);
    m_hasDigits = false;
    std::vector<Refusal> wanted;
    for (const X11Chord &chord : chords) {
        for (const std::uint16_t locks : keyboard.lockVariants())
            wanted.push_back({chord, locks});
    }
    return grabAgain(wanted);
}

std::vector<X11KeyGrabs::Refusal> X11KeyGrabs::grabAgain(const std::vector<Refusal> &refusals)
{
    // All requests leave before the first answer is waited for.
    std::vector<xcb_void_cookie_t> cookies;
    cookies.reserve(refusals.size());
    for (const Refusal &wanted : refusals)
        cookies.push_back(grabKey(wanted.chord.keycode,
                                  static_cast<std::uint16_t>(wanted.chord.modifiers | wanted.lockVariant)));
    std::vector<Refusal> refused;
    for (std::size_t i = 0; i < cookies.size(); ++i) {
        if (!isGranted(cookies[i]))
            refused.push_back(refusals[i]);
    }
    return refused;
}

void X11KeyGrabs::grabDigits(const X11Keyboard &keyboard)
{
    m_hasDigits = true;
    std::vector<xcb_void_cookie_t> cookies;
    for (std::uint8_t keycode = firstDigit; keycode <= lastDigit; ++keycode)
        cookies.push_back(grabKey(keycode, XCB_MOD_MASK_ANY));
    std::vector<xcb_void_cookie_t> others;
    for (std::uint8_t keycode = firstDigit; keycode <= lastDigit; ++keycode) {
        if (isGranted(cookies[static_cast<std::size_t>(keycode - firstDigit)]))
            continue;
        // One combination that another program holds (a desktop's Super+1) costs the whole request.
        const auto all = static_cast<std::uint16_t>(keyboard.chordModifiers() | keyboard.locks());
        for (std::uint16_t modifiers = 0; modifiers <= all; ++modifiers) {
            if ((modifiers & ~all) == 0)
                others.push_back(grabKey(keycode, modifiers));
        }
    }
    for (const xcb_void_cookie_t cookie : others)
        static_cast<void>(isGranted(cookie));
}

void X11KeyGrabs::dropDigits()
{
    m_hasDigits = false;
    for (std::uint8_t keycode = firstDigit; keycode <= lastDigit; ++keycode)
        xcb_ungrab_key(m_connection.get(), keycode, m_connection.root(), XCB_MOD_MASK_ANY);
}

void X11KeyGrabs::hold()
{
    const auto asked = xcb_grab_keyboard(m_connection.get(), 0, m_connection.root(), XCB_CURRENT_TIME,
                                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC);
    const ReplyPointer<xcb_grab_keyboard_reply_t> answer(
        xcb_grab_keyboard_reply(m_connection.get(), asked, nullptr));
    m_isHolding = answer && answer->status == XCB_GRAB_STATUS_SUCCESS;
    m_overtakenBefore = asked.sequence;
}

// Answers always carry the server's present time: that of the event is older than a grab that was made since,
// and the server silently ignores it, which would leave the keyboard frozen for good.

void X11KeyGrabs::next()
{
    xcb_allow_events(m_connection.get(), XCB_ALLOW_SYNC_KEYBOARD, XCB_CURRENT_TIME);
    m_connection.flush();
}

void X11KeyGrabs::release()
{
    // Thawing first would send the events that wait to us.
    xcb_ungrab_keyboard(m_connection.get(), XCB_CURRENT_TIME);
    m_connection.flush();
    m_isHolding = false;
}

void X11KeyGrabs::replay()
{
    // Not sent off yet: a hold() that follows must stand right behind it.
    xcb_allow_events(m_connection.get(), XCB_ALLOW_REPLAY_KEYBOARD, XCB_CURRENT_TIME);
    m_isHolding = false;
}

void X11KeyGrabs::letGo()
{
    const auto replayed = xcb_allow_events(m_connection.get(), XCB_ALLOW_REPLAY_KEYBOARD, XCB_CURRENT_TIME);
    const auto released = xcb_ungrab_keyboard(m_connection.get(), XCB_CURRENT_TIME);
    m_connection.flush();
    m_isHolding = false;
    m_obsoleteBefore = replayed.sequence;
    m_overtakenBefore = released.sequence;
}

bool X11KeyGrabs::isObsolete(const xcb_generic_event_t &event) const
{
    return isBefore(event.full_sequence, m_obsoleteBefore);
}

bool X11KeyGrabs::isOvertaken(const xcb_generic_event_t &event) const
{
    return isBefore(event.full_sequence, m_overtakenBefore);
}

} // namespace stavelin::platform::x11
