#include "e2e/DesktopTest.h"

#include <string>
#include <vector>

namespace stavelin::e2e {

// What the other end-to-end tests stand on, without Stavelin.
class VirtualDesktopItself : public DesktopTest
{};

TEST_F(VirtualDesktopItself, whatIsTypedArrivesInEveryApplication)
{
    const std::string text = "Hello, World! (3 < 4) ~/x_y";
    Witness &witness = desktop.openWitness();
    desktop.type(text);
    desktop.expectText(witness, text);

    Mousepad &mousepad = desktop.openMousepad();
    desktop.type(text);
    desktop.expectText(mousepad, text);

    Xterm &xterm = desktop.openXterm();
    desktop.type(text + "\n");
    desktop.expectText(xterm, text + "\n");
    desktop.expectNoKeyDown();
}

TEST_F(VirtualDesktopItself, copyAndPasteWorkBetweenApplications)
{
    Mousepad &mousepad = desktop.openMousepad("from mousepad");
    desktop.copyAll(mousepad);
    Witness &witness = desktop.openWitness("replaced");
    desktop.selectAll(witness);
    desktop.press("Ctrl+V");
    desktop.expectText(witness, "from mousepad");

    desktop.type(" and back");
    desktop.copyAll(witness);
    desktop.selectAll(mousepad);
    desktop.press("Ctrl+V");
    desktop.expectText(mousepad, "from mousepad and back");
}

TEST_F(VirtualDesktopItself, aHeldKeyIsSeenUntilItIsReleased)
{
    desktop.openWitness();
    desktop.hold("Super");
    desktop.expect("Super is down", [&] { return desktop.screen().heldKeys().size() == 1; });
    desktop.release("Super");
    desktop.expectNoKeyDown();
}

TEST_F(VirtualDesktopItself, theKeysOfAnApplicationAreReportedInOrder)
{
    Witness &witness = desktop.openWitness();
    desktop.press("x");
    desktop.press("Ctrl+Shift+V");
    desktop.press("Home");
    desktop.expect("the keys came", [&] {
        return witness.keys() == std::vector<std::string>{"Key_X", "Key_V", "Key_Home"};
    });
}

} // namespace stavelin::e2e
