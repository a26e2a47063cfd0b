#include "e2e/DesktopTest.h"
#include "e2e/Wait.h"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace stavelin::e2e {

// The main job with real applications: save what is selected into a slot, paste any slot anywhere.
class MainJob : public DesktopTest
{
protected:
    void SetUp() override { desktop.startStavelin(); }

    void fillSlots(int count)
    {
        for (int index = 1; index <= count; ++index) {
            desktop.daemon().setSlot(index, textOf(index));
        }
    }

    static std::string textOf(int index) { return "text of slot " + std::to_string(index); }
};

TEST_F(MainJob, superCInMousepadSavesTheSelectionIntoTheFirstEmptySlot)
{
    Mousepad &mousepad = desktop.openMousepad("a line from mousepad");
    desktop.selectAll(mousepad);
    desktop.press("Super+C");
    desktop.expectSlot(1, "a line from mousepad");
    desktop.expectNoKeyDown();
}

TEST_F(MainJob, superCFillsAGapBetweenFilledSlots)
{
    desktop.daemon().setSlot(1, "one");
    desktop.daemon().setSlot(3, "three");
    desktop.copyIn(desktop.openMousepad(), "two");
    desktop.expectSlot(2, "two");
    EXPECT_EQ(desktop.daemon().slots().at(2), "three");
}

TEST_F(MainJob, nineCopiesFillNineSlotsAndTheNextOnesBeginAgain)
{
    Mousepad &mousepad = desktop.openMousepad();
    for (int index = 1; index <= 9; ++index) {
        desktop.copyIn(mousepad, "copy " + std::to_string(index));
        desktop.expectSlot(index, "copy " + std::to_string(index));
    }
    desktop.copyIn(mousepad, "copy 10");
    desktop.expectSlot(1, "copy 10");
    desktop.copyIn(mousepad, "copy 11");
    desktop.expectSlot(2, "copy 11");
    EXPECT_EQ(desktop.daemon().slots().at(8), "copy 9");
}

TEST_F(MainJob, superVThenThreeReplacesTheSelectionInMousepad)
{
    fillSlots(9);
    Mousepad &mousepad = desktop.openMousepad("to be replaced");
    desktop.selectAll(mousepad);
    desktop.press("Super+V");
    desktop.press("3");
    desktop.expectText(mousepad, textOf(3));
    desktop.expectNoKeyDown();
}

TEST_F(MainJob, superVThenThreePastesInXterm)
{
    fillSlots(3);
    Xterm &xterm = desktop.openXterm();
    desktop.press("Super+V");
    desktop.press("3");
    // Nothing tells when the terminal has drawn it: end the line until one with the text was entered.
    desktop.expect("the text is entered in xterm", [&] {
        desktop.press("Return");
        return waitUntil([&] { return xterm.text().contains(textOf(3) + "\n"); }, std::chrono::seconds(1));
    });
    EXPECT_TRUE(xterm.interruptions().empty());
    desktop.expectNoKeyDown();
}

TEST_F(MainJob, superVThenThreeReplacesTheSelectionInAQtProgram)
{
    fillSlots(3);
    Witness &witness = desktop.openWitness("to be replaced");
    desktop.selectAll(witness);
    desktop.press("Super+V");
    desktop.press("3");
    desktop.expectText(witness, textOf(3));
    desktop.expectNoKeyDown();
}

TEST_F(MainJob, ctrlShiftVThenThreePastesInMousepadToo)
{
    fillSlots(3);
    Mousepad &mousepad = desktop.openMousepad();
    desktop.press("Ctrl+Shift+V");
    desktop.press("3");
    desktop.expectText(mousepad, textOf(3));
    desktop.expectNoKeyDown();
}

TEST_F(MainJob, aTextOfSeveralLinesAndScriptsArrivesUnchanged)
{
    const std::string text = "Gr\u00fc\u00dfe,\n\t\u4eca\u65e5\u306f \U0001F44B\n";
    desktop.daemon().setSlot(5, text);
    Witness &witness = desktop.openWitness();
    desktop.press("Super+V");
    desktop.press("5");
    desktop.expectText(witness, text);
    Mousepad &mousepad = desktop.openMousepad();
    desktop.press("Super+V");
    desktop.press("5");
    desktop.expectText(mousepad, text);
    desktop.selectAll(mousepad);
    desktop.press("Super+C");
    desktop.expectSlot(1, text);
}

TEST_F(MainJob, everyDigitPastesItsSlot)
{
    fillSlots(9);
    Witness &witness = desktop.openWitness();
    std::string expected;
    for (int index = 1; index <= 9; ++index) {
        desktop.press("Super+V");
        desktop.press(std::to_string(index));
        expected += textOf(index);
        desktop.expectText(witness, expected);
    }
}

TEST_F(MainJob, superVThenAnotherKeyTypesThatKey)
{
    fillSlots(3);
    Witness &witness = desktop.openWitness();
    desktop.press("Super+V");
    desktop.press("x");
    desktop.press("3");
    desktop.expectText(witness, "x3");
    EXPECT_EQ(witness.keys(), (std::vector<std::string>{"Key_X", "Key_3"}));
}

TEST_F(MainJob, twoSecondsAfterSuperVADigitIsTyped)
{
    fillSlots(3);
    Witness &witness = desktop.openWitness();
    desktop.press("Super+V");
    // The time that passes is what is tried here.
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    desktop.press("3");
    desktop.expectText(witness, "3");
}

TEST_F(MainJob, withSuperHeldThroughoutTwoSlotsArePasted)
{
    fillSlots(2);
    Witness &witness = desktop.openWitness();
    desktop.hold("Super");
    desktop.press("V");
    desktop.press("1");
    desktop.expectText(witness, textOf(1));
    desktop.press("V");
    desktop.press("2");
    desktop.expectText(witness, textOf(1) + textOf(2));
    desktop.release("Super");
    desktop.expectNoKeyDown();
    desktop.type("!");
    desktop.expectText(witness, textOf(1) + textOf(2) + "!");
}

TEST_F(MainJob, pastingAnEmptySlotRingsTheBellAndTypesNothing)
{
    fillSlots(3);
    Witness &witness = desktop.openWitness();
    const int before = desktop.screen().bellCount();
    desktop.press("Super+V");
    desktop.press("7");
    desktop.expect("the bell rings", [&] { return desktop.screen().bellCount() > before; });
    desktop.type("after");
    desktop.expectText(witness, "after");
    EXPECT_EQ(witness.keys().size(), 5U);
}

TEST_F(MainJob, ctrlCAndCtrlVDoWhatTheyAlwaysDid)
{
    Mousepad &mousepad = desktop.openMousepad("only copied");
    desktop.copyAll(mousepad);
    Witness &witness = desktop.openWitness();
    desktop.press("Ctrl+V");
    desktop.expectText(witness, "only copied");
    desktop.press("3");
    desktop.expectText(witness, "only copied3");

    // Had Ctrl+C saved anything, it would be in the first slot.
    desktop.copyIn(witness, "saved");
    desktop.expectSlot(1, "saved");
}

TEST_F(MainJob, ctrlCInXtermInterrupts)
{
    Xterm &xterm = desktop.openXterm();
    desktop.press("Ctrl+C");
    desktop.expectInterruption(xterm);
}

TEST_F(MainJob, ctrlShiftVInXtermBelongsToTheTerminal)
{
    fillSlots(3);
    Xterm &xterm = desktop.openXterm();
    desktop.press("Ctrl+Shift+V");
    // The terminal takes it for Ctrl+V, which says that the next key is to be taken as it is.
    desktop.type("3\n");
    desktop.expectText(xterm, "3\n");
}

TEST_F(MainJob, superCInXtermSavesTheSelectionAndInterruptsNothing)
{
    Xterm &xterm = desktop.openXterm();
    desktop.type("chosen\n");
    desktop.expectText(xterm, "chosen\n");
    // The line may not be drawn yet when it is clicked for the first time.
    desktop.expect("the chosen word is saved", [&] {
        desktop.doubleClick(xterm, 20, 8);
        desktop.press("Super+C");
        return desktop.daemon().waitForSlots([](const auto &slots) { return slots.at(0) == "chosen"; },
                                             std::chrono::seconds(1));
    });
    desktop.type("next\n");
    desktop.expectText(xterm, "chosen\nnext\n");
    EXPECT_TRUE(xterm.interruptions().empty());
}

TEST_F(MainJob, ctrlAltSHidesAndShowsThePanelWithoutTakingTheFocus)
{
    Witness &witness = desktop.openWitness();
    desktop.press("Ctrl+Alt+S");
    desktop.expectPanelShown(false);
    desktop.press("Ctrl+Alt+S");
    desktop.expectPanelShown(true);
    desktop.expectFocus(witness);
    desktop.type("still here");
    desktop.expectText(witness, "still here");
    desktop.expectNoKeyDown();
}

TEST_F(MainJob, aClickOnTheTrayIconHidesAndShowsThePanel)
{
    desktop.clickTrayIcon();
    desktop.expectPanelShown(false);
    desktop.clickTrayIcon();
    desktop.expectPanelShown(true);
}

TEST_F(MainJob, thePanelDoesNotTakeTheFocusWhenStavelinStarts)
{
    Witness &witness = desktop.openWitness();
    desktop.stavelin().end();
    desktop.startStavelin();
    desktop.expectFocus(witness);
    desktop.type("still here");
    desktop.expectText(witness, "still here");
}

TEST_F(MainJob, noKeyIsStuckAfterManyGestures)
{
    fillSlots(3);
    Witness &witness = desktop.openWitness();
    std::string expected;
    for (int round = 0; round < 5; ++round) {
        desktop.hold("Super");
        desktop.press("V");
        desktop.release("Super");
        desktop.press("2");
        expected += textOf(2);
        desktop.expectText(witness, expected);
        desktop.press("Ctrl+Shift+V");
        desktop.press("1");
        expected += textOf(1);
        desktop.expectText(witness, expected);
    }
    desktop.expectNoKeyDown();
    desktop.type("vV3");
    desktop.expectText(witness, expected + "vV3");
}

} // namespace stavelin::e2e
