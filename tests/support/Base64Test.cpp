#include "support/Base64.h"

#include <string>

#include <gtest/gtest.h>

namespace stavelin::support {
namespace {

std::vector<std::byte> bytes(std::string_view text)
{
    const auto *begin = reinterpret_cast<const std::byte *>(text.data());
    return {begin, begin + text.size()};
}

TEST(Base64, decodesTheVectorsOfItsStandard)
{
    EXPECT_EQ(decodeBase64(""), bytes(""));
    EXPECT_EQ(decodeBase64("Zg=="), bytes("f"));
    EXPECT_EQ(decodeBase64("Zm8="), bytes("fo"));
    EXPECT_EQ(decodeBase64("Zm9v"), bytes("foo"));
    EXPECT_EQ(decodeBase64("Zm9vYg=="), bytes("foob"));
    EXPECT_EQ(decodeBase64("Zm9vYmE="), bytes("fooba"));
    EXPECT_EQ(decodeBase64("Zm9vYmFy"), bytes("foobar"));
    EXPECT_EQ(decodeBase64("+/+/"), bytes("\xFB\xFF\xBF"));
}

TEST(Base64, refusesMissingAndSuperfluousPadding)
{
    for (const std::string_view text :
         {"Zg", "Zg=", "Zm8", "Zm9vYg", "Z===", "====", "=", "==", "Zm9v=", "Zm9v===="})
        EXPECT_FALSE(decodeBase64(text)) << text;
}

TEST(Base64, refusesPaddingInTheMiddle)
{
    for (const std::string_view text : {"Zg==Zg==", "Zm8=Zm9v", "Z=g=", "=Zg="})
        EXPECT_FALSE(decodeBase64(text)) << text;
}

TEST(Base64, refusesEveryCharacterOutsideTheAlphabet)
{
    for (int character = 0; character < 256; ++character) {
        const bool isInAlphabet = std::isalnum(character) != 0 || character == '+' || character == '/';
        if (isInAlphabet || character == '=')
            continue;
        for (std::size_t place = 0; place < 4; ++place) {
            std::string text = "Zm9vZm9v";
            text[place] = static_cast<char>(character);
            EXPECT_FALSE(decodeBase64(text)) << character << " at " << place;
        }
    }
    EXPECT_FALSE(decodeBase64("Zm9v\nZm9v"));
    EXPECT_FALSE(decodeBase64(" Zm9v"));
    EXPECT_FALSE(decodeBase64("-_-_"));
}

TEST(Base64, refusesBitsThatStandForNoByte)
{
    EXPECT_FALSE(decodeBase64("Zh=="));
    EXPECT_FALSE(decodeBase64("Zm9="));
}

TEST(Base64, decodesWhatItEncoded)
{
    std::string all;
    for (int i = 0; i < 256; ++i) {
        all += static_cast<char>(i);
        EXPECT_EQ(decodeBase64(encodeBase64(bytes(all))), bytes(all)) << i;
    }
}

} // namespace
} // namespace stavelin::support
