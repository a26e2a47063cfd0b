#pragma once

#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace stavelin::e2e {

/// The key symbols of a chord in the order in which they are pressed: "Ctrl+Shift+V" is Control_L, Shift_L,
/// v. Ctrl, Shift, Alt and Super are the left keys; other names are those of X ("Return", "Home", "x", "3").
/// Throws Unmet for a name that no key has.
[[nodiscard]] std::vector<xcb_keysym_t> keysOfChord(std::string_view chord);

} // namespace stavelin::e2e
