#include "views/PanelContent.h"

#include "views/PanelDesk.h"

#include <gtest/gtest.h>

namespace stavelin::testkit {

TEST(PanelContent, theSlotsOfTheDaemonAreTheRows)
{
    PanelDesk desk;
    desk.connectWith({"one", "", "three"});

    const views::SlotListModel &rows = *desk.content.slotList();
    ASSERT_EQ(rows.rowCount(), 3);
    EXPECT_EQ(rows.data(rows.index(2), views::SlotListModel::PreviewRole).toString(),
              QStringLiteral("three"));

    desk.push({"one", "two", "three"});
    EXPECT_EQ(rows.data(rows.index(1), views::SlotListModel::PreviewRole).toString(), QStringLiteral("two"));
}

TEST(PanelContent, theBoardIsEmptyUntilASlotHoldsSomething)
{
    PanelDesk desk;
    EXPECT_TRUE(desk.content.isBoardEmpty());
    desk.connectWith({"", "", ""});
    EXPECT_TRUE(desk.content.isBoardEmpty());
    desk.push({"", " ", ""});
    EXPECT_FALSE(desk.content.isBoardEmpty());
    desk.push({"", "", ""});
    EXPECT_TRUE(desk.content.isBoardEmpty());
}

TEST(PanelContent, aDaemonThatIsMissingForTwoSecondsIsWaitedFor)
{
    PanelDesk desk;
    desk.connector.connect();
    desk.clock.advance(std::chrono::milliseconds(1999));
    EXPECT_FALSE(desk.content.isWaitingForDaemon());
    desk.clock.advance(std::chrono::milliseconds(1));
    EXPECT_TRUE(desk.content.isWaitingForDaemon());

    desk.push({""});
    EXPECT_TRUE(desk.content.isConnected());
    EXPECT_FALSE(desk.content.isWaitingForDaemon());
}

TEST(PanelContent, attemptsInBetweenDoNotStartTheTwoSecondsAnew)
{
    PanelDesk desk;
    desk.connectWith({""});
    desk.loseConnection();
    EXPECT_FALSE(desk.content.isConnected());
    desk.clock.advance(std::chrono::milliseconds(1500)); // the connector tries again after one second
    ASSERT_EQ(desk.sockets.connections.size(), 2U);
    desk.loseConnection();
    EXPECT_FALSE(desk.content.isWaitingForDaemon());
    desk.clock.advance(std::chrono::milliseconds(500));
    EXPECT_TRUE(desk.content.isWaitingForDaemon());
}

TEST(PanelContent, aConnectionThatComesBackAtOnceIsNoNews)
{
    PanelDesk desk;
    desk.connectWith({""});
    desk.loseConnection();
    desk.clock.advance(std::chrono::seconds(1));
    desk.push({""});
    desk.clock.advance(std::chrono::seconds(5));
    EXPECT_FALSE(desk.content.isWaitingForDaemon());
}

TEST(PanelContent, theShortcutsAreCalledByTheKeysOfTheChosenMapping)
{
    PanelDesk desk;
    EXPECT_EQ(desk.content.saveKeys(), QStringLiteral("Super + C"));
    const views::PanelContent literal(desk.connector, desk.clock, platform::ModifierRoles::literal);
    EXPECT_EQ(literal.saveKeys(), QStringLiteral("Ctrl + C"));
    EXPECT_EQ(literal.pasteKeys(), QStringLiteral("Ctrl + V"));
    EXPECT_EQ(literal.toggleKeys(), QStringLiteral("Alt + Super + S"));
}

} // namespace stavelin::testkit
