#pragma once

#include <string>

namespace stavelin::platform::x11 {

class X11Connection;

/// Why the X server of this session does not see every key: one line for people, empty when it does. A
/// Wayland desktop shows X programs only the keys of their own windows.
[[nodiscard]] std::string whyKeysAreHidden();

/// Whether the window manager catches each Super key for itself, with all chords of it: mutter's and muffin's
/// overlay key. Whether the user has turned that off cannot be asked here.
[[nodiscard]] bool isSuperKeyTaken(X11Connection &connection);

} // namespace stavelin::platform::x11
