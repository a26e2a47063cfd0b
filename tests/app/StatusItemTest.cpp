#include "app/PushpinIcon.h"
#include "app/TrayStatusItem.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMenu>

namespace stavelin::app {

namespace {

/// The menu that the item under test made: there is no other in the program.
QMenu &menu()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *found = qobject_cast<QMenu *>(widget))
            return *found;
    }
    throw std::logic_error("no menu was made");
}

} // namespace

TEST(TrayStatusItem, itsMenuOffersToShowThePanelAndToQuit)
{
    int shows = 0;
    int quits = 0;
    const TrayStatusItem item(
        {.togglePanel = [] {}, .showPanel = [&] { ++shows; }, .quit = [&] { ++quits; }});

    QList<QAction *> actions = menu().actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), QStringLiteral("Show Stavelin"));
    EXPECT_TRUE(actions[1]->isSeparator());
    EXPECT_EQ(actions[2]->text(), QStringLiteral("Quit"));

    actions[0]->trigger();
    EXPECT_EQ(shows, 1);
    EXPECT_EQ(quits, 0);
    actions[2]->trigger();
    EXPECT_EQ(shows, 1);
    EXPECT_EQ(quits, 1);
}

TEST(PushpinIcon, isDrawnInItsColourAtEverySizeOfATray)
{
    const QColor color(10, 120, 200);
    const QIcon icon = pushpinIcon(color);
    for (const int size : {16, 18, 20, 22, 24, 32, 48, 64}) {
        const QImage image = icon.pixmap(QSize(size, size)).toImage();
        ASSERT_EQ(image.size(), QSize(size, size));
        EXPECT_EQ(image.pixelColor(size / 2, size / 2), color) << size;
        for (const QPoint corner :
             {QPoint(0, 0), QPoint(size - 1, 0), QPoint(0, size - 1), QPoint(size - 1, size - 1)})
            EXPECT_EQ(image.pixelColor(corner).alpha(), 0) << size;
    }
}

} // namespace stavelin::app
