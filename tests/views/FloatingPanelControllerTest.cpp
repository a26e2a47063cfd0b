#include "views/FloatingPanelController.h"

#include "views/PanelDesk.h"
#include "views/PanelFrame.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQuickView>
#include <QScreen>

namespace stavelin::testkit {

namespace {

QRect middleOfTheScreen()
{
    return views::centredFrame(QGuiApplication::primaryScreen()->availableGeometry());
}

/// What the user does: the window manager tells the window its new frame.
void drag(QQuickView &panel, const QRect &frame)
{
    panel.setGeometry(frame);
    QCoreApplication::processEvents();
}

} // namespace

TEST(FloatingPanelController, thereIsNoPanelBeforeTheFirstShowing)
{
    const PanelDesk desk;
    EXPECT_EQ(desk.controller->panel(), nullptr);
}

TEST(FloatingPanelController, thePanelIsFirstShownInTheMiddleOfTheScreen)
{
    const PanelDesk desk;
    desk.controller->showPanel();
    EXPECT_TRUE(desk.controller->panel()->isVisible());
    EXPECT_EQ(desk.controller->panel()->geometry(), middleOfTheScreen());
    EXPECT_EQ(desk.controller->panel()->size(), QSize(320, 480));
}

TEST(FloatingPanelController, thePanelIsAUtilityWindowAboveOthersThatTakesNoFocusWhenItAppears)
{
    const PanelDesk desk;
    desk.controller->showPanel();
    const QQuickView &panel = *desk.controller->panel();
    EXPECT_EQ(panel.type(), Qt::Tool);
    EXPECT_TRUE(panel.flags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(panel.flags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(panel.flags().testFlag(Qt::WindowMinimizeButtonHint)); // nobody would find it again
    EXPECT_FALSE(panel.flags().testFlag(Qt::WindowDoesNotAcceptFocus)); // a click still gives it
    EXPECT_TRUE(panel.property("_q_showWithoutActivating").toBool());
    EXPECT_EQ(panel.title(), QStringLiteral("Stavelin"));
    EXPECT_EQ(panel.minimumSize(), QSize(200, 150));
    EXPECT_EQ(panel.maximumSize(), QSize(600, 800));
}

TEST(FloatingPanelController, togglingWithoutAPanelShowsIt)
{
    const PanelDesk desk;
    desk.controller->togglePanel();
    ASSERT_NE(desk.controller->panel(), nullptr);
    EXPECT_TRUE(desk.controller->panel()->isVisible());
}

TEST(FloatingPanelController, togglingHidesThePanelAndShowsTheSameOneAgain)
{
    const PanelDesk desk;
    desk.controller->togglePanel();
    const QQuickView *panel = desk.controller->panel();
    desk.controller->togglePanel();
    EXPECT_FALSE(panel->isVisible());
    desk.controller->togglePanel();
    EXPECT_EQ(desk.controller->panel(), panel);
    EXPECT_TRUE(panel->isVisible());
}

TEST(FloatingPanelController, bringingForwardShowsTheSamePanelAgain)
{
    const PanelDesk desk;
    desk.controller->bringForward();
    const QQuickView *panel = desk.controller->panel();
    desk.controller->togglePanel();
    desk.controller->bringForward();
    desk.controller->bringForward();
    EXPECT_EQ(desk.controller->panel(), panel);
    EXPECT_TRUE(panel->isVisible());
}

TEST(FloatingPanelController, closingHidesThePanelAndKeepsIt)
{
    const PanelDesk desk;
    desk.controller->showPanel();
    QQuickView *panel = desk.controller->panel();
    panel->close();
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(desk.controller->panel(), panel);
    desk.controller->togglePanel();
    EXPECT_TRUE(panel->isVisible());
}

TEST(FloatingPanelController, minimisingHidesThePanelAndTheNextToggleShowsIt)
{
    const PanelDesk desk;
    desk.controller->showPanel();
    desk.controller->panel()->setWindowState(Qt::WindowMinimized);
    EXPECT_FALSE(desk.controller->panel()->isVisible());
    desk.controller->togglePanel();
    EXPECT_TRUE(desk.controller->panel()->isVisible());
    EXPECT_EQ(desk.controller->panel()->windowState(), Qt::WindowNoState);
}

TEST(FloatingPanelController, everyShowingIsPreparedWhileTheWindowIsHidden)
{
    PanelDesk desk;
    std::vector<bool> wasVisible;
    desk.floatingWindow.onPrepare = [&] { wasVisible.push_back(desk.controller->panel()->isVisible()); };
    for (int press = 0; press < 5; ++press)
        desk.controller->togglePanel();
    EXPECT_EQ(wasVisible, (std::vector<bool>{false, false, false}));
    EXPECT_EQ(desk.floatingWindow.prepared.back(), desk.controller->panel()->winId());
}

TEST(FloatingPanelController, theFrameIsRestoredInALaterRun)
{
    PanelDesk desk;
    desk.controller->showPanel();
    drag(*desk.controller->panel(), {30, 40, 250, 300});
    desk.restart();
    desk.controller->showPanel();
    EXPECT_EQ(desk.controller->panel()->geometry(), QRect(30, 40, 250, 300));
}

TEST(FloatingPanelController, theFrameIsKeptOverHidingAndShowing)
{
    const PanelDesk desk;
    desk.controller->showPanel();
    drag(*desk.controller->panel(), {30, 40, 250, 300});
    desk.controller->togglePanel();
    desk.controller->panel()->setPosition(7, 7); // some window managers move what they withdraw
    desk.controller->togglePanel();
    EXPECT_EQ(desk.controller->panel()->geometry(), QRect(30, 40, 250, 300));
}

TEST(FloatingPanelController, aFrameIsSavedWhenItHasComeToRest)
{
    PanelDesk desk;
    desk.controller->showPanel();
    for (int step = 0; step <= 20; ++step) {
        drag(*desk.controller->panel(), {step, 40, 250, 300});
        desk.clock.advance(std::chrono::milliseconds(100));
        EXPECT_EQ(desk.userDefaults.string("StavelinMainPanel"), "");
    }
    desk.clock.advance(std::chrono::milliseconds(200));
    EXPECT_EQ(desk.userDefaults.string("StavelinMainPanel"), "20 40 250 300");
}

TEST(FloatingPanelController, hidingSavesTheFrameAtOnce)
{
    const PanelDesk desk;
    desk.controller->showPanel();
    drag(*desk.controller->panel(), {30, 40, 250, 300});
    desk.controller->togglePanel();
    EXPECT_EQ(desk.userDefaults.string("StavelinMainPanel"), "30 40 250 300");
}

TEST(FloatingPanelController, aFrameThatWasNeverMovedIsNotSaved)
{
    PanelDesk desk;
    desk.controller->showPanel();
    QCoreApplication::processEvents();
    desk.controller->togglePanel();
    desk.restart();
    EXPECT_EQ(desk.userDefaults.string("StavelinMainPanel"), "");
}

TEST(FloatingPanelController, aDamagedSavedFrameIsTheMiddleOfTheScreen)
{
    PanelDesk desk;
    desk.userDefaults.setString("StavelinMainPanel", "somewhere");
    desk.controller->showPanel();
    EXPECT_EQ(desk.controller->panel()->geometry(), middleOfTheScreen());
}

TEST(FloatingPanelController, aSavedFrameOffTheScreenIsBroughtBack)
{
    PanelDesk desk;
    desk.userDefaults.setString("StavelinMainPanel", "99999 99999 100 400");
    desk.controller->showPanel();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QRect frame = desk.controller->panel()->geometry();
    EXPECT_TRUE(screen.contains(frame)) << views::encodeFrame(frame);
    EXPECT_EQ(frame.size(), QSize(200, 400));
}

} // namespace stavelin::testkit
