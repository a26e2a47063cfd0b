#include "model/classification/MarkerAutomaton.h"

#include <gtest/gtest.h>

#include <random>

namespace stavelin::model::classification {
namespace {

using Marker = MarkerAutomaton::Marker;
using LetterCase = MarkerAutomaton::LetterCase;

TextTraits allFound(const MarkerAutomaton &automaton, std::string_view text)
{
    TextTraits found;
    auto state = MarkerAutomaton::start;
    for (const char byte : text) {
        state = automaton.next(state, byte);
        if (automaton.isMatch(state)) {
            found |= automaton.found(state);
        }
    }
    return found;
}

TextTraits both(TextTrait one, TextTrait other)
{
    TextTraits traits(one);
    traits |= other;
    return traits;
}

TEST(MarkerAutomaton, aMarkerInsideAnotherIsFoundWithIt)
{
    const Marker markers[]{{"he", TextTrait::c}, {"ushers", TextTrait::go}};
    const MarkerAutomaton automaton(markers, LetterCase::exact);
    EXPECT_EQ(allFound(automaton, "ushers"), both(TextTrait::c, TextTrait::go));
    EXPECT_EQ(allFound(automaton, "usher"), TextTraits(TextTrait::c));
    EXPECT_TRUE(allFound(automaton, "us").isEmpty());
}

TEST(MarkerAutomaton, aMarkerThatBeginsInsideAFailedOneIsFound)
{
    const Marker markers[]{{"aab", TextTrait::c}, {"abab", TextTrait::go}};
    const MarkerAutomaton automaton(markers, LetterCase::exact);
    EXPECT_EQ(allFound(automaton, "aaaaab"), TextTraits(TextTrait::c));
    EXPECT_EQ(allFound(automaton, "xaabab"), both(TextTrait::c, TextTrait::go));
}

TEST(MarkerAutomaton, oneTextMayMeanSeveralThings)
{
    const Marker markers[]{{"def ", TextTrait::python}, {"def ", TextTrait::ruby}};
    const MarkerAutomaton automaton(markers, LetterCase::exact);
    EXPECT_EQ(allFound(automaton, "def "), both(TextTrait::python, TextTrait::ruby));
}

TEST(MarkerAutomaton, letterCaseCountsUnlessItIsToBeIgnored)
{
    const Marker markers[]{{"From ", TextTrait::sql}};
    EXPECT_TRUE(allFound(MarkerAutomaton(markers, LetterCase::exact), "from ").isEmpty());
    const MarkerAutomaton ignoring(markers, LetterCase::ignoredForAscii);
    EXPECT_EQ(allFound(ignoring, "fROM "), TextTraits(TextTrait::sql));
    EXPECT_TRUE(allFound(ignoring, "fROM@").isEmpty())
        << "the bit that tells letter cases apart means nothing else";
}

TEST(MarkerAutomaton, bytesThatNoMarkerHoldsLeadBackToTheStart)
{
    const Marker markers[]{{"ab", TextTrait::c}};
    const MarkerAutomaton automaton(markers, LetterCase::exact);
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != 'a' && byte != 'b') {
            const auto afterA = automaton.next(MarkerAutomaton::start, 'a');
            EXPECT_EQ(automaton.next(afterA, static_cast<char>(byte)), MarkerAutomaton::start) << byte;
        }
    }
}

TEST(MarkerAutomaton, withoutMarkersNothingIsFound)
{
    const MarkerAutomaton automaton({}, LetterCase::exact);
    EXPECT_TRUE(allFound(automaton, "anything at all").isEmpty());
}

TEST(MarkerAutomaton, randomMarkersAreFoundWhereASearchFindsThem)
{
    std::mt19937 engine(7);
    const auto randomText = [&](std::size_t least, std::size_t most) {
        std::string text;
        for (std::size_t count = least + engine() % (most - least + 1); count > 0; --count) {
            text += static_cast<char>('a' + engine() % 3);
        }
        return text;
    };
    for (int round = 0; round < 300; ++round) {
        std::vector<std::string> texts;
        for (int i = 0; i < 8; ++i) {
            texts.push_back(randomText(1, 6));
        }
        std::vector<Marker> markers;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            markers.push_back({texts[i], static_cast<TextTrait>(i)});
        }
        const MarkerAutomaton automaton(markers, LetterCase::exact);
        const std::string text = randomText(0, 30);
        TextTraits expected;
        for (const Marker &marker : markers) {
            if (text.find(marker.text) != std::string::npos) {
                expected |= marker.traits;
            }
        }
        ASSERT_EQ(allFound(automaton, text), expected) << text;
    }
}

} // namespace
} // namespace stavelin::model::classification
