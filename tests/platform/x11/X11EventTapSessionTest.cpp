#include "KeyHolder.h"
#include "KeyboardDesktop.h"

#include <algorithm>
#include <ostream>

namespace stavelin::platform::x11 {

namespace {

using Strings = std::vector<std::string>;
using Keys = std::vector<int>;

constexpr int super = keycode::leftSuper;
constexpr std::uint16_t superMask = 64, shiftMask = 1, controlMask = 4, numLockMask = 16;

class X11EventTapSessionTest : public KeyboardDesktop
{
protected:
    template <typename Condition>
    static bool comesTrue(Condition condition)
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(15);
        while (!condition() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        return condition();
    }
};

TEST_F(X11EventTapSessionTest, aFreeKeyboardGivesNoConflict)
{
    startTap();
    EXPECT_TRUE(tap->conflicts().empty());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(X11EventTapSessionTest, aChordOfAnotherProgramIsNamedAndTheOthersWork)
{
    const KeyHolder other(keycode::v, superMask);
    startTap();
    EXPECT_EQ(tap->conflicts(),
              (std::vector<TapConflict>{{keys::v, keys::control, "Super+V is held by another program"}}));
    EXPECT_EQ(log.lines(), Strings{"The shortcut Super+V is held by another program"});
    user.chord({keycode::leftSuper, keycode::c});
    user.chord({keycode::leftControl, keycode::leftShift, keycode::v});
    user.tap(keycode::digit1);
    EXPECT_EQ(client.started(3), (Strings{"save", "paste?", "slot 1"}));
}

TEST_F(X11EventTapSessionTest, oneLockVariantOfAChordIsEnoughForAConflict)
{
    const KeyHolder other(keycode::c, superMask | numLockMask);
    startTap();
    EXPECT_EQ(tap->conflicts(),
              (std::vector<TapConflict>{{keys::c, keys::control, "Super+C is held by another program"}}));
    user.chord({keycode::leftSuper, keycode::c});
    EXPECT_EQ(client.started(1), Strings{"save"});
}

TEST_F(X11EventTapSessionTest, anExtraCombinationOfAnotherProgramIsLoggedAndNoConflict)
{
    const KeyHolder other(keycode::v, superMask | shiftMask);
    startTap();
    EXPECT_TRUE(tap->conflicts().empty());
    EXPECT_EQ(log.lines(), Strings{"The shortcut Super+Shift+V is held by another program"});
}

TEST_F(X11EventTapSessionTest, aChordThatBecomesFreeIsTakenAndItsConflictIsGone)
{
    {
        const KeyHolder other(keycode::v, superMask);
        startTap();
        ASSERT_EQ(tap->conflicts().size(), 1U);
    }
    EXPECT_TRUE(comesTrue([this] { return tap->conflicts().empty(); }));
    user.chord({keycode::leftSuper, keycode::v});
    EXPECT_EQ(client.started(1), Strings{"paste?"});
}

TEST_F(X11EventTapSessionTest, aDigitChordOfTheDesktopEndsTheGestureWhileItsModifiersAreHeld)
{
    KeyHolder desktop(keycode::digit1, superMask);
    startTap();
    user.press(keycode::leftSuper);
    user.tap(keycode::v);
    user.tap(keycode::digit1);
    user.release(keycode::leftSuper);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "slot 1"}));
    EXPECT_EQ(seen(), (Keys{super, -super}));
    EXPECT_EQ(desktop.presses(), 0);
}

TEST_F(X11EventTapSessionTest, aDigitThatTheDesktopHoldsWithAModifierEndsTheGestureWithoutIt)
{
    const KeyHolder desktop(keycode::digit1, superMask);
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::digit1);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "slot 1"}));
    EXPECT_EQ(seen(), (Keys{super, -super}));
}

TEST_F(X11EventTapSessionTest, theDesktopsDigitChordsWorkWhenNothingWaits)
{
    KeyHolder desktop(keycode::digit1, superMask);
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    tapSwallowed(keycode::digit1);
    ASSERT_EQ(client.started(2), (Strings{"paste?", "slot 1"}));
    user.chord({keycode::leftSuper, keycode::digit1});
    EXPECT_TRUE(comesTrue([&] { return desktop.presses() == 1; }));
}

struct Layout
{
    const char *name;
    const char *command;
    std::uint8_t v;
    std::uint8_t c;
    std::uint8_t s;

    friend void PrintTo(const Layout &row, std::ostream *out) { *out << row.name; }
};

class X11EventTapLayoutTest : public KeyboardDesktop, public testing::WithParamInterface<Layout>
{};

TEST_P(X11EventTapLayoutTest, lettersGoByTheLayoutAndDigitsByPosition)
{
    run(GetParam().command);
    startTap();
    user.chord({keycode::leftSuper, GetParam().v});
    user.tap(keycode::digit3);
    user.chord({keycode::leftSuper, GetParam().c});
    user.chord({keycode::leftControl, keycode::leftAlt, GetParam().s});
    EXPECT_EQ(client.started(4), (Strings{"paste?", "slot 3", "save", "panel"}));
}

TEST_P(X11EventTapLayoutTest, aLayoutThatIsChosenLaterIsFollowed)
{
    startTap();
    run(GetParam().command);
    // The change is followed a moment after it: until then the chord types.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(8);
    while (client.handled().empty() && std::chrono::steady_clock::now() < deadline) {
        user.chord({keycode::leftSuper, GetParam().c});
        static_cast<void>(seen());
    }
    EXPECT_EQ(client.started(1).front(), "save");
}

INSTANTIATE_TEST_SUITE_P(Layouts, X11EventTapLayoutTest,
                         testing::Values(Layout{"German", "setxkbmap de", 55, 54, 39},
                                         Layout{"French", "setxkbmap fr", 55, 54, 39},
                                         Layout{"Dvorak", "setxkbmap dvorak", 60, 31, 47},
                                         Layout{"AmericanAndRussian", "setxkbmap us,ru", 55, 54, 39},
                                         Layout{"Russian", "setxkbmap ru", 55, 54, 39}),
                         [](const auto &test) { return test.param.name; });

TEST_F(X11EventTapSessionTest, theSecondLayoutOfTwoHasTheChordsOfTheFirst)
{
    run("setxkbmap us,ru -option grp:sclk_toggle");
    startTap();
    constexpr std::uint8_t scrollLock = 78;
    user.tap(scrollLock); // the Russian one from here on
    user.chord({keycode::leftSuper, keycode::v});
    user.tap(keycode::digit3);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "slot 3"}));
}

TEST_F(X11EventTapSessionTest, noTapIsMadeInAWaylandSession)
{
    ::setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    X11EventTapFactory factory(log, ModifierRoles::byUse, expectedKeys);
    const auto made = factory.createTap(client);
    ::unsetenv("WAYLAND_DISPLAY");
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().description,
              "this is a Wayland session, which shows no program the keys of others");
}

TEST(X11EventTapFactory, noTapIsMadeWithoutADisplay)
{
    ::setenv("DISPLAY", ":49", 1);
    testkit::RecordingLog log;
    GestureClient client;
    X11EventTapFactory factory(log, ModifierRoles::byUse, std::make_shared<X11ExpectedKeys>());
    auto made = factory.createTap(client);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().description, "the X display :49 does not answer");
    ::unsetenv("DISPLAY");
    made = factory.createTap(client);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().description, "there is no X display (DISPLAY is not set)");
}

TEST(X11EventTap, aServerThatEndsIsSaidOnceAndLeavesEveryMainChordMissing)
{
    testkit::RecordingLog log;
    GestureClient client;
    std::optional<testkit::NestedX> screen(std::in_place);
    ::setenv("DISPLAY", screen->innerDisplay().c_str(), 1);
    X11EventTapFactory factory(log, ModifierRoles::byUse, std::make_shared<X11ExpectedKeys>());
    auto tap = factory.createTap(client);
    ASSERT_TRUE(tap);
    screen.reset();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(8);
    while ((*tap)->conflicts().empty() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    EXPECT_EQ((*tap)->conflicts().size(), 4U);
    EXPECT_EQ((*tap)->conflicts().front().reason, "the connection to the X server was lost");
    EXPECT_EQ(log.lines(), Strings{"The shortcuts have stopped: the connection to the X server was lost"});
    (*tap)->waitingChanged(); // harmless
}

} // namespace

} // namespace stavelin::platform::x11
