#include "model/classification/WhiteSpace.h"

#include <gtest/gtest.h>

#include <array>

namespace stavelin::model::classification {
namespace {

TEST(WhiteSpace, itIsBlanksLineEndsAndTheirKindAndNothingElse)
{
    constexpr std::array<char32_t, 25> all{0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,
                                           0xA0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004,
                                           0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A, 0x2028,
                                           0x2029, 0x202F, 0x205F, 0x3000};
    std::size_t found = 0;
    for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        if (isWhiteSpace(codePoint)) {
            ASSERT_LT(found, all.size());
            EXPECT_EQ(codePoint, all[found]);
            ++found;
        }
    }
    EXPECT_EQ(found, all.size());
}

TEST(WhiteSpace, itIsTrimmedFromBothEndsAndLeftInside)
{
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed(" \t\r\n\v\f"), "");
    EXPECT_EQ(trimmed("  a b\tc \n"), "a b\tc");
    EXPECT_EQ(trimmed("\u00A0\u2003x\u3000\u2028\u0085"), "x");
}

TEST(WhiteSpace, charactersThatOnlyResembleItStay)
{
    EXPECT_EQ(trimmed("\u200Bx\uFEFF"), "\u200Bx\uFEFF");
    // The last bytes of these letters are those of white space.
    EXPECT_EQ(trimmed("x\u0120"), "x\u0120");
    EXPECT_EQ(trimmed("x\u0145"), "x\u0145");
}

TEST(WhiteSpace, brokenBytesStay)
{
    EXPECT_EQ(trimmed("\x80 x\xA0"), "\x80 x\xA0");
    EXPECT_EQ(trimmed("\xE3\x80"), "\xE3\x80");
    EXPECT_EQ(trimmed("\xF0\x80\x80\x80 "), "\xF0\x80\x80\x80");
}

} // namespace
} // namespace stavelin::model::classification
