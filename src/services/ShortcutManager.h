#pragma once

#include <QObject>
#include <QPointer>

#include <QCoroTask>

#include "platform/EventTap.h"
#include "services/AtomicBool.h"
#include "services/PasteFlowState.h"
#include "services/TogglablePanel.h"
#include "support/Clock.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace stavelin::daemon {
class DaemonConnector;
}
namespace stavelin::platform {
class AccessibilityPermission;
class Beeper;
class KeySender;
class Pasteboard;
class UserDefaults;
} // namespace stavelin::platform
namespace stavelin::support {
class HandOver;
class Log;
} // namespace stavelin::support

namespace stavelin::services {

struct GestureDecision;

/// The shortcuts that work in every application: save what is selected to a slot, paste a slot, show the
/// panel.
///
/// Main thread, but for the three operations of TapClient, which the tap calls on its own thread: they touch
/// only the flag that says whether a digit is awaited, and post everything else to the main thread.
class ShortcutManager final : public QObject, public platform::TapClient
{
    Q_OBJECT
    // Each notifies with every assignment, also with one that changes nothing.
    Q_PROPERTY(
        stavelin::services::PasteFlowState pasteFlowState READ pasteFlowState NOTIFY pasteFlowStateChanged)
    Q_PROPERTY(bool hasAccessibilityPermission READ hasAccessibilityPermission WRITE
                   setHasAccessibilityPermission NOTIFY hasAccessibilityPermissionChanged)
    Q_PROPERTY(bool eventTapRunning READ eventTapRunning NOTIFY eventTapRunningChanged)
    Q_PROPERTY(int nextSlotIndex READ nextSlotIndex WRITE setNextSlotIndex NOTIFY nextSlotIndexChanged)

public:
    /// Reads the persisted slot index and asks for the permission without a prompt; installs nothing. What is
    /// passed outlives the manager; `mainThread` runs its tasks on the thread that constructs it.
    ShortcutManager(daemon::DaemonConnector &connector, platform::EventTapFactory &eventTaps,
                    platform::AccessibilityPermission &permission, platform::KeySender &keySender,
                    platform::Pasteboard &pasteboard, platform::Beeper &beeper,
                    platform::UserDefaults &userDefaults, support::Clock &clock,
                    support::HandOver &mainThread, support::Log &log);
    /// Removes the tap. What was posted before and has not run yet does nothing.
    ~ShortcutManager() override;

    [[nodiscard]] static ShortcutManager &shared();

    [[nodiscard]] PasteFlowState pasteFlowState() const { return m_pasteFlowState; }
    [[nodiscard]] bool hasAccessibilityPermission() const { return m_hasAccessibilityPermission; }
    void setHasAccessibilityPermission(bool granted);
    [[nodiscard]] bool eventTapRunning() const { return m_eventTapRunning; }
    /// The slot, 1 to 9, that is saved to when none is empty. Every assignment is written to the user's
    /// defaults.
    [[nodiscard]] int nextSlotIndex() const { return m_nextSlotIndex; }
    void setNextSlotIndex(int slotIndex);

    /// What the toggling shortcut reaches for as long as it exists; null for nothing.
    void setPanelController(TogglablePanel *panelController) { m_panelController = panelController; }

    /// Installs the tap when the permission is there and none is installed; the log says what came of it.
    void startEventTap();
    /// Removes the tap, if one is installed.
    void stopEventTap();
    /// The chords that the installed tap could not have.
    [[nodiscard]] std::vector<platform::TapConflict> conflicts() const;

    /// Asks for the permission again, without a prompt, after 500 ms. Does not start the tap.
    QCoro::Task<> checkAccessibilityPermission();

    // What the gestures do.

    /// Waits for a digit, for two seconds from now.
    void startPasteFlow();
    /// Waits for no digit any more.
    void resetPasteFlow();
    /// Has the daemon put the slot's text on the pasteboard, and pastes it 50 ms later; beeps when that
    /// fails.
    QCoro::Task<> pasteFromSlot(int slotIndex);
    /// Copies the selection and saves its text to the first empty slot, else to nextSlotIndex.
    QCoro::Task<> autoSaveClipboardToSlot();

    platform::TapVerdict handle(const platform::TapEvent &event) override;
    [[nodiscard]] bool isWaitingForDigit() const override { return m_isWaitingForDigit.get(); }
    [[nodiscard]] bool isGesture(const platform::TapEvent &event) const override;

Q_SIGNALS:
    void pasteFlowStateChanged();
    void hasAccessibilityPermissionChanged();
    void eventTapRunningChanged();
    void nextSlotIndexChanged();

private:
    void setPasteFlowState(PasteFlowState state);
    void setEventTapRunning(bool running);
    void endPasteFlow();
    void perform(const GestureDecision &decision);
    void togglePanel();
    [[nodiscard]] std::int64_t slotIndexToSaveTo() const;

    daemon::DaemonConnector &m_connector;
    platform::EventTapFactory &m_eventTaps;
    platform::AccessibilityPermission &m_permission;
    platform::KeySender &m_keySender;
    platform::Pasteboard &m_pasteboard;
    platform::Beeper &m_beeper;
    platform::UserDefaults &m_userDefaults;
    support::Clock &m_clock;
    support::HandOver &m_mainThread;
    support::Log &m_log;

    PasteFlowState m_pasteFlowState = PasteFlowState::idle;
    bool m_hasAccessibilityPermission = false;
    bool m_eventTapRunning = false;
    int m_nextSlotIndex = 1;
    support::TimerHandle m_pasteFlowTimeout;
    AtomicBool m_isWaitingForDigit;
    QPointer<TogglablePanel> m_panelController;
    /// What posted tasks hold weakly: they run after the manager's end when it ends before its queue does.
    std::shared_ptr<ShortcutManager *> m_self;
    std::unique_ptr<platform::EventTap> m_eventTap;
};

} // namespace stavelin::services
