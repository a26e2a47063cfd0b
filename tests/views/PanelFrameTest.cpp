#include "views/PanelFrame.h"

#include <gtest/gtest.h>

#include <ostream>

namespace stavelin::views {

namespace {

struct Placement
{
    const char *name;
    QRect frame;
    QList<QRect> screens;
    QRect expected;
};

std::ostream &operator<<(std::ostream &out, const Placement &placement)
{
    return out << placement.name;
}

const QRect left(0, 0, 1000, 800);
const QRect right(1000, 0, 1000, 800);

class PanelFrameOf : public testing::TestWithParam<Placement>
{};

TEST_P(PanelFrameOf, aSavedFrameIsBroughtWithinTheLimitsAndOntoOneScreen)
{
    const QRect frame = clampedFrame(GetParam().frame, GetParam().screens);
    EXPECT_EQ(encodeFrame(frame), encodeFrame(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Frames, PanelFrameOf,
    testing::Values(
        Placement{"asItWas", {100, 50, 320, 480}, {left, right}, {100, 50, 320, 480}},
        Placement{"onTheSecondScreen", {1500, 50, 320, 480}, {left, right}, {1500, 50, 320, 480}},
        Placement{"screenUnplugged", {1500, 50, 320, 480}, {left}, {680, 50, 320, 480}},
        Placement{"mostlyOnTheRight", {900, 50, 320, 480}, {left, right}, {1000, 50, 320, 480}},
        Placement{"overTheTopLeft", {-50, -20, 320, 480}, {left}, {0, 0, 320, 480}},
        Placement{"underTheBottom", {0, 700, 320, 480}, {left}, {0, 320, 320, 480}},
        Placement{"farAway", {90000, -90000, 320, 480}, {left, right}, {1680, 0, 320, 480}},
        Placement{"tooSmall", {10, 10, 20, 20}, {left}, {10, 10, 200, 150}},
        Placement{"tooLarge", {10, 0, 2000, 2000}, {left}, {10, 0, 600, 800}},
        Placement{"higherThanTheScreen", {10, 10, 320, 480}, {{0, 0, 800, 300}}, {10, 0, 320, 300}},
        Placement{"screenSmallerThanThePanel", {10, 10, 320, 480}, {{5, 5, 100, 100}}, {5, 5, 200, 150}},
        Placement{"noScreen", {10, 10, 20, 480}, {}, {10, 10, 200, 480}}),
    [](const auto &instance) { return std::string(instance.param.name); });

} // namespace

TEST(PanelFrame, whatIsWrittenIsReadAgain)
{
    const QRect frame(-12, 34, 320, 480);
    EXPECT_EQ(encodeFrame(frame), "-12 34 320 480");
    EXPECT_EQ(decodeFrame("-12 34 320 480"), frame);
}

TEST(PanelFrame, anythingElseIsNoFrame)
{
    for (const char *text :
         {"", "1 2 3", "1 2 3 4 5", "1 2 3 4 ", " 1 2 3 4", "1,2,3,4", "1  2 3 4", "a b c d", "1 2 0 4",
          "1 2 3 -4", "1 2 3 99999999999", "1 2 3 2000000", "1.5 2 3 4"})
        EXPECT_EQ(decodeFrame(text), std::nullopt) << text;
}

TEST(PanelFrame, theFirstFrameIsInTheMiddleOfTheScreen)
{
    EXPECT_EQ(encodeFrame(centredFrame({100, 0, 1000, 800})), "440 160 320 480");
}

} // namespace stavelin::views
