#include "model/classification/AsciiUpperCase.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <gtest/gtest.h>

namespace stavelin::model::classification {
namespace {

bool hasAscii(std::string_view text)
{
    return text.find_first_not_of('\x80') != std::string_view::npos;
}

TEST(AsciiUpperCase, everyCodePointWhoseUpperCaseFormReachesIntoAsciiIsListed)
{
    for (char32_t codePoint = 0x80; codePoint <= 0x10FFFF; ++codePoint) {
        const icu::UnicodeString upper =
            icu::UnicodeString(static_cast<UChar32>(codePoint)).toUpper(icu::Locale::getRoot());
        std::string expected;
        for (int i = 0; i < upper.length(); ++i) {
            expected += upper[i] < 0x80 ? static_cast<char>(upper[i]) : '\x80';
        }
        if (hasAscii(expected) || hasAscii(asciiUpperCase(codePoint))) {
            // How much of it lies outside of ASCII makes no difference.
            while (expected.ends_with("\x80\x80")) {
                expected.pop_back();
            }
            EXPECT_EQ(asciiUpperCase(codePoint), expected) << std::hex << static_cast<unsigned>(codePoint);
        }
    }
}

TEST(AsciiUpperCase, theFirstByteTellsWhereItNeedNotBeAskedFor)
{
    for (char32_t codePoint = 0x80; codePoint <= 0x10FFFF; ++codePoint) {
        if (hasAscii(asciiUpperCase(codePoint))) {
            std::string utf8;
            icu::UnicodeString(static_cast<UChar32>(codePoint)).toUTF8String(utf8);
            EXPECT_TRUE(mayReachIntoAscii(utf8.front())) << std::hex << static_cast<unsigned>(codePoint);
        }
    }
    for (int byte = 0x80; byte < 0xC0; ++byte) {
        EXPECT_FALSE(mayReachIntoAscii(static_cast<char>(byte))) << byte;
    }
}

} // namespace
} // namespace stavelin::model::classification
