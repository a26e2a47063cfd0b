#include "model/classification/WhiteSpace.h"

#include "model/classification/CodePoints.h"

#include <unicode/uchar.h>

#include <cstddef>

namespace stavelin::model::classification {

namespace {

/// How many bytes of white space `text` ends with: the length of its last character, or 0.
std::size_t lastWhiteSpaceLength(std::string_view text)
{
    // White space takes at most three bytes, so the last three places are the only ones it can begin at.
    for (std::size_t length = 1; length <= 3 && length <= text.size(); ++length) {
        const std::string_view tail = text.substr(text.size() - length);
        std::size_t offset = 0;
        const char32_t codePoint = nextCodePoint(tail, offset);
        if (offset == length && isWhiteSpace(codePoint)) {
            return length;
        }
    }
    return 0;
}

} // namespace

bool isWhiteSpace(char32_t codePoint)
{
    if (codePoint < 0x80) {
        return codePoint == U' ' || (codePoint >= U'\t' && codePoint <= U'\r');
    }
    return u_isUWhiteSpace(static_cast<UChar32>(codePoint)) != 0;
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty()) {
        std::size_t offset = 0;
        if (!isWhiteSpace(nextCodePoint(text, offset))) {
            break;
        }
        text.remove_prefix(offset);
    }
    while (const std::size_t length = lastWhiteSpaceLength(text)) {
        text.remove_suffix(length);
    }
    return text;
}

} // namespace stavelin::model::classification
