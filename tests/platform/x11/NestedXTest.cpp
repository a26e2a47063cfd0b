#include "testkit/NestedX.h"
#include "testkit/WitnessWindow.h"

#include <gtest/gtest.h>

namespace stavelin::testkit {

TEST(NestedX, keysPressedOutsideArriveInTheFocusedWindow)
{
    NestedX screen;
    WitnessWindow witness(screen.innerDisplay());

    screen.press(keycode::leftShift);
    screen.tap(keycode::a);
    screen.release(keycode::leftShift);
    screen.tap(keycode::x);

    const auto keys = presses(witness.keysUntilReleaseOf(keycode::x));
    ASSERT_EQ(keys.size(), 3U);
    EXPECT_EQ(keys[0].keycode, keycode::leftShift);
    EXPECT_EQ(keys[1], (SeenKey{true, keycode::a, 1}));
    EXPECT_EQ(keys[2], (SeenKey{true, keycode::x, 0}));
    EXPECT_TRUE(witness.keysDown().empty());
}

TEST(NestedX, twoScreensStandSideBySide)
{
    const NestedX first;
    const NestedX second;
    EXPECT_NE(first.innerDisplay(), second.innerDisplay());
    EXPECT_NE(first.outerDisplay(), second.outerDisplay());
}

} // namespace stavelin::testkit
