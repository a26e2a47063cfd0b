#pragma once

namespace stavelin::platform::x11 {

class X11Connection;

/// How an application copies and pastes.
enum class ClipboardHabit {
    control,      ///< Ctrl+C and Ctrl+V
    controlShift, ///< Ctrl+Shift+C and Ctrl+Shift+V: a terminal, to which Ctrl+C means to end the program in
                  ///< it
    primary,      ///< a terminal that copies by selecting and pastes the PRIMARY selection with Shift+Insert
};

/// The habit of the application that gets the keys now, by its window's class (ICCCM 4.1.2.5). A few round
/// trips.
[[nodiscard]] ClipboardHabit focusedHabit(X11Connection &connection);

} // namespace stavelin::platform::x11
