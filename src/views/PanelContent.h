#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration/qqmlintegration.h>

#include "daemon/link/DaemonConnector.h"
#include "platform/ModifierRoles.h"
#include "support/Clock.h"
#include "views/SlotListModel.h"

namespace stavelin::views {

/// What the panel shows, and nothing about how. Main thread.
class PanelContent final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("It is made where the program is put together.")
    Q_PROPERTY(stavelin::views::SlotListModel *slotList READ slotList CONSTANT)
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY isConnectedChanged)
    Q_PROPERTY(bool isWaitingForDaemon READ isWaitingForDaemon NOTIFY isWaitingForDaemonChanged)
    Q_PROPERTY(bool isBoardEmpty READ isBoardEmpty NOTIFY isBoardEmptyChanged)
    Q_PROPERTY(QString shortcutProblem READ shortcutProblem NOTIFY shortcutProblemChanged)
    Q_PROPERTY(QString saveKeys READ saveKeys CONSTANT)
    Q_PROPERTY(QString pasteKeys READ pasteKeys CONSTANT)
    Q_PROPERTY(QString toggleKeys READ toggleKeys CONSTANT)

public:
    /// Follows the connector; both references outlive it.
    PanelContent(daemon::DaemonConnector &connector, support::Clock &clock, platform::ModifierRoles roles);
    ~PanelContent() override;

    [[nodiscard]] SlotListModel *slotList() { return &m_slotList; }
    [[nodiscard]] bool isConnected() const { return m_isConnected; }
    /// Whether the connection has been missing for two seconds. A daemon that is just starting is no news.
    [[nodiscard]] bool isWaitingForDaemon() const { return m_isWaitingForDaemon; }
    /// Whether no slot holds anything.
    [[nodiscard]] bool isBoardEmpty() const { return m_isBoardEmpty; }
    /// Why the shortcuts do not work, for people; empty while they do.
    [[nodiscard]] QString shortcutProblem() const { return m_shortcutProblem; }
    void setShortcutProblem(const QString &problem);
    [[nodiscard]] QString saveKeys() const { return m_saveKeys; }
    [[nodiscard]] QString pasteKeys() const { return m_pasteKeys; }
    [[nodiscard]] QString toggleKeys() const { return m_toggleKeys; }

Q_SIGNALS:
    void isConnectedChanged();
    void isWaitingForDaemonChanged();
    void isBoardEmptyChanged();
    void shortcutProblemChanged();

private:
    void takeConnectionState();
    void takeClipboardSlots();
    void setWaitingForDaemon(bool waiting);

    daemon::DaemonConnector &m_connector;
    support::Clock &m_clock;
    SlotListModel m_slotList;
    bool m_isConnected = false;
    bool m_isWaitingForDaemon = false;
    support::TimerHandle m_patience; ///< pending while the connection is missing for less than two seconds
    bool m_isBoardEmpty = true;
    QString m_shortcutProblem;
    QString m_saveKeys;
    QString m_pasteKeys;
    QString m_toggleKeys;
};

} // namespace stavelin::views
