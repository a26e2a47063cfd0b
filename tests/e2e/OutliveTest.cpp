#include "e2e/DesktopTest.h"
#include "e2e/Wait.h"

#include <chrono>
#include <csignal>
#include <functional>
#include <string>

namespace stavelin::e2e {

// The daemon keeps the slots and goes on serving, however the application ends.
class Outlive : public DesktopTest
{
protected:
    /// Saves a text, ends the application in this way, and then expects the same daemon to serve the same
    /// slots, to this client and to the application started again.
    void expectDaemonToOutlive(const std::function<void()> &endOfStavelin)
    {
        desktop.startStavelin();
        desktop.copyIn(desktop.openMousepad(), "kept");
        desktop.expectSlot(1, "kept");
        const pid_t daemon = desktop.daemonProcess();

        endOfStavelin();
        ASSERT_TRUE(desktop.stavelin().waitForEnd(std::chrono::seconds(10)));
        desktop.daemon().setSlot(2, "set meanwhile");
        EXPECT_EQ(desktop.daemonProcess(), daemon);

        desktop.startStavelin();
        EXPECT_EQ(desktop.daemonProcess(), daemon);
        EXPECT_EQ(desktop.daemon().slots().at(0), "kept");
        Witness &witness = desktop.openWitness();
        desktop.press("Super+V");
        desktop.press("1");
        desktop.expectText(witness, "kept");
        desktop.copyIn(witness, "a third");
        desktop.expectSlot(3, "a third");
        EXPECT_EQ(desktop.daemon().slots().at(1), "set meanwhile");
    }

    Picture panelPicture()
    {
        const auto panel = desktop.panel();
        return panel ? desktop.screen().capture(*panel) : Picture{};
    }

    /// How the panel looks once it has painted itself and nothing moves in it any more.
    Picture settledPanelPicture()
    {
        constexpr std::chrono::milliseconds stillness{500};
        Picture last;
        desktop.expect("the panel stands still", [&] {
            last = panelPicture();
            return last.colourCount() > 1 && !waitUntil([&] { return panelPicture() != last; }, stillness);
        });
        return last;
    }
};

TEST_F(Outlive, quittingTheApplicationLeavesTheDaemonServing)
{
    expectDaemonToOutlive([this] { desktop.stavelin().signal(SIGTERM); });
}

TEST_F(Outlive, anInterruptOfTheApplicationsProcessGroupLeavesTheDaemonServing)
{
    expectDaemonToOutlive([this] { desktop.stavelin().signalGroup(SIGINT); });
}

TEST_F(Outlive, killingTheApplicationLeavesTheDaemonServing)
{
    expectDaemonToOutlive([this] { desktop.stavelin().signal(SIGKILL); });
}

TEST_F(Outlive, aRestartedApplicationShowsTheSameSlots)
{
    desktop.startStavelin();
    const Picture empty = settledPanelPicture();
    desktop.daemon().setSlot(1, "shown before and after");
    desktop.daemon().setSlot(9, "the last one");
    desktop.expect("the panel shows the texts", [&] { return panelPicture() != empty; });
    const Picture before = settledPanelPicture();

    desktop.stavelin().signal(SIGKILL);
    ASSERT_TRUE(desktop.stavelin().waitForEnd(std::chrono::seconds(10)));
    desktop.startStavelin();
    desktop.expect("the panel looks as before", [&] { return panelPicture() == before; });
}

TEST_F(Outlive, theSlotsAreThereAgainWhenTheDaemonIsStartedAnew)
{
    desktop.startStavelin();
    desktop.copyIn(desktop.openMousepad(), "durable");
    desktop.expectSlot(1, "durable");
    desktop.stavelin().end();
    desktop.endDaemon(SIGKILL);

    desktop.startStavelin();
    desktop.expectSlot(1, "durable");
}

} // namespace stavelin::e2e
