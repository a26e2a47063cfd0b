#include "KeyboardDesktop.h"

#include <xcb/xcb.h>

namespace stavelin::platform::x11 {

namespace {

using Strings = std::vector<std::string>;
using Keys = std::vector<int>;

constexpr int super = keycode::leftSuper, control = keycode::leftControl, shift = keycode::leftShift;

class X11EventTapTest : public KeyboardDesktop
{};

TEST_F(X11EventTapTest, theChordIsSwallowedAndItsModifiersAreNot)
{
    startTap();
    user.chord({keycode::leftSuper, keycode::c});
    EXPECT_EQ(client.started(1), Strings{"save"});
    EXPECT_EQ(seen(), (Keys{super, -super}));
    EXPECT_TRUE(application->keysDown().empty());
}

TEST_F(X11EventTapTest, aDigitAfterTheModifiersWereReleasedIsSwallowed)
{
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::digit3);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "slot 3"}));
    EXPECT_EQ(seen(), (Keys{super, -super}));
    EXPECT_TRUE(application->keysDown().empty());
}

TEST_F(X11EventTapTest, aDigitWhileTheModifiersAreHeldIsSwallowed)
{
    startTap();
    user.press(keycode::leftSuper);
    user.tap(keycode::v);
    user.tap(keycode::digit3);
    user.release(keycode::leftSuper);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "slot 3"}));
    EXPECT_EQ(seen(), (Keys{super, -super}));
    EXPECT_TRUE(application->keysDown().empty());
}

TEST_F(X11EventTapTest, severalGesturesFollowEachOtherUnderOneSuper)
{
    startTap();
    user.press(keycode::leftSuper);
    for (const std::uint8_t key : {keycode::v, keycode::digit1, keycode::v, keycode::digit9, keycode::c})
        user.tap(key);
    user.release(keycode::leftSuper);
    EXPECT_EQ(client.started(5), (Strings{"paste?", "slot 1", "paste?", "slot 9", "save"}));
    EXPECT_EQ(seen(), (Keys{super, -super}));
}

TEST_F(X11EventTapTest, anotherKeyEndsTheWaitAndReachesTheApplicationOnce)
{
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::x);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "end"}));
    user.tap(keycode::digit3);
    EXPECT_EQ(seen(), (Keys{super, -super, keycode::x, -keycode::x, keycode::digit3, -keycode::digit3}));
    EXPECT_EQ(client.started(2), (Strings{"paste?", "end"}));
}

TEST_F(X11EventTapTest, anotherKeyWhileTheModifiersAreHeldEndsTheWaitAndReachesTheApplicationOnce)
{
    startTap();
    user.press(keycode::leftSuper);
    user.tap(keycode::v);
    user.tap(keycode::x);
    user.tap(keycode::digit3);
    user.release(keycode::leftSuper);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "end"}));
    EXPECT_EQ(seen(), (Keys{super, keycode::x, -keycode::x, keycode::digit3, -keycode::digit3, -super}));
}

TEST_F(X11EventTapTest, zeroAndTheKeypadEndTheWaitAndReachTheApplication)
{
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::digit0);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "end"}));
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::keypad3);
    EXPECT_EQ(client.started(4), (Strings{"paste?", "end", "paste?", "end"}));
    EXPECT_EQ(seen(), (Keys{super, -super, keycode::digit0, -keycode::digit0, super, -super, keycode::keypad3,
                            -keycode::keypad3}));
}

TEST_F(X11EventTapTest, aModifierAloneNeitherEndsTheWaitNorIsItAsked)
{
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    user.press(keycode::leftShift);
    user.tap(keycode::digit2);
    user.release(keycode::leftShift);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "slot 2"}));
    EXPECT_EQ(client.handled().size(), 2U);
    EXPECT_EQ(seen(), (Keys{super, -super, shift, -shift}));
}

TEST_F(X11EventTapTest, aGestureAnewWhileOneWaitsStartsOver)
{
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::digit1);
    EXPECT_EQ(client.started(3), (Strings{"paste?", "paste?", "slot 1"}));
    EXPECT_EQ(seen(), (Keys{super, -super, super, -super}));
}

TEST_F(X11EventTapTest, aWaitThatEndsByItselfGivesTheDigitsBack)
{
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    ASSERT_EQ(client.started(1), Strings{"paste?"});
    client.stopWaiting();
    tap->waitingChanged();
    user.tap(keycode::digit3);
    EXPECT_EQ(seen(), (Keys{super, -super, keycode::digit3, -keycode::digit3}));
}

TEST_F(X11EventTapTest, aWaitThatEndsWhileTheModifiersAreHeldGivesTheKeyboardBack)
{
    startTap();
    user.press(keycode::leftSuper);
    user.tap(keycode::v);
    ASSERT_EQ(client.started(1), Strings{"paste?"});
    client.stopWaiting();
    tap->waitingChanged();
    user.tap(keycode::digit3);
    user.release(keycode::leftSuper);
    EXPECT_EQ(seen(), (Keys{super, keycode::digit3, -keycode::digit3, -super}));
    EXPECT_EQ(client.started(1), Strings{"paste?"});
}

TEST_F(X11EventTapTest, aChordThatIsHeldRepeatsForNobodyAlsoAfterItsModifiersWereReleased)
{
    run("xset r rate 100 50");
    startTap();
    // Keys do repeat here.
    user.press(keycode::x);
    for (int repeats = 0; repeats < 3; ++repeats)
        ASSERT_EQ(application->keysUntil(keycode::x).back().keycode, keycode::x);
    user.release(keycode::x);
    static_cast<void>(seen());

    user.press(keycode::leftSuper);
    user.press(keycode::v);
    ASSERT_EQ(client.started(1), Strings{"paste?"});
    EXPECT_EQ(application->keysUntil(keycode::v, std::chrono::milliseconds(300)).size(), 1U);
    user.release(keycode::leftSuper);
    EXPECT_EQ(application->keysUntil(keycode::v, std::chrono::milliseconds(300)).size(), 1U);
    user.release(keycode::v);
    waitForReleases();
    EXPECT_EQ(client.started(1), Strings{"paste?"});
    EXPECT_EQ(seen(), Keys{});
    EXPECT_TRUE(application->keysDown().empty());
}

TEST_F(X11EventTapTest, aSwallowedDigitThatIsHeldDoesNotRepeatInTheApplication)
{
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    user.press(keycode::digit3);
    ASSERT_EQ(client.started(2), (Strings{"paste?", "slot 3"}));
    user.press(keycode::x);
    EXPECT_EQ(application->keysUntil(keycode::x).size(), 3U);
    user.release(keycode::digit3);
    waitForReleases();
    user.release(keycode::x);
    EXPECT_EQ(seen(), Keys{-keycode::x});
}

TEST_F(X11EventTapTest, keysThatOverlapTheChordArriveWholeAndInOrder)
{
    startTap();
    user.press(keycode::leftSuper);
    user.press(keycode::v);
    user.press(keycode::digit3);
    ASSERT_EQ(client.started(2), (Strings{"paste?", "slot 3"}));
    user.release(keycode::leftSuper);
    EXPECT_EQ(application->keysUntilReleaseOf(keycode::leftSuper).size(), 2U);
    user.release(keycode::v);
    user.press(keycode::x);
    EXPECT_EQ(application->keysUntil(keycode::x).size(), 1U);
    user.release(keycode::digit3);
    waitForReleases();
    user.release(keycode::x);
    EXPECT_EQ(seen(), Keys{-keycode::x});
    EXPECT_TRUE(application->keysDown().empty());
}

TEST_F(X11EventTapTest, typingFasterThanTheTapDecidesLeavesNoKeyBehind)
{
    startTap();
    for (int round = 0; round < 20; ++round) {
        user.press(keycode::leftSuper);
        user.press(keycode::v);
        user.press(keycode::digit3);
        user.release(keycode::leftSuper);
        user.press(keycode::x);
        user.release(keycode::v);
        user.release(keycode::digit3);
        user.release(keycode::x);
        const auto keys = seen();
        EXPECT_EQ(std::ranges::count(keys, keycode::x), 1) << round;
        EXPECT_EQ(std::ranges::count(keys, keycode::v), 0) << round;
        EXPECT_EQ(std::ranges::count(keys, keycode::digit3), 0) << round;
        waitForReleases();
    }
    EXPECT_EQ(client.started(40).size(), 40U);
    EXPECT_TRUE(application->keysDown().empty());
}

TEST_F(X11EventTapTest, theLocksDoNotMatter)
{
    startTap();
    user.tap(keycode::capsLock);
    user.tap(keycode::numLock);
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::digit3);
    user.chord({keycode::leftSuper, keycode::c});
    EXPECT_EQ(client.started(3), (Strings{"paste?", "slot 3", "save"}));
    // Xephyr presses lock keys of its own accord when it finds that its host has other locks.
    auto keys = seen();
    std::erase_if(keys, [](int key) {
        return std::abs(key) == keycode::capsLock || std::abs(key) == keycode::numLock;
    });
    EXPECT_EQ(keys, (Keys{super, -super, super, -super}));
}

TEST_F(X11EventTapTest, everyMainChordWorksInTheMappingByUse)
{
    startTap();
    user.chord({keycode::leftControl, keycode::leftShift, keycode::v});
    user.tap(keycode::digit1);
    user.chord({keycode::leftControl, keycode::leftAlt, keycode::s});
    user.chord({keycode::leftSuper, keycode::leftShift, keycode::c});
    EXPECT_EQ(client.started(4), (Strings{"paste?", "slot 1", "panel", "save"}));
    // What Linux users expect of Ctrl stays.
    user.chord({keycode::leftControl, keycode::c});
    user.chord({keycode::leftControl, keycode::v});
    const auto keys = seen();
    EXPECT_EQ(std::ranges::count(keys, keycode::c), 1);
    EXPECT_EQ(std::ranges::count(keys, keycode::v), 1);
    EXPECT_EQ(std::ranges::count(keys, keycode::s), 0);
    EXPECT_EQ(client.started(4).size(), 4U);
}

TEST_F(X11EventTapTest, everyMainChordWorksInTheLiteralMapping)
{
    startTap(ModifierRoles::literal);
    user.chord({keycode::leftControl, keycode::v});
    user.tap(keycode::digit1);
    user.chord({keycode::leftControl, keycode::c});
    user.chord({keycode::leftSuper, keycode::leftShift, keycode::v});
    user.tap(keycode::digit2);
    user.chord({keycode::leftSuper, keycode::leftAlt, keycode::s});
    EXPECT_EQ(client.started(6), (Strings{"paste?", "slot 1", "save", "paste?", "slot 2", "panel"}));
    user.chord({keycode::leftSuper, keycode::c});
    const auto keys = seen();
    EXPECT_EQ(std::ranges::count(keys, keycode::c), 1);
    EXPECT_EQ(std::ranges::count(keys, keycode::v), 0);
}

TEST_F(X11EventTapTest, inATerminalControlShiftVBelongsToTheTerminal)
{
    showApplication("Gnome-terminal");
    startTap();
    user.chord({keycode::leftControl, keycode::leftShift, keycode::v});
    EXPECT_EQ(seen(), (Keys{control, shift, keycode::v, -keycode::v, -shift, -control}));
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::digit1);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "slot 1"}));
}

TEST_F(X11EventTapTest, theTerminalsOwnPasteEndsAWait)
{
    showApplication("XTerm");
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    user.chord({keycode::leftControl, keycode::leftShift, keycode::v});
    EXPECT_EQ(client.started(2), (Strings{"paste?", "end"}));
    EXPECT_EQ(seen(), (Keys{super, -super, control, shift, keycode::v, -keycode::v, -shift, -control}));
}

TEST_F(X11EventTapTest, theKeyboardIsFreeAgainWhenTheTapIsGone)
{
    startTap();
    user.press(keycode::leftSuper);
    tapSwallowed(keycode::v);
    ASSERT_EQ(client.started(1), Strings{"paste?"});
    tap.reset();
    user.tap(keycode::c);
    user.release(keycode::leftSuper);
    EXPECT_EQ(seen(), (Keys{super, keycode::c, -keycode::c, -super}));
}

} // namespace

} // namespace stavelin::platform::x11
