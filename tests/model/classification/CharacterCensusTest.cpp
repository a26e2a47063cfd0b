#include "model/classification/CharacterCensus.h"

#include "model/classification/UserCharacters.h"

#include <gtest/gtest.h>

#include <string>

namespace stavelin::model::classification {
namespace {

TEST(CharacterCensus, itCountsTheCharactersOfATokenAmongAll)
{
    const CharacterCensus census = takeCensus("aB3-_ +äЯ中٣!");
    EXPECT_EQ(census.characters, 12u);
    EXPECT_EQ(census.tokenCharacters, 9u);
    EXPECT_TRUE(census.hasUpperCase);
    EXPECT_TRUE(census.hasLowerCase);
    EXPECT_TRUE(census.hasDigit);
}

TEST(CharacterCensus, itTellsUpperCaseLowerCaseAndDigitsApart)
{
    EXPECT_TRUE(takeCensus("a").hasLowerCase);
    EXPECT_FALSE(takeCensus("a").hasUpperCase || takeCensus("a").hasDigit);
    EXPECT_TRUE(takeCensus("Ä").hasUpperCase);
    EXPECT_FALSE(takeCensus("Ä").hasLowerCase);
    EXPECT_TRUE(takeCensus("५").hasDigit);
    EXPECT_FALSE(takeCensus("中-_²½").hasDigit || takeCensus("中").hasUpperCase ||
                 takeCensus("中").hasLowerCase);
}

TEST(CharacterCensus, aCharacterIsWhatItsFirstCodePointIs)
{
    const CharacterCensus census = takeCensus("u\u0308\u200D");
    EXPECT_EQ(census.characters, 1u);
    EXPECT_EQ(census.tokenCharacters, 1u);
    EXPECT_EQ(takeCensus("!\u0308").tokenCharacters, 0u);
}

TEST(CharacterCensus, itCountsAsManyCharactersAsTheCountAlone)
{
    for (const std::string text : {"", "a\r\nb", "a\rb\r", "\r\n\r\n", "\u0600a", "\u0600\ra",
                                   "x👩‍👩‍👧y🇩🇪z", "\xFF\xC3y"}) {
        EXPECT_EQ(takeCensus(text).characters, countCharacters(text)) << testing::PrintToString(text);
    }
}

} // namespace
} // namespace stavelin::model::classification
