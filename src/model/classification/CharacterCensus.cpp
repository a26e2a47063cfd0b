#include "model/classification/CharacterCensus.h"

#include "model/classification/CharacterBreaks.h"
#include "model/classification/CodePoints.h"

#include <unicode/uchar.h>

#include <array>
#include <cstdint>

namespace stavelin::model::classification {

namespace {

constexpr std::uint8_t tokenCharacter = 1;
constexpr std::uint8_t upperCase = 2;
constexpr std::uint8_t lowerCase = 4;
constexpr std::uint8_t digit = 8;

/// The great block of ideographs, all of them letters; told apart since long texts consist of them.
constexpr char32_t firstIdeograph = 0x4E00;
constexpr char32_t lastIdeograph = 0x9FFF;

constexpr auto asciiKinds = [] {
    std::array<std::uint8_t, 0x80> kinds{};
    for (std::size_t c = 'A'; c <= 'Z'; ++c) {
        kinds[c] = tokenCharacter | upperCase;
    }
    for (std::size_t c = 'a'; c <= 'z'; ++c) {
        kinds[c] = tokenCharacter | lowerCase;
    }
    for (std::size_t c = '0'; c <= '9'; ++c) {
        kinds[c] = tokenCharacter | digit;
    }
    kinds['-'] = tokenCharacter;
    kinds['_'] = tokenCharacter;
    return kinds;
}();

std::uint8_t kindOf(char32_t codePoint)
{
    if (codePoint < asciiKinds.size()) {
        return asciiKinds[codePoint];
    }
    if (codePoint >= firstIdeograph && codePoint <= lastIdeograph) {
        return tokenCharacter;
    }
    switch (u_charType(static_cast<UChar32>(codePoint))) {
    case U_UPPERCASE_LETTER:
        return tokenCharacter | upperCase;
    case U_LOWERCASE_LETTER:
        return tokenCharacter | lowerCase;
    case U_TITLECASE_LETTER:
    case U_MODIFIER_LETTER:
    case U_OTHER_LETTER:
        return tokenCharacter;
    case U_DECIMAL_DIGIT_NUMBER:
        return tokenCharacter | digit;
    default:
        return 0;
    }
}

} // namespace

CharacterCensus takeCensus(std::string_view text)
{
    CharacterCensus census;
    CharacterBreaks breaks;
    std::uint8_t seen = 0;
    std::size_t offset = 0;
    while (offset < text.size()) {
        if (isAscii(text[offset]) && breaks.asciiStartsCharacter()) {
            const std::size_t begin = offset;
            // Behind a carriage return the question whether a character begins has to be asked again.
            while (offset < text.size() && isAscii(text[offset]) && text[offset] != '\r') {
                const std::uint8_t kind = asciiKinds[static_cast<unsigned char>(text[offset])];
                census.tokenCharacters += kind & tokenCharacter;
                seen |= kind;
                ++offset;
            }
            if (offset > begin) {
                census.characters += offset - begin;
                breaks.skipAscii(text[offset - 1]);
                continue;
            }
        }
        const char32_t codePoint = nextCodePoint(text, offset);
        if (breaks.startsCharacter(codePoint)) {
            const std::uint8_t kind = kindOf(codePoint);
            ++census.characters;
            census.tokenCharacters += kind & tokenCharacter;
            seen |= kind;
        }
    }
    census.hasUpperCase = (seen & upperCase) != 0;
    census.hasLowerCase = (seen & lowerCase) != 0;
    census.hasDigit = (seen & digit) != 0;
    return census;
}

} // namespace stavelin::model::classification
