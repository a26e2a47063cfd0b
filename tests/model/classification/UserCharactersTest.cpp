#include "model/classification/UserCharacters.h"

#include "model/classification/ReferenceClassifier.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace stavelin::model::classification {
namespace {

std::string utf8Of(const icu::UnicodeString &text)
{
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

TEST(UserCharacters, whatPeopleSeeAsOneCharacterCountsAsOne)
{
    struct Example
    {
        std::string_view text;
        std::size_t count;
    };
    constexpr Example examples[]{
        {"", 0},
        {"a", 1},
        {"u\u0308", 1},
        {"\r\n", 1},
        {"\n\r", 2},
        {"\r\r\n\n", 3},
        {"👍🏽", 1},
        {"👩‍👩‍👧‍👦", 1},
        {"👩‍👩‍👧‍👦🇩🇪🇫🇷x", 4},
        {"🇩🇪🇫", 2},
        {"❤️", 1},
        {"한글", 2},
        {"ᄒ\u1161\u11AB", 1},
        {"क्षि", 1},
        {"க்ஷ", 2},
        {"นี้", 1},
        {"\u0600a", 1},
        {"\u200D\u200D", 1},
        {"\n\u0301", 2},
    };
    for (const Example &example : examples) {
        EXPECT_EQ(countCharacters(example.text), example.count) << example.text;
    }
}

TEST(UserCharacters, asciiIsCountedRightWhereverItsLineEndsStand)
{
    for (std::size_t length = 0; length < 40; ++length) {
        for (std::size_t at = 0; at + 1 < length; ++at) {
            std::string text(length, 'x');
            EXPECT_EQ(countCharacters(text), length);
            text[at] = '\r';
            EXPECT_EQ(countCharacters(text), length) << at;
            text[at + 1] = '\n';
            EXPECT_EQ(countCharacters(text), length - 1) << at;
        }
    }
}

TEST(UserCharacters, aMarkBehindARunOfAsciiBelongsToItsLastLetter)
{
    for (std::size_t length = 1; length < 20; ++length) {
        EXPECT_EQ(countCharacters(std::string(length, 'x') + "\u0301"), length);
        EXPECT_EQ(countCharacters(std::string(length, '\t') + "\u0301"), length + 1);
        EXPECT_EQ(countCharacters("\u0600" + std::string(length, 'x')), length);
    }
}

TEST(UserCharacters, illFormedSequencesAreOneCharacterEach)
{
    EXPECT_EQ(countCharacters("\xFF\xFF"), 2u);
    EXPECT_EQ(countCharacters("\xE2\x82"), 1u);
    EXPECT_EQ(countCharacters("\xE2\x82x"), 2u);
    EXPECT_EQ(countCharacters("\xED\xA0\x80"), 3u);
}

TEST(UserCharacters, theFirstCharactersAreCutBetweenCharacters)
{
    EXPECT_EQ(firstCharacters("hello", 2), "he");
    EXPECT_EQ(firstCharacters("hello", 5), "hello");
    EXPECT_EQ(firstCharacters("hello", 9), "hello");
    EXPECT_EQ(firstCharacters("hello", 0), "");
    EXPECT_EQ(firstCharacters("", 3), "");
    EXPECT_EQ(firstCharacters("u\u0308ber", 1), "u\u0308");
    EXPECT_EQ(firstCharacters("👩‍👧x", 1), "👩‍👧");
}

TEST(UserCharacters, everyCodePointBehavesBesideOthersAsTheLibrarySays)
{
    // One of each kind on either side shows how a code point joins what stands before and behind it.
    const std::array<icu::UnicodeString, 9> before{
        u"",       u"x",      u"\r",     u"\u0915\u094D", u"\U0001F469\u200D",
        u"\u1112", u"\uD55C", u"\u0600", u"\U0001F1E9"};
    const std::array<icu::UnicodeString, 9> behind{u"x",      u"\n",     u"\u0301",
                                                   u"\u0903", u"\u0915", u"\u200D\U0001F469",
                                                   u"\u1161", u"\u11AB", u"\U0001F1E9"};
    for (UChar32 codePoint = 0x20; codePoint <= 0xE2000; ++codePoint) {
        if (U_IS_SURROGATE(codePoint)) {
            continue;
        }
        // Of the great blocks of alike characters, and of the planes that are empty, a few will do.
        const bool isOneOfManyAlike =
            (codePoint >= 0x3400 && codePoint < 0xA000) || (codePoint >= 0xAC00 && codePoint < 0xD7A4) ||
            (codePoint >= 0xE000 && codePoint < 0xF900) || (codePoint >= 0x12000 && codePoint < 0x1B000) ||
            (codePoint >= 0x20000 && codePoint < 0xE0000);
        if (isOneOfManyAlike && codePoint % 61 != 0) {
            continue;
        }
        icu::UnicodeString text;
        // Between line feeds nothing of one trial reaches into the next.
        for (std::size_t i = 0; i < before.size(); ++i) {
            text += before[i] + codePoint + behind[i] + icu::UnicodeString(u'\n');
            text += before[i] + codePoint + behind[(i + 4) % behind.size()] + icu::UnicodeString(u'\n');
        }
        const std::string utf8 = utf8Of(text);
        ASSERT_EQ(countCharacters(utf8), testkit::referenceCharacters(utf8).size())
            << "with U+" << std::hex << codePoint;
    }
}

TEST(UserCharacters, randomSequencesAreCutWhereTheLibraryCutsThem)
{
    const std::array<UChar32, 40> codePoints{
        'a',    '\r',   '\n',   '\t',   0xE4,   0xA9,    0xAD,    0x300,   0x301,   0x363,
        0x600,  0x915,  0x937,  0x93C,  0x93F,  0x94D,   0x903,   0x995,   0x9CD,   0xB95,
        0xBCD,  0xD15,  0xD4D,  0xD4E,  0xE33,  0x1100,  0x1161,  0x11A8,  0x200B,  0x200D,
        0x2764, 0xAC00, 0xAC01, 0xFE0F, 0xFFFD, 0x1F1E9, 0x1F1EA, 0x1F3FD, 0x1F469, 0x4E2D};
    std::mt19937 engine(11);
    for (int round = 0; round < 60000; ++round) {
        icu::UnicodeString text;
        for (std::size_t count = 1 + engine() % 10; count > 0; --count) {
            text += codePoints[engine() % codePoints.size()];
        }
        const std::string utf8 = utf8Of(text);
        const auto expected = testkit::referenceCharacters(utf8);
        ASSERT_EQ(countCharacters(utf8), expected.size()) << testing::PrintToString(utf8);
        const std::size_t wanted = engine() % (expected.size() + 1);
        std::string beginning;
        for (std::size_t i = 0; i < wanted; ++i) {
            beginning += expected[i];
        }
        ASSERT_EQ(firstCharacters(utf8, wanted), beginning) << testing::PrintToString(utf8);
    }
}

} // namespace
} // namespace stavelin::model::classification
