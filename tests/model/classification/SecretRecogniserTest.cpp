#include "model/classification/Described.h"
#include "model/classification/Recognisers.h"

#include <gtest/gtest.h>

namespace stavelin::model::classification {
namespace {

bool isSecret(std::string_view text)
{
    const auto result = recogniseSecret(text);
    if (result) {
        EXPECT_EQ(described(result), "apiKey [Sensitive]");
    }
    return result.has_value();
}

TEST(SecretRecogniser, everyKnownPrefixMakesASecret)
{
    for (const std::string_view prefix :
         {"sk-",   "pk_",   "sk_",   "api_", "ghp_", "gho_", "ghs_", "ghr_",    "xoxb-",
          "xoxp-", "xoxa-", "xoxr-", "AKIA", "ABIA", "ACCA", "AGPA", "AIDA",    "AIPA",
          "ANPA",  "ANVA",  "APKA",  "AROA", "ASCA", "ASIA", "eyJ",  "Bearer ", "bearer "}) {
        EXPECT_TRUE(isSecret(std::string(prefix) + "x")) << prefix;
        EXPECT_TRUE(isSecret(prefix)) << prefix;
        EXPECT_FALSE(isSecret(prefix.substr(0, prefix.size() - 1))) << prefix;
        EXPECT_FALSE(isSecret("." + std::string(prefix))) << prefix;
    }
}

TEST(SecretRecogniser, prefixesAreKnownInAnyLetterCase)
{
    EXPECT_TRUE(isSecret("SK-abc"));
    EXPECT_TRUE(isSecret("GhP_abc"));
    EXPECT_TRUE(isSecret("BEARER abc"));
    EXPECT_TRUE(isSecret("akia"));
    EXPECT_TRUE(isSecret("EYj"));
}

TEST(SecretRecogniser, aPrefixWrittenWithTheKelvinSignIsKnown)
{
    EXPECT_TRUE(isSecret("s\u212A-abc"));
    EXPECT_TRUE(isSecret("A\u212AIA"));
}

TEST(SecretRecogniser, aLetterThatOnlyResemblesOneOfAPrefixDoesNotMakeIt)
{
    EXPECT_FALSE(isSecret("\u0455k-abc"));
    EXPECT_FALSE(isSecret("A\u0130DA"));
    EXPECT_FALSE(isSecret("\u017Fk-abc"));
}

TEST(SecretRecogniser, aLineFeedMakesAnyTextHarmless)
{
    EXPECT_FALSE(isSecret("ghp_abc\nmore"));
    EXPECT_FALSE(isSecret("0123456789abcdef0123456789abcdef\nmore"));
    EXPECT_TRUE(isSecret("ghp_abc\rmore"));
}

TEST(SecretRecogniser, aLongTokenNeedsALetterBesideDigitsOrBothLetterCases)
{
    EXPECT_TRUE(isSecret("0123456789abcdefghij0123456789abcdefghij"));
    EXPECT_TRUE(isSecret("0123456789ABCDEFGHIJ0123456789ABCDEFGHIJ"));
    EXPECT_TRUE(isSecret("abcdefghijklmnopqrstABCDEFGHIJKLMNOPQRST"));
    EXPECT_FALSE(isSecret("abcdefghijklmnopqrstabcdefghijklmnopqrst"));
    EXPECT_FALSE(isSecret("ABCDEFGHIJKLMNOPQRSTABCDEFGHIJKLMNOPQRST"));
    EXPECT_FALSE(isSecret("0123456789012345678901234567890123456789"));
}

TEST(SecretRecogniser, aTokenIsLongFrom32Characters)
{
    EXPECT_FALSE(isSecret(std::string(30, 'a') + "1"));
    EXPECT_TRUE(isSecret(std::string(31, 'a') + "1"));
    // 31 characters that take more than 32 bytes
    EXPECT_FALSE(isSecret("äöü" + std::string(27, 'a') + "1"));
    EXPECT_TRUE(isSecret("äöü" + std::string(28, 'a') + "1"));
    EXPECT_FALSE(isSecret("u\u0308" + std::string(29, 'a') + "1"));
}

TEST(SecretRecogniser, fourFifthsOfTheCharactersMustBeOfATokenRoundedDown)
{
    // 32 characters: 25.6 rounds down to 25
    EXPECT_TRUE(isSecret(std::string(24, 'a') + "1" + std::string(7, '.')));
    EXPECT_FALSE(isSecret(std::string(23, 'a') + "1" + std::string(8, '.')));
    // 40 characters: 32
    EXPECT_TRUE(isSecret(std::string(31, 'a') + "1" + std::string(8, '.')));
    EXPECT_FALSE(isSecret(std::string(30, 'a') + "1" + std::string(9, '.')));
}

TEST(SecretRecogniser, hyphensAndUnderscoresArePartOfAToken)
{
    EXPECT_TRUE(isSecret("a1" + std::string(15, '-') + std::string(15, '_')));
    EXPECT_FALSE(isSecret("a1" + std::string(30, '+')));
}

TEST(SecretRecogniser, lettersAndDigitsOfAllScriptsCount)
{
    EXPECT_TRUE(isSecret("абвгдежзийклмнопрстуфхцчшщъыьэюя1"));
    EXPECT_TRUE(isSecret("абвгдежзийклмнопАБВГДЕЖЗИЙКЛМНОП"));
    EXPECT_FALSE(isSecret("абвгдежзийклмнопабвгдежзийклмноп"));
    EXPECT_TRUE(isSecret("٣" + std::string(31, 'a')));
    std::string ideographs = "1";
    for (int i = 0; i < 40; ++i) {
        ideographs += "中";
    }
    EXPECT_FALSE(isSecret(ideographs)) << "letters without case are neither upper nor lower";
    EXPECT_TRUE(isSecret(ideographs + "a"));
}

TEST(SecretRecogniser, threeWordsAreProse)
{
    const std::string token = "abcdefghijklmnopqrstABCDEFGHIJ0123456789";
    EXPECT_TRUE(isSecret(token));
    EXPECT_TRUE(isSecret(token + " word"));
    EXPECT_TRUE(isSecret(token + "   word"));
    EXPECT_FALSE(isSecret(token + " and word"));
    EXPECT_FALSE(isSecret("x y " + token));
}

TEST(SecretRecogniser, onlyBlanksPartWords)
{
    const std::string token = "abcdefghijklmnopqrstABCDEFGHIJ0123456789";
    EXPECT_TRUE(isSecret(token + "\tand\tword"));
    EXPECT_TRUE(isSecret(token + "\u00A0and\u00A0word"));
}

TEST(SecretRecogniser, aPrefixMakesASecretOfProseToo)
{
    EXPECT_TRUE(isSecret("Asia is a continent"));
    EXPECT_TRUE(isSecret("Bearer of good news"));
}

} // namespace
} // namespace stavelin::model::classification
