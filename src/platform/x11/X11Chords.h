#pragma once

#include "platform/EventTap.h"
#include "platform/ModifierRoles.h"
#include "platform/x11/X11Keyboard.h"

#include <cstdint>
#include <string>
#include <vector>

namespace stavelin::platform::x11 {

/// A key with modifiers, locks aside, that the tap swallows at any time.
struct X11Chord
{
    TapEvent event;
    std::uint8_t keycode = 0;
    std::uint16_t modifiers = 0;
    /// No chord of fewer modifiers does the same: this is the one that people are told of.
    bool isMain = false;
};

/// Every combination of this keyboard that the client takes for a gesture, each with at least one modifier.
[[nodiscard]] std::vector<X11Chord> chordsOf(const X11Keyboard &keyboard, const TapClient &client,
                                             ModifierRoles roles);

/// "Ctrl+Shift+V", by the names that stand on the keys.
[[nodiscard]] std::string nameOf(const X11Chord &chord, const X11Keyboard &keyboard);

} // namespace stavelin::platform::x11
