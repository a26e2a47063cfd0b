#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration/qqmlintegration.h>

#include "daemon/link/DaemonConnector.h"
#include "platform/ModifierRoles.h"
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
    Q_PROPERTY(bool isBoardEmpty READ isBoardEmpty NOTIFY isBoardEmptyChanged)
    Q_PROPERTY(QString shortcutProblem READ shortcutProblem NOTIFY shortcutProblemChanged)
    Q_PROPERTY(QString saveKeys READ saveKeys CONSTANT)
    Q_PROPERTY(QString pasteKeys READ pasteKeys CONSTANT)
    Q_PROPERTY(QString toggleKeys READ toggleKeys CONSTANT)

public:
    /// Follows the connector, which outlives it.
    PanelContent(daemon::DaemonConnector &connector, platform::ModifierRoles roles);

    [[nodiscard]] SlotListModel *slotList() { return &m_slotList; }
    [[nodiscard]] bool isConnected() const { return m_isConnected; }
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
    void isBoardEmptyChanged();
    void shortcutProblemChanged();

private:
    void takeConnectionState();
    void takeClipboardSlots();

    daemon::DaemonConnector &m_connector;
    SlotListModel m_slotList;
    bool m_isConnected = false;
    bool m_isBoardEmpty = true;
    QString m_shortcutProblem;
    QString m_saveKeys;
    QString m_pasteKeys;
    QString m_toggleKeys;
};

} // namespace stavelin::views
