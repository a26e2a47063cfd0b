#pragma once

#include <QObject>

#include "app/StatusItem.h"
#include "daemon/link/DaemonConnector.h"
#include "daemon/link/DaemonLifecycleManager.h"
#include "platform/AccessibilityPermission.h"
#include "services/ShortcutManager.h"
#include "support/Clock.h"
#include "views/FloatingPanelController.h"
#include "views/PanelContent.h"

#include <functional>
#include <memory>

namespace stavelin::app {

/// Starts the parts of the program in their order, and stops them in theirs. Owns the status item and the
/// panel. Main thread.
class AppDelegate final : public QObject
{
    Q_OBJECT

public:
    /// What the delegate makes at the launch.
    struct Makers
    {
        std::function<std::unique_ptr<StatusItem>(StatusItem::Actions)> statusItem;
        std::function<std::unique_ptr<views::FloatingPanelController>()> panelController;
    };

    /// `quit` ends the program's event loop. What is passed by reference outlives the delegate.
    AppDelegate(Makers makers, std::function<void()> quit, views::PanelContent &content,
                daemon::DaemonLifecycleManager &daemonLifecycleManager,
                daemon::DaemonConnector &daemonConnector, services::ShortcutManager &shortcutManager,
                platform::AccessibilityPermission &permission, support::Clock &clock);

    void applicationDidFinishLaunching();
    /// The daemon is left running.
    void applicationWillTerminate();

    /// Brings the panel forward.
    void showPanel();

private:
    void makeStatusItem();
    void setUpShortcutManager();
    void checkAccessibilityPermissionLater();
    void startEventTap();
    void showShortcutProblem();

    Makers m_makers;
    std::function<void()> m_quit;
    views::PanelContent &m_content;
    daemon::DaemonLifecycleManager &m_daemonLifecycleManager;
    daemon::DaemonConnector &m_daemonConnector;
    services::ShortcutManager &m_shortcutManager;
    platform::AccessibilityPermission &m_permission;
    support::Clock &m_clock;

    std::unique_ptr<views::FloatingPanelController> m_panelController;
    std::unique_ptr<StatusItem> m_statusItem;
    support::TimerHandle m_accessibilityCheckTimer;
};

} // namespace stavelin::app
