#include "platform/x11/X11Chords.h"
#include "platform/KeyVocabulary.h"
#include "services/PasteFlow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <set>
#include <string>

namespace stavelin::platform::x11 {

namespace {

/// What the gesture machine itself swallows.
class MachineClient final : public TapClient
{
public:
    TapVerdict handle(const TapEvent &event) override { return services::decide(event, false).verdict; }
    [[nodiscard]] bool isWaitingForDigit() const override { return false; }
    [[nodiscard]] bool isGesture(const TapEvent &event) const override
    {
        return services::decide(event, false).verdict == TapVerdict::swallow;
    }
};

X11Keyboard ordinaryKeyboard()
{
    X11Keyboard keyboard;
    keyboard.alt = 8;
    keyboard.numLock = 16;
    keyboard.super = 64;
    return keyboard;
}

struct Case
{
    const char *name;
    ModifierRoles roles;
    std::set<std::string> mainChords;
    std::set<std::string> extraChords;

    friend void PrintTo(const Case &row, std::ostream *out) { *out << row.name; }
};

class X11ChordsTest : public testing::TestWithParam<Case>
{};

TEST_P(X11ChordsTest, everyCombinationThatTheGesturesSwallowIsGrabbedAndNoOther)
{
    const X11Keyboard keyboard = ordinaryKeyboard();
    std::set<std::string> mainChords;
    std::set<std::string> extraChords;
    for (const X11Chord &chord : chordsOf(keyboard, MachineClient(), GetParam().roles))
        (chord.isMain ? mainChords : extraChords).insert(nameOf(chord, keyboard));
    EXPECT_EQ(mainChords, GetParam().mainChords);
    EXPECT_EQ(extraChords, GetParam().extraChords);
}

INSTANTIATE_TEST_SUITE_P(
    Roles, X11ChordsTest,
    testing::Values(
        Case{"byUse",
             ModifierRoles::byUse,
             {"Super+V", "Super+C", "Ctrl+Shift+V", "Ctrl+Alt+S"},
             {"Super+Shift+V", "Super+Alt+V", "Super+Alt+Shift+V", "Super+Shift+C", "Super+Alt+C",
              "Super+Alt+Shift+C", "Ctrl+Alt+Shift+V", "Super+Ctrl+Shift+V", "Super+Ctrl+Alt+Shift+V",
              "Ctrl+Alt+Shift+S", "Super+Ctrl+Alt+S", "Super+Ctrl+Alt+Shift+S"}},
        Case{"literal",
             ModifierRoles::literal,
             {"Ctrl+V", "Ctrl+C", "Super+Shift+V", "Super+Alt+S"},
             {"Ctrl+Shift+V", "Ctrl+Alt+V", "Ctrl+Alt+Shift+V", "Ctrl+Shift+C", "Ctrl+Alt+C",
              "Ctrl+Alt+Shift+C", "Super+Alt+Shift+V", "Super+Ctrl+Shift+V", "Super+Ctrl+Alt+Shift+V",
              "Super+Alt+Shift+S", "Super+Ctrl+Alt+S", "Super+Ctrl+Alt+Shift+S"}}),
    [](const auto &test) { return test.param.name; });

TEST(X11Chords, aKeyboardWithoutSuperHasTheChordsThatNeedNone)
{
    X11Keyboard keyboard = ordinaryKeyboard();
    keyboard.super = 0;
    std::set<std::string> names;
    for (const X11Chord &chord : chordsOf(keyboard, MachineClient(), ModifierRoles::byUse))
        names.insert(nameOf(chord, keyboard));
    EXPECT_EQ(names,
              (std::set<std::string>{"Ctrl+Shift+V", "Ctrl+Alt+Shift+V", "Ctrl+Alt+S", "Ctrl+Alt+Shift+S"}));
}

TEST(X11Keyboard, lockVariantsAreAllCombinationsOfTheLocksThatExist)
{
    X11Keyboard keyboard = ordinaryKeyboard();
    EXPECT_EQ(keyboard.lockVariants(), (std::vector<std::uint16_t>{0, 2, 16, 18}));
    keyboard.scrollLock = 32;
    EXPECT_EQ(keyboard.lockVariants().size(), 8U);
    keyboard.numLock = keyboard.scrollLock = 0;
    EXPECT_EQ(keyboard.lockVariants(), (std::vector<std::uint16_t>{0, 2}));
}

TEST(X11Keyboard, keysAndModifiersAreTranslatedByTheirRoles)
{
    const X11Keyboard keyboard = ordinaryKeyboard();
    const std::map<int, std::int64_t> codes{{55, keys::v}, {54, keys::c},     {39, keys::s},
                                            {10, 18},      {14, 23},          {15, 22},
                                            {18, 25},      {19, keys::other}, {89, keys::other}};
    for (const auto &[keycode, code] : codes)
        EXPECT_EQ(keyboard.keyDown(static_cast<std::uint8_t>(keycode), 0, ModifierRoles::byUse).keyCode, code)
            << keycode;
    const auto flags = [&](std::uint16_t modifiers, ModifierRoles roles) {
        return keyboard.keyDown(55, modifiers, roles).flags;
    };
    EXPECT_EQ(flags(4, ModifierRoles::byUse), keys::command);
    EXPECT_EQ(flags(64, ModifierRoles::byUse), keys::control);
    EXPECT_EQ(flags(4, ModifierRoles::literal), keys::control);
    EXPECT_EQ(flags(64, ModifierRoles::literal), keys::command);
    EXPECT_EQ(flags(1 | 8, ModifierRoles::literal), keys::shift | keys::option);
    EXPECT_EQ(flags(2 | 16, ModifierRoles::byUse), 0U);
}

} // namespace

} // namespace stavelin::platform::x11
