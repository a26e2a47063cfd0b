#include "platform/x11/X11Chords.h"

#include "platform/KeyVocabulary.h"

#include <algorithm>
#include <array>

namespace stavelin::platform::x11 {

std::vector<X11Chord> chordsOf(const X11Keyboard &keyboard, const TapClient &client, ModifierRoles roles)
{
    const std::array<std::uint16_t, 4> modifiers{X11Keyboard::shift, X11Keyboard::control, keyboard.alt,
                                                 keyboard.super};
    std::vector<X11Chord> chords;
    for (const std::uint8_t keycode : {keyboard.keyV, keyboard.keyC, keyboard.keyS}) {
        for (unsigned combination = 1; combination < 1U << modifiers.size(); ++combination) {
            std::uint16_t mask = 0;
            bool isPossible = true;
            for (std::size_t i = 0; i < modifiers.size(); ++i) {
                if ((combination >> i & 1) == 0)
                    continue;
                isPossible = isPossible && modifiers[i] != 0;
                mask |= modifiers[i];
            }
            const TapEvent event = keyboard.keyDown(keycode, mask, roles);
            if (isPossible && client.isGesture(event))
                chords.push_back({event, keycode, mask, false});
        }
    }
    for (X11Chord &chord : chords) {
        chord.isMain = std::ranges::none_of(chords, [&](const X11Chord &other) {
            return other.keycode == chord.keycode && other.modifiers != chord.modifiers &&
                   (other.modifiers & chord.modifiers) == other.modifiers;
        });
    }
    return chords;
}

std::string nameOf(const X11Chord &chord, const X11Keyboard &keyboard)
{
    std::string name;
    if ((chord.modifiers & keyboard.super) != 0)
        name += "Super+";
    if ((chord.modifiers & X11Keyboard::control) != 0)
        name += "Ctrl+";
    if ((chord.modifiers & keyboard.alt) != 0)
        name += "Alt+";
    if ((chord.modifiers & X11Keyboard::shift) != 0)
        name += "Shift+";
    switch (chord.event.keyCode) {
    case keys::v:
        return name + 'V';
    case keys::c:
        return name + 'C';
    default:
        return name + 'S';
    }
}

} // namespace stavelin::platform::x11
