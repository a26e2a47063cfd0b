#pragma once

#include "platform/x11/X11Chords.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Keyboard.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace stavelin::platform::x11 {

/// Which keys the server hands to us, and what becomes of the event for which it has frozen the keyboard.
///
/// All grabs are synchronous: an event that one of them catches freezes the keyboard until one of the answers
/// below, so nothing that is typed meanwhile overtakes it.
class X11KeyGrabs
{
public:
    explicit X11KeyGrabs(X11Connection &connection) : m_connection(connection) {}

    /// One combination with locks that another program holds.
    struct Refusal
    {
        X11Chord chord;
        std::uint16_t lockVariant;
    };
    /// Takes these chords with all lock variants in place of the former ones. One round trip. Drops the
    /// digits.
    [[nodiscard]] std::vector<Refusal> grabChords(const std::vector<X11Chord> &chords,
                                                  const X11Keyboard &keyboard);
    /// Tries refused ones again; returns those that still are.
    [[nodiscard]] std::vector<Refusal> grabAgain(const std::vector<Refusal> &refusals);

    /// Takes the digit row with whatever modifiers, or as many of their combinations as can be had.
    void grabDigits(const X11Keyboard &keyboard);
    void dropDigits();
    [[nodiscard]] bool hasDigits() const { return m_hasDigits; }

    /// Whether every key comes to us.
    [[nodiscard]] bool isHolding() const { return m_isHolding; }

    /// Takes every key; the keyboard stays frozen until next() or release(). Fails when another program is
    /// faster, which isHolding() says; not while an event of ours is in hand.
    void hold();
    /// The event in hand is ours, and so is the next one.
    void next();
    /// The event in hand is ours. Those that wait behind it, and all later ones, go their usual ways.
    void release();
    /// Gives the event in hand to the application, as if it had never been caught, and ends the holding.
    /// Takes effect with the next request that is sent off.
    void replay();

    /// Ends the holding when no event is in hand. One that has just been sent to us goes to the application
    /// instead: isObsolete() tells it.
    void letGo();
    [[nodiscard]] bool isObsolete(const xcb_generic_event_t &event) const;
    /// A grabbed press that stood behind a replayed event was sent to us and then overtaken by the hold()
    /// that followed: it is ours, the keyboard is not frozen for it, and no answer is due.
    [[nodiscard]] bool isOvertaken(const xcb_generic_event_t &event) const;

private:
    [[nodiscard]] xcb_void_cookie_t grabKey(std::uint8_t keycode, std::uint16_t modifiers);
    [[nodiscard]] bool isGranted(xcb_void_cookie_t cookie);

    X11Connection &m_connection;
    bool m_hasDigits = false;
    bool m_isHolding = false;
    std::optional<std::uint32_t> m_obsoleteBefore;
    std::optional<std::uint32_t> m_overtakenBefore;
};

} // namespace stavelin::platform::x11
