#include "model/classification/UserCharacters.h"

#include "model/classification/CharacterBreaks.h"
#include "model/classification/CodePoints.h"

#include <cstdint>
#include <cstring>

namespace stavelin::model::classification {

namespace {

constexpr std::size_t wordSize = sizeof(std::uint64_t);
constexpr std::uint64_t everyLowBit = 0x0101010101010101;
constexpr std::uint64_t everyHighBit = 0x8080808080808080;

/// Whether the eight bytes at `bytes` are ASCII without a carriage return, which alone among ASCII can begin
/// a character of two code points.
bool areSingleCharacters(const char *bytes)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, wordSize);
    // A byte that equals CR becomes zero, and only a zero byte borrows into its high bit; a false alarm that
    // a borrow leaves in the byte above one costs nothing but the slower way.
    const std::uint64_t difference = word ^ (everyLowBit * static_cast<unsigned char>('\r'));
    const std::uint64_t carriageReturns = (difference - everyLowBit) & ~difference;
    return ((word | carriageReturns) & everyHighBit) == 0;
}

} // namespace

std::size_t countCharacters(std::string_view text)
{
    CharacterBreaks breaks;
    std::size_t count = 0;
    std::size_t offset = 0;
    while (offset < text.size()) {
        if (isAscii(text[offset]) && breaks.asciiStartsCharacter()) {
            const std::size_t begin = offset;
            while (text.size() - offset >= wordSize && areSingleCharacters(text.data() + offset)) {
                offset += wordSize;
            }
            if (offset > begin) {
                count += offset - begin;
                breaks.skipAscii(text[offset - 1]);
                continue;
            }
        }
        if (breaks.startsCharacter(nextCodePoint(text, offset))) {
            ++count;
        }
    }
    return count;
}

std::string_view firstCharacters(std::string_view text, std::size_t count)
{
    CharacterBreaks breaks;
    std::size_t begun = 0;
    std::size_t offset = 0;
    while (offset < text.size()) {
        const std::size_t begin = offset;
        if (breaks.startsCharacter(nextCodePoint(text, offset)) && ++begun > count) {
            return text.substr(0, begin);
        }
    }
    return text;
}

} // namespace stavelin::model::classification
