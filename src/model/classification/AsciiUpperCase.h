#pragma once

#include <string_view>

namespace stavelin::model::classification {

/// Stands for everything outside of ASCII; no marker holds it.
inline constexpr std::string_view outsideAscii = "\x80";

/// The upper-case form of a code point outside of ASCII, with `outsideAscii` in place of what lies outside of
/// it. These are all such code points whose upper-case form has an ASCII letter (Unicode, full case
/// mappings).
[[nodiscard]] constexpr std::string_view asciiUpperCase(char32_t codePoint)
{
    switch (codePoint) {
    case 0x00DF: // sharp s
        return "SS";
    case 0x0131: // dotless i
        return "I";
    case 0x0149: // n preceded by an apostrophe
        return "\x80N";
    case 0x017F: // long s
        return "S";
    case 0x01F0: // letters with a mark that has no upper-case form of its own
        return "J\x80";
    case 0x1E96:
        return "H\x80";
    case 0x1E97:
        return "T\x80";
    case 0x1E98:
        return "W\x80";
    case 0x1E99:
        return "Y\x80";
    case 0x1E9A:
        return "A\x80";
    case 0xFB00: // ligatures
        return "FF";
    case 0xFB01:
        return "FI";
    case 0xFB02:
        return "FL";
    case 0xFB03:
        return "FFI";
    case 0xFB04:
        return "FFL";
    case 0xFB05:
    case 0xFB06:
        return "ST";
    default:
        return outsideAscii;
    }
}

/// Whether `asciiUpperCase` may be more than `outsideAscii` for a code point whose first byte in UTF-8 is
/// `byte`. Most scripts can be passed over by this alone. A byte that does not begin a code point never may.
[[nodiscard]] constexpr bool mayReachIntoAscii(char byte)
{
    switch (static_cast<unsigned char>(byte)) {
    case 0xC3:
    case 0xC4:
    case 0xC5:
    case 0xC7:
    case 0xE1:
    case 0xEF:
        return true;
    default:
        return false;
    }
}

} // namespace stavelin::model::classification
