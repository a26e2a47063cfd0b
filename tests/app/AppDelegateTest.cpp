#include "app/LaunchDesk.h"

#include "platform/KeyVocabulary.h"

#include <gtest/gtest.h>

#include <QQuickView>

#include <algorithm>

namespace stavelin::testkit {

using Diary = LaunchDesk::Diary;

TEST(AppDelegate, theLaunchStartsEveryPartInItsOrder)
{
    LaunchDesk desk;
    desk.delegate.applicationDidFinishLaunching();
    EXPECT_EQ(desk.diary, (Diary{"status item made", "panel shown", "daemon looked for", "daemon looked for",
                                 "launched /opt/stavelin-daemon", "connecting", "tap installed"}));
    EXPECT_TRUE(desk.panel()->isVisible());
}

TEST(AppDelegate, aDaemonThatRunsAlreadyIsNotStartedAgain)
{
    LaunchDesk desk;
    desk.daemonRuns = true;
    desk.delegate.applicationDidFinishLaunching();
    EXPECT_EQ(desk.diary,
              (Diary{"status item made", "panel shown", "daemon looked for", "connecting", "tap installed"}));
}

TEST(AppDelegate, aDaemonThatIsNowhereStopsNothingElse)
{
    LaunchDesk desk;
    desk.files.executables.clear();
    desk.delegate.applicationDidFinishLaunching();
    EXPECT_EQ(desk.diary, (Diary{"status item made", "panel shown", "daemon looked for", "daemon looked for",
                                 "connecting", "tap installed"}));
}

TEST(AppDelegate, theEndStopsTheShortcutsAndThenTheConnectionAndLeavesTheDaemon)
{
    LaunchDesk desk;
    desk.delegate.applicationDidFinishLaunching();
    desk.diary.clear();
    desk.delegate.applicationWillTerminate();
    EXPECT_EQ(desk.diary, (Diary{"tap removed", "disconnected with 1001"}));
}

TEST(AppDelegate, withThePermissionNothingIsAskedAgain)
{
    LaunchDesk desk;
    desk.delegate.applicationDidFinishLaunching();
    const auto asked = desk.permission.prompts.size();
    desk.clock.advance(std::chrono::seconds(10));
    EXPECT_EQ(desk.permission.prompts.size(), asked);
}

TEST(AppDelegate, aMissingPermissionIsAskedForEveryTwoSecondsUntilItIsThere)
{
    LaunchDesk desk;
    desk.permission.trusted = false;
    desk.delegate.applicationDidFinishLaunching();
    const auto asked = desk.permission.prompts.size();
    EXPECT_FALSE(desk.shortcuts.hasAccessibilityPermission());

    desk.clock.advance(std::chrono::milliseconds(1999));
    EXPECT_EQ(desk.permission.prompts.size(), asked);
    desk.clock.advance(std::chrono::milliseconds(2001));
    EXPECT_EQ(desk.permission.prompts.size(), asked + 2);
    EXPECT_EQ(desk.tapClient, nullptr);

    desk.permission.trusted = true;
    desk.clock.advance(std::chrono::seconds(2));
    EXPECT_TRUE(desk.shortcuts.hasAccessibilityPermission());
    EXPECT_NE(desk.tapClient, nullptr);
    EXPECT_EQ(desk.diary.back(), "tap installed");

    desk.clock.advance(std::chrono::seconds(10));
    EXPECT_EQ(desk.permission.prompts.size(), asked + 3);
}

TEST(AppDelegate, thePermissionIsNeverPromptedFor)
{
    LaunchDesk desk;
    desk.permission.trusted = false;
    desk.delegate.applicationDidFinishLaunching();
    desk.clock.advance(std::chrono::seconds(5));
    EXPECT_TRUE(std::ranges::none_of(desk.permission.prompts, [](bool prompt) { return prompt; }));
}

TEST(AppDelegate, theEndAlsoEndsTheWaitForThePermission)
{
    LaunchDesk desk;
    desk.permission.trusted = false;
    desk.delegate.applicationDidFinishLaunching();
    desk.delegate.applicationWillTerminate();
    const auto asked = desk.permission.prompts.size();
    desk.permission.trusted = true;
    desk.clock.advance(std::chrono::seconds(10));
    EXPECT_EQ(desk.permission.prompts.size(), asked);
    EXPECT_EQ(desk.tapClient, nullptr);
}

TEST(AppDelegate, aClickOnTheStatusItemTogglesThePanel)
{
    LaunchDesk desk;
    desk.delegate.applicationDidFinishLaunching();
    desk.statusItemActions.togglePanel();
    EXPECT_FALSE(desk.panel()->isVisible());
    desk.statusItemActions.togglePanel();
    EXPECT_TRUE(desk.panel()->isVisible());
}

TEST(AppDelegate, theMenuShowsThePanelAndNeverHidesIt)
{
    LaunchDesk desk;
    desk.delegate.applicationDidFinishLaunching();
    desk.statusItemActions.showPanel();
    EXPECT_TRUE(desk.panel()->isVisible());
    desk.statusItemActions.togglePanel();
    desk.statusItemActions.showPanel();
    EXPECT_TRUE(desk.panel()->isVisible());
}

TEST(AppDelegate, theMenuQuits)
{
    LaunchDesk desk;
    desk.delegate.applicationDidFinishLaunching();
    EXPECT_FALSE(desk.hasQuit);
    desk.statusItemActions.quit();
    EXPECT_TRUE(desk.hasQuit);
}

TEST(AppDelegate, theGlobalShortcutTogglesThePanel)
{
    LaunchDesk desk;
    desk.delegate.applicationDidFinishLaunching();
    namespace keys = platform::keys;
    const platform::TapEvent event{
        .type = keys::keyDown, .keyCode = keys::s, .flags = keys::option | keys::command};
    EXPECT_EQ(desk.tapClient->handle(event), platform::TapVerdict::swallow);
    desk.mainThread.run();
    EXPECT_FALSE(desk.panel()->isVisible());
}

TEST(AppDelegate, thePanelSaysWhyTheShortcutsAreOff)
{
    LaunchDesk desk;
    desk.permission.trusted = false;
    desk.delegate.applicationDidFinishLaunching();
    EXPECT_EQ(desk.content.shortcutProblem(), QStringLiteral("Shortcuts are off: the test said no"));

    desk.permission.trusted = true;
    desk.clock.advance(std::chrono::seconds(2));
    EXPECT_EQ(desk.content.shortcutProblem(), QString());
}

TEST(AppDelegate, thePanelSaysWhenTheKeyboardCannotBeWatched)
{
    LaunchDesk desk;
    desk.refusesTap = true;
    desk.delegate.applicationDidFinishLaunching();
    EXPECT_EQ(desk.content.shortcutProblem(),
              QStringLiteral("Shortcuts are off: the keyboard could not be watched"));
}

TEST(AppDelegate, thePanelNamesTheChordsThatOthersHold)
{
    LaunchDesk desk;
    desk.conflicts = {{.keyCode = 9, .flags = 0, .reason = "Super+V is held by another program"},
                      {.keyCode = 8, .flags = 0, .reason = "Super+C is held by another program"}};
    desk.delegate.applicationDidFinishLaunching();
    EXPECT_EQ(desk.content.shortcutProblem(),
              QStringLiteral("Super+V is held by another program; Super+C is held by another program"));
}

} // namespace stavelin::testkit
