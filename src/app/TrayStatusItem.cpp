#include "app/TrayStatusItem.h"

#include "app/PushpinIcon.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>

#include <utility>

namespace stavelin::app {

TrayStatusItem::TrayStatusItem(Actions actions)
{
    m_menu.addAction(tr("Show Stavelin"), this, std::move(actions.showPanel));
    m_menu.addSeparator();
    m_menu.addAction(tr("Quit"), this, std::move(actions.quit));

    connect(&m_icon, &QSystemTrayIcon::activated, this,
            [toggle = std::move(actions.togglePanel)](QSystemTrayIcon::ActivationReason reason) {
                // A second click that follows quickly is one more click, as on every toggle.
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                    toggle();
            });
    m_icon.setToolTip(QStringLiteral("Stavelin"));
    m_icon.setContextMenu(&m_menu);
    drawIcon();
    m_icon.show();
    qApp->installEventFilter(this);
}

TrayStatusItem::~TrayStatusItem()
{
    qApp->removeEventFilter(this);
}

bool TrayStatusItem::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        drawIcon();
    return QObject::eventFilter(watched, event);
}

void TrayStatusItem::drawIcon()
{
    m_icon.setIcon(pushpinIcon(QApplication::palette().color(QPalette::WindowText)));
}

} // namespace stavelin::app
