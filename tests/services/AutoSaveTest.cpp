#include "services/ShortcutDesk.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
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

const std::vector<std::string> allFilled = {"a", "b", "c", "d", "e", "f", "g", "h", "i"};

/// Control+C, and the time that it takes when the application in front answers at once.
void save(ShortcutDesk &desk)
{
    EXPECT_EQ(desk.pressControlC(), TapVerdict::swallow);
    desk.pass(100ms);
}

/// Hands out a text of this length, whatever it should refuse.
class CarelessPasteboard final : public platform::Pasteboard
{
public:
    CarelessPasteboard(support::Clock &clock, std::size_t size) : m_clock(clock), m_size(size) {}

    [[nodiscard]] std::uint64_t changeCount() const override { return 0; }
    void readString(std::uint64_t, StringCompletion completion) override
    {
        const auto reading = std::make_shared<StringCompletion>(std::move(completion));
        m_clock.after(0ms, [this, reading] { (*reading)(std::string(m_size, 'x')); });
    }

private:
    support::Clock &m_clock;
    std::size_t m_size;
};

} // namespace

TEST(AutoSave, controlCCopiesAndSavesTheTextAndIsSwallowed)
{
    ShortcutDesk desk;
    desk.start();
    desk.copyGives("the selected text");
    EXPECT_EQ(desk.pressControlC(), TapVerdict::swallow);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty()); // nothing but deciding happens in the tap
    desk.pass();
    EXPECT_THAT(desk.keySender.keyCodes, ElementsAre(keys::c));
    desk.pass(99ms);
    EXPECT_EQ(desk.pasteboard.reads, 0);
    desk.pass(1ms);
    EXPECT_EQ(desk.pasteboard.reads, 1);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 1 the selected text"));
    EXPECT_EQ(desk.manager->nextSlotIndex(), 2);
    EXPECT_EQ(desk.userDefaults.integer("nextSlotIndex"), 2);
    EXPECT_THAT(desk.complaints(), IsEmpty());
    EXPECT_EQ(desk.beeper.beeps, 0);
}

TEST(AutoSave, optionIsIgnoredAndCommandIsNot)
{
    ShortcutDesk desk;
    desk.start();
    desk.copyGives("text");
    EXPECT_EQ(desk.press(keys::c, keys::control | keys::command), TapVerdict::passThrough);
    desk.pass(1s);
    EXPECT_THAT(desk.keySender.keyCodes, IsEmpty());
    EXPECT_EQ(desk.press(keys::c, keys::control | keys::option), TapVerdict::swallow);
    desk.pass(100ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 1 text"));
}

TEST(AutoSave, withSlotsTwoAndFiveEmptyItSavesIntoTwoAndTheIndexAdvances)
{
    ShortcutDesk desk(7);
    auto texts = allFilled;
    texts[1].clear();
    texts[4].clear();
    desk.start(texts);
    desk.copyGives("text");
    save(desk);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 2 text"));
    EXPECT_EQ(desk.manager->nextSlotIndex(), 8);
}

TEST(AutoSave, withAllNineFilledAndIndexNineItSavesIntoNineAndTheIndexBecomesOne)
{
    ShortcutDesk desk(9);
    desk.start(allFilled);
    desk.copyGives("text");
    save(desk);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 9 text"));
    EXPECT_EQ(desk.manager->nextSlotIndex(), 1);
    EXPECT_EQ(desk.userDefaults.integer("nextSlotIndex"), 1);
}

TEST(AutoSave, withAllNineFilledTenCopiesGoOnceRoundTheSlots)
{
    ShortcutDesk desk;
    desk.start(allFilled);
    std::vector<std::string> expected;
    for (const int slotIndex : {1, 2, 3, 4, 5, 6, 7, 8, 9, 1}) {
        const std::string text = "copy " + std::to_string(expected.size());
        expected.push_back("clipboard.set_slot " + std::to_string(slotIndex) + " " + text);
        desk.copyGives(text);
        save(desk);
    }
    EXPECT_EQ(desk.requests(), expected);
    EXPECT_EQ(desk.manager->nextSlotIndex(), 2);
}

TEST(AutoSave, theFirstEmptySlotIsTheFirstInTheDaemonsOrder)
{
    ShortcutDesk desk;
    desk.start();
    desk.daemon.pushSlots(
        {ShortcutDesk::slot(6, "filled"), ShortcutDesk::slot(5, ""), ShortcutDesk::slot(2, "")});
    desk.pass();
    desk.copyGives("text");
    save(desk);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 5 text"));
}

TEST(AutoSave, theTargetIsChosenFromTheSlotsAsTheyAreAfterTheCopy)
{
    ShortcutDesk desk;
    desk.start();
    desk.copyGives("text");
    desk.pressControlC();
    desk.pass(50ms);
    auto texts = allFilled;
    texts[3].clear();
    desk.pushTexts(texts);
    desk.pass(50ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 4 text"));
}

TEST(AutoSave, nothingOnThePasteboardButTextIsSaved)
{
    for (const std::optional<std::string> &copied :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        ShortcutDesk desk;
        desk.start();
        desk.keySender.onKeyPress = [&](std::int64_t) { desk.pasteboard.put(copied); };
        save(desk);
        desk.pass(1s);
        EXPECT_EQ(desk.pasteboard.reads, 1);
        EXPECT_THAT(desk.requests(), IsEmpty());
        EXPECT_THAT(desk.complaints(), IsEmpty());
        EXPECT_EQ(desk.beeper.beeps, 0);
        EXPECT_EQ(desk.manager->nextSlotIndex(), 1);
        EXPECT_THAT(desk.userDefaults.integersWritten, IsEmpty());
    }
}

TEST(AutoSave, aSlowApplicationsTextIsSavedAndNotTheOneBefore)
{
    ShortcutDesk desk;
    desk.start();
    desk.pasteboard.put("before");
    desk.pressControlC();
    desk.pass(300ms);
    EXPECT_THAT(desk.requests(), IsEmpty());
    desk.pasteboard.put("after");
    desk.pass();
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 1 after"));
    desk.pass(1s);
    EXPECT_EQ(desk.requests().size(), 1U);
}

TEST(AutoSave, whenTheCopyChangesNothingWhatIsThereIsSaved)
{
    ShortcutDesk desk;
    desk.start();
    desk.pasteboard.put("already there");
    desk.pressControlC();
    desk.pass(500ms);
    EXPECT_THAT(desk.requests(), ElementsAre("clipboard.set_slot 1 already there"));
}

TEST(AutoSave, anErrorInTheDaemonsAnswerCountsAsSaved)
{
    ShortcutDesk desk;
    desk.start();
    desk.daemon.onRequest = [](const auto &request) {
        return ScriptedDaemon::refusalOf(request, "store failed");
    };
    desk.copyGives("text");
    save(desk);
    EXPECT_EQ(desk.manager->nextSlotIndex(), 2);
    EXPECT_THAT(desk.complaints(), IsEmpty());
}

TEST(AutoSave, aSaveWithoutADaemonIsLoggedAndTheIndexStays)
{
    ShortcutDesk desk(4);
    desk.manager->startEventTap();
    desk.copyGives("a secret");
    save(desk);
    EXPECT_THAT(desk.complaints(),
                ElementsAre("[ShortcutManager] Auto-save to slot failed: Not connected to daemon"));
    EXPECT_EQ(desk.manager->nextSlotIndex(), 4);
    EXPECT_THAT(desk.userDefaults.integersWritten, IsEmpty());
    EXPECT_EQ(desk.beeper.beeps, 0);
}

TEST(AutoSave, aSaveThatIsNotAnsweredIsLoggedAndTheIndexStays)
{
    ShortcutDesk desk;
    desk.start();
    desk.daemon.onRequest = [](const auto &) { return std::nullopt; };
    desk.copyGives("text");
    save(desk);
    desk.pass(10s);
    EXPECT_THAT(desk.complaints(),
                ElementsAre("[ShortcutManager] Auto-save to slot failed: Request timed out"));
    EXPECT_EQ(desk.manager->nextSlotIndex(), 1);
}

TEST(AutoSave, aTextThatIsLongerThanASlotIsRefusedWithABeepBeforeItIsSent)
{
    ShortcutDesk desk;
    desk.start();
    CarelessPasteboard pasteboard(desk.clock, platform::Pasteboard::maximumTextSize + 1);
    ShortcutManager manager(desk.connector, desk.taps, desk.permission, desk.keySender, pasteboard,
                            desk.beeper, desk.userDefaults, desk.clock, desk.mainThread, desk.log);
    manager.autoSaveClipboardToSlot();
    desk.pass(100ms);
    EXPECT_THAT(
        desk.complaints(),
        ElementsAre("[ShortcutManager] Auto-save to slot failed: the text is longer than a slot can hold"));
    EXPECT_EQ(desk.beeper.beeps, 1);
    EXPECT_THAT(desk.daemon.requests, IsEmpty());
    EXPECT_EQ(manager.nextSlotIndex(), 1);
}

TEST(AutoSave, aTextThatJustFitsASlotIsSaved)
{
    ShortcutDesk desk;
    desk.start();
    CarelessPasteboard pasteboard(desk.clock, platform::Pasteboard::maximumTextSize);
    ShortcutManager manager(desk.connector, desk.taps, desk.permission, desk.keySender, pasteboard,
                            desk.beeper, desk.userDefaults, desk.clock, desk.mainThread, desk.log);
    manager.autoSaveClipboardToSlot();
    desk.pass(100ms);
    EXPECT_THAT(desk.complaints(), IsEmpty());
    EXPECT_EQ(desk.daemon.requests.size(), 1U);
    EXPECT_EQ(manager.nextSlotIndex(), 2);
}

TEST(AutoSave, aManagerThatEndsMeanwhileSavesNothing)
{
    for (const auto meanwhile : {0ms, 50ms, 250ms}) {
        ShortcutDesk desk;
        desk.start();
        desk.pressControlC();
        desk.pass(meanwhile);
        desk.manager.reset();
        desk.pasteboard.put("text");
        desk.pass(1s);
        EXPECT_THAT(desk.requests(), IsEmpty()) << meanwhile.count();
        EXPECT_THAT(desk.userDefaults.integersWritten, IsEmpty());
    }
}

TEST(AutoSave, aManagerThatEndsWhileTheDaemonSavesLeavesTheIndex)
{
    ShortcutDesk desk;
    desk.start();
    desk.daemon.onRequest = [](const auto &) { return std::nullopt; };
    desk.copyGives("text");
    save(desk);
    desk.manager.reset();
    desk.pass(10s);
    EXPECT_THAT(desk.userDefaults.integersWritten, IsEmpty());
    EXPECT_THAT(desk.complaints(), IsEmpty());
}

} // namespace stavelin::services
