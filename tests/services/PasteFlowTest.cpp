#include "services/PasteFlow.h"
#include "platform/KeyVocabulary.h"

#include <gmock/gmock.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace stavelin::services {

namespace {

namespace keys = platform::keys;
using platform::TapEvent;
using platform::TapVerdict;

constexpr std::uint64_t none = 0;
constexpr std::int64_t digitZero = 29;
constexpr std::int64_t keypadThree = 85;
constexpr std::int64_t letterA = 0;

const GestureDecision untouched{};
const GestureDecision startsPasteFlow{TapVerdict::swallow, true, GestureAction::startPasteFlow, 0};
const GestureDecision savesToSlot{TapVerdict::swallow, std::nullopt, GestureAction::autoSaveClipboardToSlot,
                                  0};
const GestureDecision togglesPanel{TapVerdict::swallow, std::nullopt, GestureAction::togglePanel, 0};
const GestureDecision endsGesture{TapVerdict::passThrough, false, GestureAction::resetPasteFlow, 0};

GestureDecision pastes(int slotIndex)
{
    return {TapVerdict::swallow, false, GestureAction::pasteFromSlot, slotIndex};
}

TapEvent keyDown(std::int64_t keyCode, std::uint64_t flags = none)
{
    return {.type = keys::keyDown, .keyCode = keyCode, .flags = flags};
}

std::string nameOf(std::uint64_t flags)
{
    std::string name;
    const std::pair<std::uint64_t, const char *> words[] = {{keys::shift, "Shift+"},
                                                            {keys::control, "Control+"},
                                                            {keys::option, "Option+"},
                                                            {keys::command, "Command+"}};
    for (const auto &[flag, word] : words)
        name += (flags & flag) != 0 ? word : "";
    return name.empty() ? "no modifier" : name;
}

struct ModifierRow
{
    std::uint64_t flags;
    bool startsPasteFlow; ///< with V
    bool savesToSlot;     ///< with C
    bool togglesPanel;    ///< with S
};

// All sixteen combinations of the four modifiers.
constexpr ModifierRow modifierRows[] = {
    {none, false, false, false},
    {keys::shift, false, false, false},
    {keys::control, true, true, false},
    {keys::control | keys::shift, true, true, false},
    {keys::option, false, false, false},
    {keys::option | keys::shift, false, false, false},
    {keys::option | keys::control, true, true, false},
    {keys::option | keys::control | keys::shift, true, true, false},
    {keys::command, false, false, false},
    {keys::command | keys::shift, true, false, false},
    {keys::command | keys::control, false, false, false},
    {keys::command | keys::control | keys::shift, true, false, false},
    {keys::command | keys::option, false, false, true},
    {keys::command | keys::option | keys::shift, true, false, true},
    {keys::command | keys::option | keys::control, false, false, true},
    {keys::command | keys::option | keys::control | keys::shift, true, false, true},
};

} // namespace

void PrintTo(const GestureDecision &decision, std::ostream *out)
{
    *out << (decision.verdict == TapVerdict::swallow ? "swallow" : "pass") << ", waiting "
         << (decision.waiting ? (*decision.waiting ? "true" : "false") : "as it is") << ", action "
         << static_cast<int>(decision.action) << ", slot " << decision.slotIndex;
}

TEST(PasteFlow, theTableHoldsEveryModifierCombinationOnce)
{
    std::map<std::uint64_t, int> seen;
    for (const ModifierRow &row : modifierRows)
        ++seen[row.flags];
    EXPECT_EQ(seen.size(), 16U);
}

TEST(PasteFlow, vStartsTheGestureWithControlButNotCommandOrWithCommandAndShift)
{
    for (const ModifierRow &row : modifierRows) {
        SCOPED_TRACE(nameOf(row.flags) + "V");
        EXPECT_EQ(decide(keyDown(keys::v, row.flags), false),
                  row.startsPasteFlow ? startsPasteFlow : untouched);
        EXPECT_EQ(decide(keyDown(keys::v, row.flags), true),
                  row.startsPasteFlow ? startsPasteFlow : endsGesture);
    }
}

TEST(PasteFlow, cSavesWithControlButNotCommandAndLeavesTheWaitingAlone)
{
    for (const ModifierRow &row : modifierRows) {
        SCOPED_TRACE(nameOf(row.flags) + "C");
        EXPECT_EQ(decide(keyDown(keys::c, row.flags), false), row.savesToSlot ? savesToSlot : untouched);
        EXPECT_EQ(decide(keyDown(keys::c, row.flags), true), row.savesToSlot ? savesToSlot : endsGesture);
    }
}

TEST(PasteFlow, sTogglesThePanelWithCommandAndOptionAndLeavesTheWaitingAlone)
{
    for (const ModifierRow &row : modifierRows) {
        SCOPED_TRACE(nameOf(row.flags) + "S");
        EXPECT_EQ(decide(keyDown(keys::s, row.flags), false), row.togglesPanel ? togglesPanel : untouched);
        EXPECT_EQ(decide(keyDown(keys::s, row.flags), true), row.togglesPanel ? togglesPanel : endsGesture);
    }
}

TEST(PasteFlow, anAwaitedDigitPastesItsSlotWhateverModifiersAreHeld)
{
    const std::map<std::int64_t, int> digits = {{18, 1}, {19, 2}, {20, 3}, {21, 4}, {23, 5},
                                                {22, 6}, {26, 7}, {28, 8}, {25, 9}};
    for (const auto &[keyCode, digit] : digits) {
        for (const ModifierRow &row : modifierRows) {
            SCOPED_TRACE(nameOf(row.flags) + std::to_string(digit));
            EXPECT_EQ(decide(keyDown(keyCode, row.flags), true), pastes(digit));
        }
    }
}

TEST(PasteFlow, aDigitThatNobodyAwaitsIsTyped)
{
    for (const std::int64_t keyCode : keys::digits) {
        for (const ModifierRow &row : modifierRows)
            EXPECT_EQ(decide(keyDown(keyCode, row.flags), false), untouched) << nameOf(row.flags) << keyCode;
    }
}

TEST(PasteFlow, anyOtherKeyEndsTheGestureAndReachesTheApplication)
{
    for (const std::int64_t keyCode :
         {digitZero, keypadThree, letterA, std::int64_t{24}, std::int64_t{27}, keys::other}) {
        SCOPED_TRACE(keyCode);
        EXPECT_EQ(decide(keyDown(keyCode), true), endsGesture);
        EXPECT_EQ(decide(keyDown(keyCode), false), untouched);
    }
}

TEST(PasteFlow, onlyNineKeyCodesAreDigits)
{
    std::vector<int> digits;
    for (std::int64_t keyCode = -1; keyCode < 256; ++keyCode) {
        if (const auto digit = digitForKeyCode(keyCode))
            digits.push_back(*digit);
    }
    // In the order of the codes: 22 types 6 and 23 types 5, 25 types 9, 26 types 7, 28 types 8.
    EXPECT_THAT(digits, testing::ElementsAre(1, 2, 3, 4, 6, 5, 9, 7, 8));
}

TEST(PasteFlow, everyEventThatIsNoKeyDownPassesThrough)
{
    // Key-up, modifier change, and the notices that a tap was disabled by a time-out or by the user.
    for (const std::uint32_t type : {0U, 1U, 11U, 12U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        SCOPED_TRACE(type);
        for (const bool waiting : {false, true}) {
            EXPECT_EQ(decide({.type = type, .keyCode = keys::v, .flags = keys::control}, waiting), untouched);
            EXPECT_EQ(decide({.type = type, .keyCode = keys::digits[2], .flags = none}, waiting), untouched);
            EXPECT_EQ(decide({.type = type, .keyCode = letterA, .flags = none}, waiting), untouched);
        }
    }
}

TEST(PasteFlow, flagsOutsideTheFourModifiersDoNotMatter)
{
    const std::uint64_t capsLockFnAndSides = 0x10000 | 0x800000 | 0x200000 | 0x100 | 0x1;
    EXPECT_EQ(decide(keyDown(keys::v, keys::control | capsLockFnAndSides), false), startsPasteFlow);
    EXPECT_EQ(decide(keyDown(keys::c, keys::control | capsLockFnAndSides), false), savesToSlot);
    EXPECT_EQ(decide(keyDown(keys::s, keys::command | keys::option | capsLockFnAndSides), false),
              togglesPanel);
    EXPECT_EQ(decide(keyDown(keys::v, capsLockFnAndSides), false), untouched);
}

TEST(PasteFlow, theSynthesizedChordsMatchNoGesture)
{
    EXPECT_EQ(decide(keyDown(keys::c, keys::command), false), untouched);
    EXPECT_EQ(decide(keyDown(keys::v, keys::command), false), untouched);
}

TEST(PasteFlow, theSlotsAreACycleOfNine)
{
    std::vector<int> visited;
    int slotIndex = 1;
    for (int step = 0; step < 9; ++step)
        visited.push_back(slotIndex = slotIndexAfter(slotIndex));
    EXPECT_THAT(visited, testing::ElementsAre(2, 3, 4, 5, 6, 7, 8, 9, 1));
}

} // namespace stavelin::services
