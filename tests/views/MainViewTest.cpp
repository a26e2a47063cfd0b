#include "views/PanelDesk.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QPalette>
#include <QQuickItem>
#include <QQuickView>

#include <map>

namespace stavelin::testkit {

namespace {

const std::vector<std::string> nineEmpty(9);

/// The panel on the screen, read as assistive technology reads it: by role and name.
class ShownPanel
{
public:
    explicit ShownPanel(PanelDesk &desk) : m_desk(desk)
    {
        QAccessible::setActive(true);
        desk.controller->showPanel();
    }

    [[nodiscard]] std::vector<QString> names(QAccessible::Role role)
    {
        settle();
        std::vector<QString> found;
        collect(QAccessible::queryAccessibleInterface(m_desk.controller->panel()), role, found);
        return found;
    }
    [[nodiscard]] std::vector<QString> unnamed()
    {
        settle();
        std::vector<QString> found;
        collectUnnamed(QAccessible::queryAccessibleInterface(m_desk.controller->panel()), found);
        return found;
    }
    [[nodiscard]] QColor background()
    {
        return m_desk.controller->panel()->rootObject()->property("color").value<QColor>();
    }

    void settle()
    {
        for (int round = 0; round < 5; ++round)
            QCoreApplication::processEvents();
        m_desk.controller->panel()->grabWindow(); // lays the view out
    }

private:
    static bool isShown(QAccessibleInterface *interface) { return !interface->state().invisible; }
    static void collect(QAccessibleInterface *interface, QAccessible::Role role, std::vector<QString> &found)
    {
        if (!interface || !isShown(interface))
            return;
        if (interface->role() == role)
            found.push_back(interface->text(QAccessible::Name));
        for (int child = 0; child < interface->childCount(); ++child)
            collect(interface->child(child), role, found);
    }
    static void collectUnnamed(QAccessibleInterface *interface, std::vector<QString> &found)
    {
        if (!interface || !isShown(interface))
            return;
        if (interface->role() != QAccessible::Client && interface->text(QAccessible::Name).isEmpty())
            found.push_back(QString::number(interface->role(), 16));
        for (int child = 0; child < interface->childCount(); ++child)
            collectUnnamed(interface->child(child), found);
    }

    PanelDesk &m_desk;
};

} // namespace

TEST(MainView, itLoadsAndFollowsEveryStateWithoutAWarning)
{
    PanelDesk desk;
    ShownPanel panel(desk);
    panel.settle();
    desk.connectWith(nineEmpty);
    panel.settle();
    desk.push({"one", " ", "three"});
    panel.settle();
    desk.loseConnection();
    desk.clock.advance(std::chrono::milliseconds(900));
    desk.content.setShortcutProblem(QStringLiteral("a problem"));
    desk.controller->panel()->resize(200, 150);
    panel.settle();
    desk.restart();

    for (const std::string &line : desk.log.lines())
        EXPECT_FALSE(line.starts_with("Panel: ")) << line;
}

TEST(MainView, everySlotIsAListItemNamedByItsNumberAndText)
{
    PanelDesk desk;
    ShownPanel panel(desk);
    desk.connectWith({"git status", "", " \n "});
    EXPECT_EQ(panel.names(QAccessible::ListItem),
              (std::vector<QString>{QStringLiteral("Slot 1: git status"), QStringLiteral("Slot 2: Empty"),
                                    QStringLiteral("Slot 3: Only blanks")}));
}

TEST(MainView, allNineSlotsFitIntoThePanelAtItsFirstSize)
{
    PanelDesk desk;
    ShownPanel panel(desk);
    desk.connectWith(nineEmpty);
    EXPECT_EQ(panel.names(QAccessible::ListItem).size(), 9U);

    const auto *list =
        desk.controller->panel()->rootObject()->findChild<QQuickItem *>(QStringLiteral("slotList"));
    ASSERT_NE(list, nullptr);
    EXPECT_LE(list->property("contentHeight").toReal(), list->height());
}

TEST(MainView, nothingThatIsReadAloudIsWithoutAName)
{
    PanelDesk desk;
    ShownPanel panel(desk);
    desk.connectWith(nineEmpty);
    desk.content.setShortcutProblem(QStringLiteral("a problem"));
    EXPECT_EQ(panel.unnamed(), std::vector<QString>());
}

TEST(MainView, anEmptyBoardSaysHowToBegin)
{
    PanelDesk desk;
    ShownPanel panel(desk);
    const auto advice = [&panel] {
        std::size_t count = 0;
        for (const QString &name : panel.names(QAccessible::StaticText))
            count += name.contains(QStringLiteral("press Super + C: it goes into slot 1")) ? 1U : 0U;
        return count;
    };
    EXPECT_EQ(advice(), 0U); // what is on the board is not known yet
    desk.connectWith(nineEmpty);
    EXPECT_EQ(advice(), 1U);
    desk.push({"one"});
    EXPECT_EQ(advice(), 0U);
}

TEST(MainView, theFooterNamesTheShortcutsByTheirKeys)
{
    PanelDesk desk;
    ShownPanel panel(desk);
    desk.connectWith({"one"});
    EXPECT_EQ(panel.names(QAccessible::StaticText),
              (std::vector<QString>{QStringLiteral("Super + C: save what is selected"),
                                    QStringLiteral("Super + V, then 1-9: paste a slot"),
                                    QStringLiteral("Ctrl + Alt + S: show or hide this panel")}));
}

TEST(MainView, whatDoesNotWorkIsSaidAndNothingElse)
{
    PanelDesk desk;
    ShownPanel panel(desk);
    desk.connectWith({"one"});
    EXPECT_EQ(panel.names(QAccessible::AlertMessage), std::vector<QString>());

    desk.loseConnection();
    desk.clock.advance(std::chrono::seconds(2));
    desk.content.setShortcutProblem(QStringLiteral("Shortcuts are off: no keyboard"));
    EXPECT_EQ(panel.names(QAccessible::AlertMessage),
              (std::vector<QString>{QStringLiteral("Waiting for stavelin-daemon…"),
                                    QStringLiteral("Shortcuts are off: no keyboard")}));
}

TEST(MainView, aSmallPanelKeepsItsRoomForTheSlots)
{
    PanelDesk desk;
    ShownPanel panel(desk);
    desk.connectWith(nineEmpty);
    desk.controller->panel()->resize(200, 150);
    EXPECT_EQ(panel.names(QAccessible::StaticText), std::vector<QString>());
    EXPECT_FALSE(panel.names(QAccessible::ListItem).empty());
}

TEST(MainView, theColoursFollowTheDesktop)
{
    const QPalette before = QGuiApplication::palette();
    PanelDesk desk;
    ShownPanel panel(desk);
    for (const auto &[window, text] : {std::pair(QColor(30, 30, 30), QColor(Qt::white)),
                                       std::pair(QColor(240, 240, 240), QColor(Qt::black))}) {
        QPalette palette(window);
        palette.setColor(QPalette::Window, window);
        palette.setColor(QPalette::WindowText, text);
        QGuiApplication::setPalette(palette);
        panel.settle();
        EXPECT_EQ(panel.background(), window);
    }
    QGuiApplication::setPalette(before);
}

} // namespace stavelin::testkit
