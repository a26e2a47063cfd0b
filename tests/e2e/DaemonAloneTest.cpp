#include "e2e/DesktopTest.h"

#include <csignal>
#include <string>

namespace stavelin::e2e {

// The daemon by itself, started with one variable: it finds its user's session through its parent.
class DaemonAlone : public DesktopTest
{
protected:
    void SetUp() override { desktop.startDaemonAlone(); }
};

TEST_F(DaemonAlone, pasteSlotPutsTheTextOnTheClipboardOfItsParentsDisplay)
{
    desktop.daemon().setSlot(4, "through the clipboard");
    desktop.daemon().pasteSlot(4);
    Mousepad &mousepad = desktop.openMousepad();
    desktop.press("Ctrl+V");
    desktop.expectText(mousepad, "through the clipboard");
}

TEST_F(DaemonAlone, aPasteLeavesTheSelectionOfAnApplicationAlone)
{
    desktop.daemon().setSlot(4, "replacement");
    Mousepad &mousepad = desktop.openMousepad("selected before the paste");
    desktop.selectAll(mousepad);
    desktop.daemon().pasteSlot(4);
    desktop.press("Ctrl+V");
    desktop.expectText(mousepad, "replacement");
}

TEST_F(DaemonAlone, aTextOfAMegabyteArrivesWhole)
{
    std::string text;
    while (text.size() < 1'000'000) {
        text += "line " + std::to_string(text.size()) + "\n";
    }
    desktop.daemon().setSlot(1, text);
    desktop.daemon().pasteSlot(1);
    Witness &witness = desktop.openWitness();
    desktop.press("Ctrl+V");
    desktop.expect("the whole text is there", [&] { return witness.text() == text; });
}

TEST_F(DaemonAlone, whatWasAcknowledgedIsThereAfterTheDaemonWasKilled)
{
    desktop.daemon().setSlot(1, "acknowledged");
    desktop.endDaemon(SIGKILL);
    desktop.startDaemonAlone();
    desktop.expectSlot(1, "acknowledged");
}

} // namespace stavelin::e2e
