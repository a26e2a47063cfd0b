#include "platform/x11/X11KeySenderThread.h"

#include "platform/KeyVocabulary.h"
#include "platform/Pasteboard.h"
#include "platform/x11/X11FocusedWindow.h"
#include "platform/x11/selection/SelectionReader.h"
#include "support/Log.h"

#include <poll.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace stavelin::platform::x11 {

namespace {

using SteadyClock = std::chrono::steady_clock;

// Where c, v and Insert stand on most keyboards.
constexpr std::uint8_t positionOfC = 54, positionOfV = 55, positionOfInsert = 118;

} // namespace

X11KeySenderThread::X11KeySenderThread(support::Log &log, std::shared_ptr<X11ExpectedKeys> expectedKeys)
    : m_log(log), m_expectedKeys(std::move(expectedKeys))
{}

void X11KeySenderThread::stop()
{
    m_tasks.post([this] { m_isStopping = true; });
}

void X11KeySenderThread::send(std::int64_t keyCode)
{
    m_tasks.post([this, keyCode] { sendNow(keyCode); });
}

void X11KeySenderThread::run()
{
    for (;;) {
        m_tasks.run();
        if (m_isStopping)
            break; // or poll() would wait for a task that never comes
        readEvents();
        if (m_connection && !m_keyboard) {
            // Now, while nobody waits for it. Reading may read events ahead.
            m_keyboard = X11Keyboard::read(*m_connection);
            readEvents();
        }
        std::optional<SteadyClock::time_point> deadline;
        for (const auto *owner : {m_primary.get(), m_clipboard.get()}) {
            const auto due = owner ? owner->nextDeadline() : std::nullopt;
            if (due && (!deadline || *due < *deadline))
                deadline = due;
        }
        int milliseconds = -1;
        if (deadline) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - SteadyClock::now());
            milliseconds = static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
        }
        pollfd descriptors[] = {
            {m_tasks.descriptor(), POLLIN, 0},
            {m_connection ? xcb_get_file_descriptor(m_connection->get()) : -1, POLLIN, 0}};
        ::poll(descriptors, 2, milliseconds);
        for (auto *owner : {m_primary.get(), m_clipboard.get()}) {
            if (owner != nullptr)
                owner->expire(SteadyClock::now());
        }
    }
    disconnect();
}

bool X11KeySenderThread::connect()
{
    if (m_connection)
        return true;
    auto opened = X11Connection::openForKeys();
    if (!opened) {
        m_log.line("No keys can be sent to other programs: " + opened.error());
        return false;
    }
    m_connection = std::move(*opened);
    X11Keyboard::watch(*m_connection);
    m_keyboard.reset();
    return true;
}

void X11KeySenderThread::disconnect()
{
    if (!m_connection)
        return;
    fake(std::exchange(m_repressed, {}), false);
    m_primary.reset();
    m_clipboard.reset();
    m_connection->roundTrip();
    m_connection.reset();
}

void X11KeySenderThread::readEvents()
{
    if (!m_connection)
        return;
    while (const EventPointer event = m_connection->nextEvent())
        handle(*event);
    if (m_connection->isLost()) {
        m_log.line("The connection for sending keys was lost");
        m_repressed.reset();
        disconnect();
    }
}

void X11KeySenderThread::handle(const xcb_generic_event_t &event)
{
    if (const auto raw = m_connection->rawKey(event)) {
        if (!raw->isPress)
            onRawRelease(*raw);
        return;
    }
    if (X11Keyboard::mayHaveChanged(*m_connection, event))
        m_keyboard.reset();
    // Each knows its own; errors are for both.
    for (auto *owner : {m_primary.get(), m_clipboard.get()}) {
        if (owner != nullptr)
            owner->handle(event);
    }
}

void X11KeySenderThread::onRawRelease(const X11Connection::RawKey &key)
{
    if (key.isSynthesized || !m_repressed[key.keycode])
        return;
    // The user has let go of a key that we hold down as well; it would stay down on our device for ever.
    m_repressed.reset(key.keycode);
    fake(key.keycode, false);
    if (m_repressed.none())
        m_connection->selectRawKeys(0);
    m_connection->flush();
}

void X11KeySenderThread::sendNow(std::int64_t keyCode)
{
    if (keyCode != keys::c && keyCode != keys::v) {
        m_log.line("Only copying and pasting can be sent to other programs");
        return;
    }
    readEvents();
    if (!connect())
        return;
    if (!m_keyboard)
        m_keyboard = X11Keyboard::read(*m_connection);
    if (!m_keyboard) {
        m_log.line("No keys can be sent to other programs: the X server does not tell what its keyboard is");
        return;
    }
    // By value: news of the keyboard may come in the middle.
    const X11Keyboard keyboard = *m_keyboard;
    const std::uint8_t letter = keyCode == keys::c ? keyboard.keyC : keyboard.keyV;
    const std::uint8_t position = keyCode == keys::c ? positionOfC : positionOfV;
    switch (focusedHabit(*m_connection)) {
    case ClipboardHabit::control:
        sendChord(keyboard, letter, position, X11Keyboard::control);
        break;
    case ClipboardHabit::controlShift:
        sendChord(keyboard, letter, position, X11Keyboard::control | X11Keyboard::shift);
        break;
    case ClipboardHabit::primary:
        if (keyCode == keys::c)
            copySelection("PRIMARY", "CLIPBOARD"); // selecting is copying there
        else if (copySelection("CLIPBOARD", "PRIMARY"))
            sendChord(keyboard, keyboard.keyInsert, positionOfInsert, X11Keyboard::shift);
        break;
    }
}

void X11KeySenderThread::sendChord(const X11Keyboard &keyboard, std::uint8_t keycode, std::uint8_t position,
                                   std::uint16_t modifiers)
{
    const X11Keyboard::Keycodes wanted = keyboard.keysOf(modifiers);
    // From before the first look at what is held: a key that the user lets go of later is seen to be.
    m_connection->selectRawKeys(XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);

    // A key that the tap has swallowed is down for the server. Released first, its release is still the
    // tap's.
    m_expectedKeys->begin();
    fake(m_expectedKeys->swallowed() & m_connection->keysDown(), false);
    const X11Keyboard::Keycodes down = m_connection->keysDown();

    // What is down on our own device cannot be pressed there again. The chord's own modifiers may stay.
    fake(m_repressed & ~wanted, false);
    m_repressed &= wanted;

    const X11Keyboard::Keycodes held =
        down & keyboard.keysOf(0xFF) & ~keyboard.keysOf(keyboard.locks()) & ~wanted;
    X11Keyboard::Keycodes pressed;
    for (std::size_t modifier = 0; modifier < keyboard.keysOfModifier.size(); ++modifier) {
        const X11Keyboard::Keycodes &keycodes = keyboard.keysOfModifier[modifier];
        if ((modifiers >> modifier & 1) == 0 || keycodes.none() || (keycodes & down).any())
            continue;
        std::size_t first = 0;
        while (!keycodes[first])
            ++first;
        pressed.set(first);
    }

    // The chord's modifiers go down before the others come up, and up after those are down again: a Super key
    // between whose press and release nothing else happens opens the desktop's menu.
    fake(pressed, false);
    fake(pressed, true);
    fake(held, false);
    for (const std::uint8_t key : {keycode, position}) {
        if (down[key])
            fake(key, false);
    }
    m_expectedKeys->announce(keycode, modifiers);
    fake(keycode, true);
    fake(keycode, false);
    m_connection->roundTrip();
    fake(held, true);
    m_repressed |= held;
    fake(pressed, false);
    if (m_repressed.none())
        m_connection->selectRawKeys(0);
    m_connection->roundTrip();
}

void X11KeySenderThread::fake(std::uint8_t keycode, bool isPress)
{
    xcb_test_fake_input(m_connection->get(), isPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode,
                        XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void X11KeySenderThread::fake(const X11Keyboard::Keycodes &keycodes, bool isPress)
{
    for (std::size_t keycode = 0; keycode < keycodes.size(); ++keycode) {
        if (keycodes[keycode])
            fake(static_cast<std::uint8_t>(keycode), isPress);
    }
}

bool X11KeySenderThread::copySelection(std::string_view from, std::string_view to)
{
    selection::SelectionReader reader(m_connection->get(), m_connection->screen(),
                                      [this](const xcb_generic_event_t &event) { handle(event); });
    auto text = reader.read(from, Pasteboard::maximumTextSize);
    if (text && (!*text || (*text)->empty()))
        return false;
    const bool isPrimary = to == "PRIMARY";
    std::expected<void, selection::SelectionError> owned;
    if (text) {
        auto &owner = isPrimary ? m_primary : m_clipboard;
        if (!owner)
            owner = std::make_unique<selection::SelectionOwner>(
                m_connection->get(), m_connection->screen(),
                [this](const xcb_generic_event_t &event) { handle(event); });
        // What PRIMARY gets here is there for one paste: histories leave it alone.
        owned = owner->own(to, {.utf8 = std::move(**text), .isSecret = isPrimary});
    } else {
        owned = std::unexpected(text.error());
    }
    if (!owned)
        m_log.line("A terminal's selection cannot be had: " +
                   std::string(selection::description(owned.error())));
    return owned.has_value();
}

} // namespace stavelin::platform::x11
