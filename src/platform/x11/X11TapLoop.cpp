#include "platform/x11/X11TapLoop.h"

#include "platform/KeyVocabulary.h"
#include "platform/x11/X11FocusedWindow.h"
#include "support/Log.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

namespace stavelin::platform::x11 {

namespace {

using SteadyClock = std::chrono::steady_clock;

// A change of layout comes as a bunch of notices, and every synthesized key brings some that change nothing.
constexpr std::chrono::milliseconds refreshDelay{100};
// Nothing tells when another program lets a chord go.
constexpr std::chrono::seconds retryDelay{5};

} // namespace

X11TapLoop::X11TapLoop(std::unique_ptr<X11Connection> connection, TapClient &client, support::Log &log,
                       ModifierRoles roles, std::shared_ptr<X11ExpectedKeys> expectedKeys)
    : m_connection(std::move(connection)), m_client(client), m_log(log), m_roles(roles),
      m_expectedKeys(std::move(expectedKeys)), m_grabs(*m_connection)
{}

bool X11TapLoop::install()
{
    X11Keyboard::watch(*m_connection);
    return refreshKeyboard() && !m_connection->isLost();
}

void X11TapLoop::stop()
{
    m_isStopping = true;
    m_wakeUp.signal();
}

std::vector<TapConflict> X11TapLoop::conflicts() const
{
    const std::lock_guard lock(m_conflictsMutex);
    return m_conflicts;
}

void X11TapLoop::run()
{
    while (!m_isStopping && !m_connection->isLost()) {
        followClient();
        // The wait is over while its modifiers are still held: from here on they are the user's own affair.
        if (m_grabs.isHolding() && m_swallowed.none() && !m_client.isWaitingForDigit())
            m_grabs.letGo();
        doWhatIsDue();
        bool hasRead = false;
        while (const EventPointer event = m_connection->nextEvent()) {
            dispatch(*event);
            hasRead = true;
        }
        // Handling an event may have read further ones ahead.
        if (hasRead)
            continue;
        m_connection->waitForEvents(m_wakeUp.descriptor(), nextDue());
        m_wakeUp.clear();
    }
    m_expectedKeys->setSwallowed({});
    if (m_isStopping)
        return;

    constexpr auto reason = "the connection to the X server was lost";
    m_log.line(std::string("The shortcuts have stopped: ") + reason);
    const std::lock_guard lock(m_conflictsMutex);
    m_conflicts.clear();
    for (const X11Chord &chord : chordsOf(*m_keyboard, m_client, m_roles)) {
        if (chord.isMain)
            m_conflicts.push_back({chord.event.keyCode, chord.event.flags, reason});
    }
}

void X11TapLoop::dispatch(const xcb_generic_event_t &event)
{
    if (const auto raw = m_connection->rawKey(event)) {
        if (raw->isPress)
            onRawPress(*raw);
        return;
    }
    switch (event.response_type & 0x7F) {
    case XCB_KEY_PRESS:
        if (!m_grabs.isObsolete(event))
            onPress(reinterpret_cast<const xcb_key_press_event_t &>(event));
        return;
    case XCB_KEY_RELEASE:
        if (!m_grabs.isObsolete(event))
            onRelease(reinterpret_cast<const xcb_key_release_event_t &>(event));
        return;
    default:
        if (X11Keyboard::mayHaveChanged(*m_connection, event))
            m_refreshDue = SteadyClock::now() + refreshDelay;
    }
}

void X11TapLoop::onPress(const xcb_key_press_event_t &press)
{
    const auto modifiers = static_cast<std::uint16_t>(press.state & m_keyboard->chordModifiers());
    if (m_grabs.isOvertaken(reinterpret_cast<const xcb_generic_event_t &>(press))) {
        if (decide(press.detail, modifiers) == TapVerdict::swallow)
            setSwallowed(X11Keyboard::Keycodes(m_swallowed).set(press.detail));
        settleOvertaken();
        return;
    }
    if (m_keyboard->isModifierKey(press.detail) || m_expectedKeys->takePress(press.detail, modifiers)) {
        settle(TapVerdict::passThrough);
    } else if (m_swallowed[press.detail]) {
        settle(TapVerdict::swallow); // it repeats
    } else {
        const TapVerdict verdict = decide(press.detail, modifiers);
        if (verdict == TapVerdict::swallow)
            setSwallowed(X11Keyboard::Keycodes(m_swallowed).set(press.detail));
        settle(verdict);
    }
}

void X11TapLoop::onRelease(const xcb_key_release_event_t &release)
{
    if (!m_swallowed[release.detail]) {
        settle(TapVerdict::passThrough);
        return;
    }
    setSwallowed(X11Keyboard::Keycodes(m_swallowed).reset(release.detail));
    settle(TapVerdict::swallow);
}

void X11TapLoop::onRawPress(const X11Connection::RawKey &key)
{
    // What is grabbed comes as an event of its own, and the application gets nothing that it should not.
    if (m_grabs.isHolding() || !m_client.isWaitingForDigit() || X11Keyboard::isDigitKey(key.keycode) ||
        m_keyboard->isModifierKey(key.keycode))
        return;
    if (key.isSynthesized && m_expectedKeys->takeRawPress(key.keycode))
        return;
    const ReplyPointer<xcb_query_pointer_reply_t> state(xcb_query_pointer_reply(
        m_connection->get(), xcb_query_pointer(m_connection->get(), m_connection->root()), nullptr));
    if (!state)
        return;
    const TapEvent event = m_keyboard->keyDown(
        key.keycode, static_cast<std::uint16_t>(state->mask & m_keyboard->chordModifiers()), m_roles);
    if (!m_client.isGesture(event))
        static_cast<void>(m_client.handle(event));
}

TapVerdict X11TapLoop::decide(std::uint8_t keycode, std::uint16_t modifiers)
{
    TapEvent event = m_keyboard->keyDown(keycode, modifiers, m_roles);
    // A terminal pastes with this very chord: there it is a key like any other.
    if (event.keyCode == keys::v && modifiers == (X11Keyboard::control | X11Keyboard::shift) &&
        focusedHabit(*m_connection) != ClipboardHabit::control)
        event.keyCode = keys::other;
    return m_client.handle(event);
}

void X11TapLoop::settle(TapVerdict verdict)
{
    // The keyboard is frozen: what is grabbed here is grabbed before the next key can come.
    followClient();
    const bool hold = mustHold();
    if (verdict == TapVerdict::passThrough)
        m_grabs.replay();
    if (hold)
        keepHolding();
    else if (verdict == TapVerdict::swallow)
        m_grabs.release();
    m_connection->flush();
}

void X11TapLoop::settleOvertaken()
{
    followClient();
    if (!m_grabs.isHolding() && mustHold())
        keepHolding();
}

void X11TapLoop::keepHolding()
{
    if (!m_grabs.isHolding()) {
        m_grabs.hold();
        // What stood behind a replayed event has slipped through, releases too.
        setSwallowed(m_grabs.isHolding() ? m_swallowed & m_connection->keysDown() : X11Keyboard::Keycodes{});
    }
    if (mustHold())
        m_grabs.next();
    else
        m_grabs.release();
}

bool X11TapLoop::mustHold()
{
    if (m_swallowed.any())
        return true;
    return m_client.isWaitingForDigit() &&
           (m_connection->keysDown() & m_keyboard->keysOf(m_keyboard->chordModifiers())).any();
}

void X11TapLoop::setSwallowed(const X11Keyboard::Keycodes &keycodes)
{
    m_swallowed = keycodes;
    m_expectedKeys->setSwallowed(m_swallowed);
}

void X11TapLoop::followClient()
{
    const bool isWaiting = m_client.isWaitingForDigit();
    if (isWaiting == m_grabs.hasDigits())
        return;
    if (isWaiting) {
        m_grabs.grabDigits(*m_keyboard);
        m_connection->selectRawKeys(XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS);
    } else {
        m_grabs.dropDigits();
        m_connection->selectRawKeys(0);
    }
    m_connection->flush();
}

void X11TapLoop::doWhatIsDue()
{
    const TimePoint now = SteadyClock::now();
    if (const auto due = nextDue(); !due || now < *due)
        return;
    if (m_refreshDue && now >= *m_refreshDue) {
        m_refreshDue.reset();
        static_cast<void>(refreshKeyboard()); // fails with the connection, which ends the loop
    }
    if (m_retryDue && now >= *m_retryDue)
        noteRefusals(m_grabs.grabAgain(m_refusals));
}

std::optional<X11TapLoop::TimePoint> X11TapLoop::nextDue() const
{
    // A gesture goes on with the grabs with which it has begun.
    if (m_grabs.isHolding() || m_grabs.hasDigits())
        return std::nullopt;
    if (m_refreshDue && m_retryDue)
        return std::min(*m_refreshDue, *m_retryDue);
    return m_refreshDue ? m_refreshDue : m_retryDue;
}

bool X11TapLoop::refreshKeyboard()
{
    const auto keyboard = X11Keyboard::read(*m_connection);
    if (!keyboard)
        return false;
    if (m_keyboard == keyboard)
        return true;
    m_keyboard = keyboard;
    noteRefusals(m_grabs.grabChords(chordsOf(*keyboard, m_client, m_roles), *keyboard));
    return true;
}

void X11TapLoop::noteRefusals(std::vector<X11KeyGrabs::Refusal> refusals)
{
    m_refusals = std::move(refusals);
    m_retryDue = m_refusals.empty() ? std::nullopt : std::optional(SteadyClock::now() + retryDelay);

    // One chord has several lock variants; it is told of once.
    std::set<std::string> reasons;
    std::vector<TapConflict> conflicts;
    for (const X11KeyGrabs::Refusal &refusal : m_refusals) {
        std::string reason = nameOf(refusal.chord, *m_keyboard) + " is held by another program";
        if (!reasons.insert(reason).second)
            continue;
        if (!m_refusalsSaid.contains(reason))
            m_log.line("The shortcut " + reason);
        if (refusal.chord.isMain)
            conflicts.push_back({refusal.chord.event.keyCode, refusal.chord.event.flags, std::move(reason)});
    }
    m_refusalsSaid = std::move(reasons);
    const std::lock_guard lock(m_conflictsMutex);
    m_conflicts = std::move(conflicts);
}

} // namespace stavelin::platform::x11
