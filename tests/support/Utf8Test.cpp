#include "support/Utf8.h"

#include <gtest/gtest.h>

namespace stavelin::support {
namespace {

TEST(Utf8, wellFormedTextIsValid)
{
    for (const std::string_view text :
         {"", "plain", "é", "€", "😀", "\x7f", "\xf4\x8f\xbf\xbf", "\xed\x9f\xbf"})
        EXPECT_TRUE(isValidUtf8(text)) << text;
    EXPECT_TRUE(isValidUtf8(std::string_view("a\0b", 3)));
}

TEST(Utf8, overlongFormsSurrogatesAndTornCharactersAreNot)
{
    for (const std::string_view text :
         {"\x80", "\xff", "\xfe", "\xc3", "\xe2\x82", "\xf0\x9f\x98", "\xc0\x80", "\xc1\xbf", "\xe0\x80\x80",
          "\xf0\x80\x80\x80", "\xed\xa0\x80", "\xed\xbf\xbf", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80",
          "a\xc3(", "long plain text \xc3"})
        EXPECT_FALSE(isValidUtf8(text));
}

} // namespace
} // namespace stavelin::support
