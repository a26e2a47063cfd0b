#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include "app/StatusItem.h"

namespace stavelin::app {

/// The status item in a desktop's tray. Where there is no tray yet, it appears as soon as one does.
class TrayStatusItem final : public QObject, public StatusItem
{
    Q_OBJECT

public:
    explicit TrayStatusItem(Actions actions);
    ~TrayStatusItem() override;

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void drawIcon();

    QMenu m_menu; // outlives the icon, which refers to it
    QSystemTrayIcon m_icon;
};

} // namespace stavelin::app
