#include "views/SlotPreview.h"

#include <gtest/gtest.h>

#include <QByteArray>

#include <ostream>
#include <string>

namespace stavelin::views {

namespace {

struct Sample
{
    const char *name;
    std::string text;
    const char *preview;
};

std::ostream &operator<<(std::ostream &out, const Sample &sample)
{
    return out << sample.name;
}

class SlotPreviewOf : public testing::TestWithParam<Sample>
{};

TEST_P(SlotPreviewOf, aTextIsItsBeginningOnOneLine)
{
    EXPECT_EQ(slotPreview(GetParam().text).toStdString(), GetParam().preview);
}

INSTANTIATE_TEST_SUITE_P(Texts, SlotPreviewOf,
                         testing::Values(Sample{"empty", "", ""}, Sample{"plain", "git status", "git status"},
                                         Sample{"lines", "one\ntwo\r\n\n  three", "one two three"},
                                         Sample{"leadingBlanks", " \n\t text ", "text"},
                                         Sample{"onlyBlanks", " \n\t\xC2\xA0 ", ""},
                                         Sample{"controlCharacters", std::string("a\0b\x1B[31mc", 9),
                                                "a b [31mc"},
                                         Sample{"turningCharacters",
                                                "a\xE2\x80\xAE"
                                                "b\xE2\x81\xA6"
                                                "c",
                                                "abc"},
                                         Sample{"markupStaysText", "<b>x</b>", "<b>x</b>"}),
                         [](const auto &instance) { return std::string(instance.param.name); });

} // namespace

TEST(SlotPreview, aTextOfTwoHundredCharactersIsShownWhole)
{
    EXPECT_EQ(slotPreview(std::string(200, 'x')), QString(200, u'x'));
}

TEST(SlotPreview, aLongerTextEndsInAnEllipsis)
{
    EXPECT_EQ(slotPreview(std::string(201, 'x')), QString(200, u'x') + QChar(0x2026));
}

TEST(SlotPreview, aCharacterOfSeveralCodePointsIsNotCut)
{
    const std::string family = "\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7"; // woman, joiner, girl
    const QString preview = slotPreview(std::string(199, 'x') + family + "y");
    EXPECT_TRUE(preview.endsWith(QString::fromStdString(family) + QChar(0x2026))) << preview.toStdString();
}

TEST(SlotPreview, nothingIsCutInsideACharacterOfALongText)
{
    std::string text = "ab"; // so that no power of two falls between two of the characters that follow
    for (int count = 0; count < 20'000; ++count)
        text += "\xE2\x82\xAC";
    const QString blanksBefore = slotPreview(std::string(16 * 1024 - 1, ' ') + "\xE2\x82\xAC");
    EXPECT_FALSE(slotPreview(text).contains(QChar::ReplacementCharacter));
    EXPECT_FALSE(blanksBefore.contains(QChar::ReplacementCharacter));
}

} // namespace stavelin::views
