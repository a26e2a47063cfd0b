#include "services/ShortcutDesk.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace stavelin::services {

using namespace std::chrono_literals;
using platform::TapVerdict;
using testing::ElementsAre;
using testing::IsEmpty;
using testkit::ScriptedDaemon;
using testkit::ShortcutDesk;
namespace keys = platform::keys;

namespace {

/// Leaves every request without an answer.
ScriptedDaemon::Answer silence(const daemon::ProtocolMessage &)
{
    return std::nullopt;
}

} // namespace

TEST(PasteGesture, controlVThenThreePastesSlotThreeAndBothKeysAreSwallowed)
{
    ShortcutDesk desk;
    desk.start();
    EXPECT_EQ(desk.pressControlV(), TapVerdict::swallow);
    desk.pass();
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::waitingForDigit);
    desk.pass(1900ms);
    EXPECT_EQ(desk.pressDigit(3), TapVerdict::swallow);
    EXPECT_FALSE(desk.manager->isWaitingForDigit());
    desk.pass();
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.paste_slot 3"));
    EXPECT_THAT(desk.complaints(), IsEmpty());
}

TEST(PasteGesture, theKeyIsSentFiftyMillisecondsAfterTheDaemonsAnswer)
{
    ShortcutDesk desk;
    desk.start();
    desk.pressControlV();
    desk.pressDigit(7);
    desk.pass();
    desk.pass(49ms);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
    desk.pass(1ms);
    EXPECT_THAT(desk.keySender.keyCodes, ElementsAre(keys::v));
    desk.pass(10s);
    EXPECT_THAT(desk.keySender.keyCodes, ElementsAre(keys::v));
    EXPECT_EQ(desk.beeper.beeps, 0);
}

TEST(PasteGesture, everyStartingChordPastes)
{
    for (const std::uint64_t flags :
         {keys::control, keys::control | keys::shift, keys::control | keys::option,
          keys::command | keys::shift, keys::command | keys::shift | keys::option}) {
        ShortcutDesk desk;
        desk.start();
        EXPECT_EQ(desk.press(keys::v, flags), TapVerdict::swallow);
        desk.pass(1s);
        EXPECT_EQ(desk.pressDigit(9), TapVerdict::swallow);
        desk.pass(50ms);
        EXPECT_THAT(desk.requests(), ElementsAre("clipboard.paste_slot 9")) << flags;
        EXPECT_THAT(desk.keySender.keyCodes, ElementsAre(keys::v)) << flags;
    }
}

TEST(PasteGesture, otherChordsWithVAreNotTouched)
{
    ShortcutDesk desk;
    desk.start();
    for (const std::uint64_t flags : {keys::command, keys::control | keys::command, keys::option}) {
        EXPECT_EQ(desk.press(keys::v, flags), TapVerdict::passThrough) << flags;
        desk.pass();
        EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle) << flags;
        EXPECT_EQ(desk.pressDigit(3), TapVerdict::passThrough) << flags;
    }
    desk.pass(3s);
    EXPECT_THAT(desk.requests(), IsEmpty());
}

TEST(PasteGesture, aDigitRightBehindControlVIsKnownBeforeTheMainThreadHasRun)
{
    ShortcutDesk desk;
    desk.start();
    EXPECT_EQ(desk.pressControlV(), TapVerdict::swallow);
    EXPECT_TRUE(desk.manager->isWaitingForDigit());
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle); // the main thread has not run
    EXPECT_EQ(desk.pressDigit(3), TapVerdict::swallow);
    EXPECT_EQ(desk.pressDigit(4), TapVerdict::passThrough);
    desk.pass(50ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.paste_slot 3"));
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle);
    EXPECT_FALSE(desk.manager->isWaitingForDigit());
}

TEST(PasteGesture, anyOtherKeyEndsItAndReachesTheApplication)
{
    constexpr std::int64_t digitZero = 29;
    constexpr std::int64_t keypadThree = 85;
    for (const std::int64_t keyCode : {digitZero, keypadThree, ShortcutDesk::letterA, keys::other, keys::v}) {
        SCOPED_TRACE(keyCode);
        ShortcutDesk desk;
        desk.start();
        desk.pressControlV();
        desk.pass(1s);
        EXPECT_EQ(desk.press(keyCode), TapVerdict::passThrough);
        EXPECT_FALSE(desk.manager->isWaitingForDigit());
        desk.pass();
        EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle);
        EXPECT_EQ(desk.clock.pendingCount(), 0U); // the time-out is cancelled
        EXPECT_EQ(desk.pressDigit(3), TapVerdict::passThrough);
        desk.pass(3s);
        EXPECT_THAT(desk.requests(), IsEmpty());
        EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
    }
}

TEST(PasteGesture, afterTwoSecondsWithoutAKeyADigitIsTypedNormally)
{
    ShortcutDesk desk;
    desk.start();
    desk.pressControlV();
    desk.pass();
    desk.pass(1999ms);
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::waitingForDigit);
    EXPECT_TRUE(desk.manager->isWaitingForDigit());
    desk.pass(1ms);
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle);
    EXPECT_FALSE(desk.manager->isWaitingForDigit());
    EXPECT_EQ(desk.pressDigit(3), TapVerdict::passThrough);
    desk.pass(1s);
    EXPECT_THAT(desk.requests(), IsEmpty());
}

TEST(PasteGesture, aSecondControlVStartsTheTwoSecondsAgain)
{
    ShortcutDesk desk;
    desk.start();
    desk.pressControlV();
    desk.pass(1500ms);
    EXPECT_EQ(desk.pressControlV(), TapVerdict::swallow);
    desk.pass(1900ms);
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::waitingForDigit);
    EXPECT_EQ(desk.pressDigit(3), TapVerdict::swallow);
    desk.pass(50ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.paste_slot 3"));
    EXPECT_THAT(desk.keySender.keyCodes, ElementsAre(keys::v));
}

TEST(PasteGesture, aSecondControlVEndsByItsOwnTimeOut)
{
    ShortcutDesk desk;
    desk.start();
    desk.pressControlV();
    desk.pass(1500ms);
    desk.pressControlV();
    desk.pass();
    desk.pass(1999ms);
    EXPECT_TRUE(desk.manager->isWaitingForDigit());
    desk.pass(1ms);
    EXPECT_FALSE(desk.manager->isWaitingForDigit());
}

TEST(PasteGesture, savingWhileTheDigitIsAwaitedLeavesItAwaited)
{
    ShortcutDesk desk;
    desk.start();
    desk.copyGives("text");
    desk.pressControlV();
    desk.pass(200ms);
    EXPECT_EQ(desk.pressControlC(), TapVerdict::swallow);
    desk.pass(200ms);
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::waitingForDigit);
    EXPECT_EQ(desk.pressDigit(2), TapVerdict::swallow);
    desk.pass(50ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 1 text", "clipboard.paste_slot 2"));
}

TEST(PasteGesture, togglingThePanelWhileTheDigitIsAwaitedLeavesItAwaited)
{
    ShortcutDesk desk;
    desk.start();
    desk.pressControlV();
    desk.pass(200ms);
    EXPECT_EQ(desk.pressOptionCommandS(), TapVerdict::swallow);
    desk.pass(200ms);
    EXPECT_TRUE(desk.manager->isWaitingForDigit());
    EXPECT_EQ(desk.pressDigit(2), TapVerdict::swallow);
    desk.pass(50ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.paste_slot 2"));
}

TEST(PasteGesture, theStateIsIdleWhileTheDaemonIsStillAsked)
{
    ShortcutDesk desk;
    desk.start();
    desk.daemon.onRequest = silence;
    desk.pressControlV();
    desk.pressDigit(3);
    desk.pass(5s);
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());

    // The answer comes late, and the paste with it.
    desk.daemon.answer(ScriptedDaemon::responseTo(desk.daemon.requests.at(0), "text"));
    desk.pass(50ms);
    EXPECT_THAT(desk.keySender.keyCodes, ElementsAre(keys::v));
    EXPECT_THAT(desk.complaints(), IsEmpty());
    desk.pass(10s); // the request's own time-out finds nothing
}

TEST(PasteGesture, aPasteThatTheDaemonRefusesIsLoggedAndBeeps)
{
    ShortcutDesk desk;
    desk.start();
    desk.daemon.onRequest = [](const auto &request) {
        return ScriptedDaemon::refusalOf(request, "Slot 3 is empty");
    };
    desk.pressControlV();
    desk.pressDigit(3);
    desk.pass(10s);
    EXPECT_THAT(desk.complaints(), ElementsAre("[ShortcutManager] Paste failed: Slot 3 is empty"));
    EXPECT_EQ(desk.beeper.beeps, 1);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
}

TEST(PasteGesture, aPasteWithoutADaemonIsLoggedAndBeeps)
{
    ShortcutDesk desk;
    desk.manager->startEventTap();
    desk.pressControlV();
    desk.pressDigit(3);
    desk.pass(1s);
    EXPECT_THAT(desk.complaints(), ElementsAre("[ShortcutManager] Paste failed: Not connected to daemon"));
    EXPECT_EQ(desk.beeper.beeps, 1);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
}

TEST(PasteGesture, aPasteThatIsNotAnsweredIsLoggedAndBeepsAfterTenSeconds)
{
    ShortcutDesk desk;
    desk.start();
    desk.daemon.onRequest = silence;
    desk.pressControlV();
    desk.pressDigit(3);
    desk.pass();
    desk.pass(9999ms);
    EXPECT_EQ(desk.beeper.beeps, 0);
    desk.pass(1ms);
    EXPECT_THAT(desk.complaints(), ElementsAre("[ShortcutManager] Paste failed: Request timed out"));
    EXPECT_EQ(desk.beeper.beeps, 1);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
}

TEST(PasteGesture, aPasteWhoseDaemonGoesAwayIsLoggedAndBeeps)
{
    ShortcutDesk desk;
    desk.start();
    desk.daemon.onRequest = silence;
    desk.pressControlV();
    desk.pressDigit(3);
    desk.pass();
    desk.daemon.breakConnection();
    desk.pass();
    EXPECT_THAT(desk.complaints(), ElementsAre("[ShortcutManager] Paste failed: Disconnected from daemon"));
    EXPECT_EQ(desk.beeper.beeps, 1);
    desk.pass(10s);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
}

TEST(PasteGesture, twoPastesInARowAreBothMade)
{
    ShortcutDesk desk;
    desk.start();
    desk.pressControlV();
    desk.pressDigit(3);
    desk.pressControlV();
    desk.pressDigit(4);
    desk.pass(50ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.paste_slot 3", "clipboard.paste_slot 4"));
    EXPECT_THAT(desk.keySender.keyCodes, ElementsAre(keys::v, keys::v));
}

TEST(PasteGesture, aNewGestureIsNotEndedByTheBelatedEndOfTheOneBefore)
{
    ShortcutDesk desk;
    desk.start();
    // All three before the main thread has run once.
    desk.pressControlV();
    EXPECT_EQ(desk.press(ShortcutDesk::letterA), TapVerdict::passThrough);
    desk.pressControlV();
    desk.pass(1900ms);
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::waitingForDigit);
    EXPECT_EQ(desk.pressDigit(5), TapVerdict::swallow);
    desk.pass(50ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.paste_slot 5"));
}

TEST(PasteGesture, theTapIsToldWhenTheMainThreadEndsTheWaiting)
{
    ShortcutDesk desk;
    desk.start();
    desk.pressControlV();
    desk.pass(1s);
    EXPECT_EQ(desk.taps.waitingChanges, 0); // the tap made the change itself
    desk.pass(1s);
    EXPECT_EQ(desk.taps.waitingChanges, 1); // the time-out

    desk.pressControlV();
    desk.pass();
    desk.manager->resetPasteFlow();
    EXPECT_EQ(desk.taps.waitingChanges, 2);
    EXPECT_FALSE(desk.manager->isWaitingForDigit());
}

TEST(PasteGesture, aWaitingThatOutlivesTheTapEndsByItsTimeOut)
{
    ShortcutDesk desk;
    desk.start();
    desk.pressControlV();
    desk.pass();
    desk.manager->stopEventTap();
    desk.pass(2s);
    EXPECT_EQ(desk.manager->pasteFlowState(), PasteFlowState::idle);
    EXPECT_FALSE(desk.manager->isWaitingForDigit());
}

TEST(PasteGesture, aManagerThatEndsMeanwhileSendsNoKey)
{
    ShortcutDesk waiting;
    waiting.start();
    waiting.pressControlV();
    waiting.pass();
    waiting.manager.reset();
    EXPECT_EQ(waiting.clock.pendingCount(), 0U); // its time-out is cancelled
    waiting.pass(2s);

    ShortcutDesk asking;
    asking.start();
    asking.daemon.onRequest = silence;
    asking.pressControlV();
    asking.pressDigit(3);
    asking.pass();
    asking.manager.reset();
    asking.pass(10s); // the request times out
    EXPECT_EQ(asking.beeper.beeps, 0);
    EXPECT_THAT(asking.complaints(), IsEmpty());

    ShortcutDesk pausing;
    pausing.start();
    pausing.pressControlV();
    pausing.pressDigit(3);
    pausing.pass(20ms);
    EXPECT_EQ(pausing.requests().size(), 1U);
    pausing.manager.reset();
    pausing.pass(50ms);
    EXPECT_THAT(pausing.keySender.keyCodes, IsEmpty());
}

} // namespace stavelin::services
