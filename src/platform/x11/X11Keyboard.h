#pragma once

#include "platform/EventTap.h"
#include "platform/ModifierRoles.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

namespace stavelin::platform::x11 {

class X11Connection;

/// What the keys of the session's keyboard mean. Key codes are the core protocol's, modifiers its masks (bits
/// 0 to 7).
struct X11Keyboard
{
    using Keycodes = std::bitset<256>;

    static constexpr std::uint16_t shift = 1, lock = 2, control = 4;
    std::uint16_t alt = 0;        ///< 0 when no key is bound to it
    std::uint16_t super = 0;      ///< likewise
    std::uint16_t numLock = 0;    ///< likewise
    std::uint16_t scrollLock = 0; ///< likewise
    /// The keys of each modifier, by its bit.
    std::array<Keycodes, 8> keysOfModifier{};
    /// The keys that type these in the current layout, else in another one of the keyboard's layouts, else
    /// the ones that stand there on most keyboards.
    std::uint8_t keyC = 54, keyV = 55, keyS = 39, keyInsert = 118;

    /// Has the connection told of everything that may change what is read here, and of repeats without
    /// releases.
    static void watch(X11Connection &connection);
    /// Whether it is worth reading again after this event.
    [[nodiscard]] static bool mayHaveChanged(const X11Connection &connection,
                                             const xcb_generic_event_t &event);
    /// Nothing when the connection is lost. `connection` was opened for keys.
    [[nodiscard]] static std::optional<X11Keyboard> read(X11Connection &connection);

    /// The modifiers that shortcuts are made of.
    [[nodiscard]] std::uint16_t chordModifiers() const
    {
        return static_cast<std::uint16_t>(shift | control | alt | super);
    }
    [[nodiscard]] std::uint16_t locks() const
    {
        return static_cast<std::uint16_t>(lock | numLock | scrollLock);
    }
    /// Every combination of lock modifiers, none of them first.
    [[nodiscard]] std::vector<std::uint16_t> lockVariants() const;
    /// The keys of all modifiers in a mask.
    [[nodiscard]] Keycodes keysOf(std::uint16_t modifiers) const;

    [[nodiscard]] static bool isDigitKey(std::uint8_t keycode) { return keycode >= 10 && keycode <= 18; }
    [[nodiscard]] bool isModifierKey(std::uint8_t keycode) const { return keysOf(0xFF)[keycode]; }

    /// A press of this key while these modifiers are held, in the vocabulary of the logic.
    [[nodiscard]] TapEvent keyDown(std::uint8_t keycode, std::uint16_t modifiers, ModifierRoles roles) const;

    friend bool operator==(const X11Keyboard &, const X11Keyboard &) = default;
};

} // namespace stavelin::platform::x11
