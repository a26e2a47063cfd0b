#pragma once

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace stavelin::model::classification {

/// What an ill-formed sequence reads as.
inline constexpr char32_t replacementCharacter = 0xFFFD;

/// The code point at `offset`, which must lie inside `text`; moves `offset` behind it. An ill-formed sequence
/// (the longest part of it that could have begun a character) reads as the replacement character.
[[nodiscard]] inline char32_t nextCodePoint(std::string_view text, std::size_t &offset)
{
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(text.data());
    std::int32_t codePoint = 0;
    U8_NEXT(bytes, offset, text.size(), codePoint); // NOLINT: the macro is the library's interface
    return codePoint < 0 ? replacementCharacter : static_cast<char32_t>(codePoint);
}

[[nodiscard]] constexpr bool isAscii(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80;
}

} // namespace stavelin::model::classification
