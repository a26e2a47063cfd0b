#pragma once

#include <cstdint>

/// The key codes and flags that the logic speaks in (macOS virtual key codes and event flags).
namespace stavelin::platform::keys {

inline constexpr std::uint32_t keyDown = 10; ///< TapEvent::type

inline constexpr std::int64_t s = 1;
inline constexpr std::int64_t c = 8;
inline constexpr std::int64_t v = 9;
/// A key that has no code in this vocabulary: it is no gesture's key and no digit.
inline constexpr std::int64_t other = -1;
/// Codes of the digit row, 1 to 9; the keypad has other codes.
inline constexpr std::int64_t digits[9] = {18, 19, 20, 21, 23, 22, 26, 28, 25};

inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;
inline constexpr std::uint64_t command = 0x100000;

} // namespace stavelin::platform::keys
