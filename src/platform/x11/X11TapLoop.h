#pragma once

#include "platform/EventTap.h"
#include "platform/ModifierRoles.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11ExpectedKeys.h"
#include "platform/x11/X11KeyGrabs.h"
#include "platform/x11/X11Keyboard.h"
#include "support/WakeUp.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace stavelin::support {
class Log;
}

namespace stavelin::platform::x11 {

/// What the tap's thread does: it decides about each event for which the keyboard is frozen.
///
/// Chords are grabbed all the time. While the keys of a gesture are held every key comes here, so that also a
/// digit whose chord another program holds ends the gesture. Once they are up only the digits are grabbed,
/// and raw events tell of another key, which goes its own way untouched.
class X11TapLoop
{
public:
    X11TapLoop(std::unique_ptr<X11Connection> connection, TapClient &client, support::Log &log,
               ModifierRoles roles, std::shared_ptr<X11ExpectedKeys> expectedKeys);

    /// Takes the chords. False when the connection is lost. Before run(), on any thread.
    [[nodiscard]] bool install();
    /// Returns after stop() or when the connection is lost, with all keys given back.
    void run();

    void stop();                                              ///< Any thread.
    void waitingChanged() { m_wakeUp.signal(); }              ///< Any thread.
    [[nodiscard]] std::vector<TapConflict> conflicts() const; ///< Any thread.

private:
    using TimePoint = std::chrono::steady_clock::time_point;

    void dispatch(const xcb_generic_event_t &event);
    void onPress(const xcb_key_press_event_t &press);
    void onRelease(const xcb_key_release_event_t &release);
    void onRawPress(const X11Connection::RawKey &key);
    [[nodiscard]] TapVerdict decide(std::uint8_t keycode, std::uint16_t modifiers);
    void settle(TapVerdict verdict);
    void settleOvertaken();
    void keepHolding();

    void followClient();
    [[nodiscard]] bool mustHold();
    void setSwallowed(const X11Keyboard::Keycodes &keycodes);

    void doWhatIsDue();
    [[nodiscard]] std::optional<TimePoint> nextDue() const;
    [[nodiscard]] bool refreshKeyboard();
    void noteRefusals(std::vector<X11KeyGrabs::Refusal> refusals);

    std::unique_ptr<X11Connection> m_connection;
    TapClient &m_client;
    support::Log &m_log;
    ModifierRoles m_roles;
    std::shared_ptr<X11ExpectedKeys> m_expectedKeys;
    X11KeyGrabs m_grabs;

    std::optional<X11Keyboard> m_keyboard;
    std::vector<X11KeyGrabs::Refusal> m_refusals;
    std::set<std::string> m_refusalsSaid;
    X11Keyboard::Keycodes m_swallowed; // pressed for us and still down
    std::optional<TimePoint> m_refreshDue;
    std::optional<TimePoint> m_retryDue;

    support::WakeUp m_wakeUp;
    std::atomic<bool> m_isStopping = false;
    mutable std::mutex m_conflictsMutex;
    std::vector<TapConflict> m_conflicts;
};

} // namespace stavelin::platform::x11
