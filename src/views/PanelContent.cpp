#include "views/PanelContent.h"

#include "platform/PlatformVocabulary.h"

#include <algorithm>

namespace stavelin::views {

namespace {

QString text(std::string_view words)
{
    return QString::fromUtf8(words.data(), static_cast<qsizetype>(words.size()));
}

} // namespace

PanelContent::PanelContent(daemon::DaemonConnector &connector, support::Clock &clock,
                           platform::ModifierRoles roles)
    : m_connector(connector), m_clock(clock), m_saveKeys(text(platform::shortcutWords(roles).saveToSlot)),
      m_pasteKeys(text(platform::shortcutWords(roles).pasteFromSlot)),
      m_toggleKeys(text(platform::shortcutWords(roles).togglePanel))
{
    connect(&connector, &daemon::DaemonConnector::connectionStateChanged, this,
            &PanelContent::takeConnectionState);
    connect(&connector, &daemon::DaemonConnector::clipboardSlotsChanged, this,
            &PanelContent::takeClipboardSlots);
    takeConnectionState();
    takeClipboardSlots();
}

PanelContent::~PanelContent()
{
    m_patience.cancel();
}

void PanelContent::setShortcutProblem(const QString &problem)
{
    m_shortcutProblem = problem;
    Q_EMIT shortcutProblemChanged();
}

void PanelContent::takeConnectionState()
{
    m_isConnected = m_connector.connectionState() == daemon::ConnectionState::connected;
    Q_EMIT isConnectedChanged();
    if (m_isConnected) {
        m_patience.cancel();
        setWaitingForDaemon(false);
        return;
    }
    // Every attempt to connect comes by here: none of them starts the two seconds anew.
    if (!m_isWaitingForDaemon && !m_patience.isPending())
        m_patience = m_clock.after(std::chrono::seconds(2), [this] { setWaitingForDaemon(true); });
}

void PanelContent::setWaitingForDaemon(bool waiting)
{
    m_isWaitingForDaemon = waiting;
    Q_EMIT isWaitingForDaemonChanged();
}

void PanelContent::takeClipboardSlots()
{
    m_slotList.setClipboardSlots(m_connector.clipboardSlots());
    m_isBoardEmpty = std::ranges::all_of(
        m_connector.clipboardSlots(), [](const model::ClipboardSlot &slot) { return slot.content.empty(); });
    Q_EMIT isBoardEmptyChanged();
}

} // namespace stavelin::views
