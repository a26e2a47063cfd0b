#include "services/ShortcutManager.h"

#include "services/ShortcutDesk.h"

#include <QVariant>

#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace stavelin::services {

using namespace std::chrono_literals;
using platform::TapVerdict;
using testing::ElementsAre;
using testing::IsEmpty;
using testkit::ShortcutDesk;
namespace keys = platform::keys;

namespace {

const std::string startedLine = "[ShortcutManager] Event tap started successfully";
const std::string stoppedLine = "[ShortcutManager] Event tap stopped";
const std::string runningLine = "[ShortcutManager] Event tap already running";
const std::string forbiddenLine = "[ShortcutManager] Cannot start event tap: no accessibility permission";
const std::string refusedLine =
    "[ShortcutManager] Failed to create event tap - check accessibility permissions";

class CountingPanel final : public TogglablePanel
{
public:
    void togglePanel() override { ++toggles; }
    int toggles = 0;
};

} // namespace

TEST(ShortcutManager, aNewOneIsIdleWithoutATap)
{
    const ShortcutDesk desk;
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle);
    EXPECT_FALSE(desk.manager->eventTapRunning());
    EXPECT_FALSE(desk.manager->isWaitingForDigit());
    EXPECT_EQ(desk.taps.tapsMade, 0);
    EXPECT_THAT(desk.log.lines(), IsEmpty());
}

TEST(ShortcutManager, aPersistedIndexOutsideOneToNineStartsTheCycleAtOne)
{
    const std::pair<std::int64_t, int> rows[] = {{1, 1},
                                                 {5, 5},
                                                 {9, 9},
                                                 {10, 1},
                                                 {-1, 1},
                                                 {-9, 1},
                                                 {(std::int64_t{1} << 32) + 5, 1},
                                                 {std::numeric_limits<std::int64_t>::max(), 1}};
    for (const auto &[persisted, expected] : rows) {
        const ShortcutDesk desk(persisted);
        EXPECT_EQ(desk.manager->nextSlotIndex(), expected) << persisted;
        EXPECT_THAT(desk.userDefaults.integersWritten, IsEmpty());
    }
}

TEST(ShortcutManager, anAbsentIndexAndAPersistedZeroStartTheCycleAtOne)
{
    EXPECT_EQ(ShortcutDesk().manager->nextSlotIndex(), 1);

    ShortcutDesk desk;
    desk.userDefaults.setInteger("nextSlotIndex", 0);
    const ShortcutManager again(desk.connector, desk.taps, desk.permission, desk.keySender, desk.pasteboard,
                                desk.beeper, desk.userDefaults, desk.clock, desk.mainThread, desk.log);
    EXPECT_EQ(again.nextSlotIndex(), 1);
}

TEST(ShortcutManager, askingForThePermissionAtConstructionShowsNoPrompt)
{
    ShortcutDesk desk;
    EXPECT_TRUE(desk.manager->hasAccessibilityPermission());
    EXPECT_THAT(desk.permission.prompts, ElementsAre(false));

    desk.permission.trusted = false;
    const ShortcutManager again(desk.connector, desk.taps, desk.permission, desk.keySender, desk.pasteboard,
                                desk.beeper, desk.userDefaults, desk.clock, desk.mainThread, desk.log);
    EXPECT_FALSE(again.hasAccessibilityPermission());
    EXPECT_THAT(desk.permission.prompts, ElementsAre(false, false));
}

TEST(ShortcutManager, startingInstallsARunningTap)
{
    ShortcutDesk desk;
    desk.manager->startEventTap();
    EXPECT_TRUE(desk.manager->eventTapRunning());
    EXPECT_EQ(desk.taps.client, desk.manager.get());
    EXPECT_THAT(desk.log.lines(), ElementsAre(startedLine));
}

TEST(ShortcutManager, startingWithoutThePermissionInstallsNothing)
{
    ShortcutDesk desk;
    desk.manager->setHasAccessibilityPermission(false);
    desk.manager->startEventTap();
    EXPECT_FALSE(desk.manager->eventTapRunning());
    EXPECT_EQ(desk.taps.tapsMade, 0);
    EXPECT_THAT(desk.log.lines(), ElementsAre(forbiddenLine));
    EXPECT_THAT(desk.permission.prompts, ElementsAre(false)); // nobody asked again
}

TEST(ShortcutManager, startingTwiceInstallsOneTap)
{
    ShortcutDesk desk;
    desk.manager->startEventTap();
    desk.manager->startEventTap();
    EXPECT_EQ(desk.taps.tapsMade, 1);
    EXPECT_TRUE(desk.manager->eventTapRunning());
    EXPECT_THAT(desk.log.lines(), ElementsAre(startedLine, runningLine));
}

TEST(ShortcutManager, aRefusedTapChangesNothingAndCanBeTriedAgain)
{
    ShortcutDesk desk;
    int notifications = 0;
    QObject::connect(desk.manager.get(), &ShortcutManager::eventTapRunningChanged, [&] { ++notifications; });
    desk.taps.refuses = true;
    desk.manager->startEventTap();
    EXPECT_FALSE(desk.manager->eventTapRunning());
    EXPECT_EQ(notifications, 0);
    desk.taps.refuses = false;
    desk.manager->startEventTap();
    EXPECT_TRUE(desk.manager->eventTapRunning());
    EXPECT_THAT(desk.log.lines(), ElementsAre(refusedLine, startedLine));
}

TEST(ShortcutManager, stoppingRemovesTheTapAndItCanBeStartedAgain)
{
    ShortcutDesk desk;
    desk.manager->startEventTap();
    desk.manager->stopEventTap();
    EXPECT_FALSE(desk.manager->eventTapRunning());
    EXPECT_EQ(desk.taps.client, nullptr);
    EXPECT_EQ(desk.pressControlV(), TapVerdict::passThrough);
    desk.manager->startEventTap();
    EXPECT_TRUE(desk.manager->eventTapRunning());
    EXPECT_EQ(desk.taps.tapsMade, 2);
    EXPECT_THAT(desk.log.lines(), ElementsAre(startedLine, stoppedLine, startedLine));
}

TEST(ShortcutManager, stoppingWithoutATapStillSaysStopped)
{
    const ShortcutDesk desk;
    desk.manager->stopEventTap();
    EXPECT_FALSE(desk.manager->eventTapRunning());
    EXPECT_THAT(desk.log.lines(), ElementsAre(stoppedLine));
}

TEST(ShortcutManager, itsEndRemovesTheTap)
{
    ShortcutDesk desk;
    desk.manager->startEventTap();
    desk.manager.reset();
    EXPECT_EQ(desk.taps.client, nullptr);
}

TEST(ShortcutManager, theConflictsAreThoseOfTheInstalledTap)
{
    ShortcutDesk desk;
    const platform::TapConflict conflict{keys::v, keys::control, "another program holds Super+V"};
    desk.taps.conflicts = {conflict};
    EXPECT_THAT(desk.manager->conflicts(), IsEmpty());
    desk.manager->startEventTap();
    EXPECT_THAT(desk.manager->conflicts(), ElementsAre(conflict));
    desk.manager->stopEventTap();
    EXPECT_THAT(desk.manager->conflicts(), IsEmpty());
}

TEST(ShortcutManager, checkingThePermissionAsksWithoutAPromptAfterHalfASecondAndStartsNothing)
{
    ShortcutDesk desk;
    desk.manager->setHasAccessibilityPermission(false);
    desk.manager->checkAccessibilityPermission();
    desk.pass(499ms);
    EXPECT_THAT(desk.permission.prompts, ElementsAre(false)); // the one at construction
    EXPECT_FALSE(desk.manager->hasAccessibilityPermission());
    desk.pass(1ms);
    EXPECT_THAT(desk.permission.prompts, ElementsAre(false, false));
    EXPECT_TRUE(desk.manager->hasAccessibilityPermission());
    EXPECT_EQ(desk.taps.tapsMade, 0);
}

TEST(ShortcutManager, aPermissionThatWasTakenAwayIsNoticedByTheCheck)
{
    ShortcutDesk desk;
    desk.permission.trusted = false;
    desk.manager->checkAccessibilityPermission();
    desk.pass(500ms);
    EXPECT_FALSE(desk.manager->hasAccessibilityPermission());
}

TEST(ShortcutManager, aCheckThatOutlivesTheManagerAsksNothing)
{
    ShortcutDesk desk;
    desk.manager->checkAccessibilityPermission();
    desk.manager.reset();
    desk.pass(500ms);
    EXPECT_THAT(desk.permission.prompts, ElementsAre(false));
}

TEST(ShortcutManager, everyAssignmentNotifiesAlsoOneThatChangesNothing)
{
    ShortcutDesk desk;
    ShortcutManager &manager = *desk.manager;
    int notifications = 0;
    const auto count = [&](auto signal) { QObject::connect(&manager, signal, [&] { ++notifications; }); };
    const auto notificationsOf = [&](const std::function<void()> &assign) {
        notifications = 0;
        assign();
        assign();
        return notifications;
    };

    count(&ShortcutManager::hasAccessibilityPermissionChanged);
    EXPECT_EQ(notificationsOf([&] { manager.setHasAccessibilityPermission(true); }), 2);
    count(&ShortcutManager::eventTapRunningChanged);
    EXPECT_EQ(notificationsOf([&] { manager.stopEventTap(); }), 2);
    count(&ShortcutManager::nextSlotIndexChanged);
    EXPECT_EQ(notificationsOf([&] { manager.setNextSlotIndex(4); }), 2);
    count(&ShortcutManager::pasteFlowStateChanged);
    EXPECT_EQ(notificationsOf([&] { manager.resetPasteFlow(); }), 2);
    EXPECT_EQ(notificationsOf([&] { manager.startPasteFlow(); }), 2);
}

TEST(ShortcutManager, theStateIsReadableAsProperties)
{
    ShortcutDesk desk(7);
    const ShortcutManager &manager = *desk.manager;
    EXPECT_EQ(manager.property("nextSlotIndex").toInt(), 7);
    EXPECT_TRUE(manager.property("hasAccessibilityPermission").toBool());
    EXPECT_FALSE(manager.property("eventTapRunning").toBool());
    desk.manager->startPasteFlow();
    EXPECT_EQ(manager.property("pasteFlowState").value<PasteFlowState>(), PasteFlowState::waitingForDigit);
}

TEST(ShortcutManager, theIndexIsWrittenWithEveryAssignmentAfterItsObserversWereTold)
{
    ShortcutDesk desk;
    std::vector<std::pair<int, std::int64_t>>
        seen; // the property and what is persisted, at each notification
    QObject::connect(desk.manager.get(), &ShortcutManager::nextSlotIndexChanged, [&] {
        seen.emplace_back(desk.manager->nextSlotIndex(), desk.userDefaults.integer("nextSlotIndex"));
    });
    desk.manager->setNextSlotIndex(3);
    desk.manager->setNextSlotIndex(3);
    desk.manager->setNextSlotIndex(8);
    EXPECT_THAT(seen, ElementsAre(std::pair(3, 0), std::pair(3, 3), std::pair(8, 3)));
    EXPECT_EQ(desk.userDefaults.integersWritten.size(), 3U);
    EXPECT_EQ(desk.userDefaults.integer("nextSlotIndex"), 8);
}

TEST(ShortcutManager, whatIsWrittenIsTheIndexAsItReadsAfterItsObserversWereTold)
{
    ShortcutDesk desk;
    QObject::connect(desk.manager.get(), &ShortcutManager::nextSlotIndexChanged, [&] {
        if (desk.manager->nextSlotIndex() == 3)
            desk.manager->setNextSlotIndex(6);
    });
    desk.manager->setNextSlotIndex(3);
    EXPECT_THAT(desk.userDefaults.integersWritten,
                ElementsAre(std::pair<std::string, std::int64_t>("nextSlotIndex", 6),
                            std::pair<std::string, std::int64_t>("nextSlotIndex", 6)));
}

TEST(ShortcutManager, optionCommandSTogglesThePanel)
{
    ShortcutDesk desk;
    desk.start();
    CountingPanel panel;
    desk.manager->setPanelController(&panel);
    for (const std::uint64_t extra : {std::uint64_t{0}, keys::shift, keys::control}) {
        EXPECT_EQ(desk.press(keys::s, keys::option | keys::command | extra), TapVerdict::swallow);
        desk.pass();
    }
    EXPECT_EQ(panel.toggles, 3);
}

TEST(ShortcutManager, thePanelIsToggledOnTheMainThreadOnly)
{
    ShortcutDesk desk;
    desk.start();
    CountingPanel panel;
    desk.manager->setPanelController(&panel);
    desk.pressOptionCommandS();
    EXPECT_EQ(panel.toggles, 0);
    desk.pass();
    EXPECT_EQ(panel.toggles, 1);
}

TEST(ShortcutManager, withoutAPanelTheShortcutIsStillSwallowedAndNothingHappens)
{
    ShortcutDesk desk;
    desk.start();
    EXPECT_EQ(desk.pressOptionCommandS(), TapVerdict::swallow);
    desk.pass();
    {
        CountingPanel panel;
        desk.manager->setPanelController(&panel);
    }
    EXPECT_EQ(desk.pressOptionCommandS(), TapVerdict::swallow); // the panel has gone
    desk.pass();
    EXPECT_THAT(desk.complaints(), IsEmpty());
}

TEST(ShortcutManager, isGestureSaysWhatIsSwallowedAnywayAndDoesNothing)
{
    ShortcutDesk desk;
    desk.start();
    const auto isGesture = [&](std::int64_t keyCode, std::uint64_t flags) {
        return desk.manager->isGesture({.type = keys::keyDown, .keyCode = keyCode, .flags = flags});
    };
    for (const bool waiting : {false, true}) {
        SCOPED_TRACE(waiting);
        EXPECT_TRUE(isGesture(keys::v, keys::control));
        EXPECT_TRUE(isGesture(keys::v, keys::command | keys::shift));
        EXPECT_TRUE(isGesture(keys::c, keys::control | keys::option));
        EXPECT_TRUE(isGesture(keys::s, keys::command | keys::option));
        EXPECT_FALSE(isGesture(keys::v, keys::command));
        EXPECT_FALSE(isGesture(keys::digits[2], 0));
        EXPECT_FALSE(isGesture(ShortcutDesk::letterA, keys::control));
        desk.pass();
        EXPECT_EQ(desk.manager->isWaitingForDigit(), waiting);
        EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
        desk.pressControlV();
        desk.pass();
    }
}

TEST(ShortcutManager, whatThePersonDidBeforeItsEndIsForgottenAtItsEnd)
{
    ShortcutDesk desk;
    desk.start();
    CountingPanel panel;
    desk.manager->setPanelController(&panel);
    desk.pressControlC();
    desk.pressOptionCommandS();
    desk.pressControlV();
    desk.pressDigit(3);
    desk.manager.reset();
    desk.pass(3s);
    EXPECT_EQ(panel.toggles, 0);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
    EXPECT_THAT(desk.requests(), IsEmpty());
}

TEST(ShortcutManager, aTapOnAThreadOfItsOwnSharesOnlyTheWaitingWithTheMainThread)
{
    ShortcutDesk desk;
    desk.start();
    constexpr int rounds = 200;
    int swallowed = 0;
    std::thread tapThread([&] {
        for (int round = 0; round < rounds; ++round) {
            swallowed += desk.pressControlV() == TapVerdict::swallow ? 1 : 0;
            swallowed += desk.pressDigit(3) == TapVerdict::swallow ? 1 : 0;
        }
    });
    for (int round = 0; round < rounds; ++round)
        desk.pass();
    tapThread.join();
    desk.pass(1s);

    // Nobody resets the gesture meanwhile, so not one digit slips through.
    EXPECT_EQ(swallowed, 2 * rounds);
    EXPECT_EQ(desk.requests().size(), rounds);
    EXPECT_EQ(desk.keySender.keyCodes, std::vector<std::int64_t>(rounds, keys::v));
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle);
}

} // namespace stavelin::services
