#include "app/AppDelegate.h"

#include <utility>

namespace stavelin::app {

namespace {

constexpr auto accessibilityCheckInterval = std::chrono::seconds(2);

} // namespace

AppDelegate::AppDelegate(Makers makers, std::function<void()> quit, views::PanelContent &content,
                         daemon::DaemonLifecycleManager &daemonLifecycleManager,
                         daemon::DaemonConnector &daemonConnector, services::ShortcutManager &shortcutManager,
                         platform::AccessibilityPermission &permission, support::Clock &clock)
    : m_makers(std::move(makers)), m_quit(std::move(quit)), m_content(content),
      m_daemonLifecycleManager(daemonLifecycleManager), m_daemonConnector(daemonConnector),
      m_shortcutManager(shortcutManager), m_permission(permission), m_clock(clock)
{}

void AppDelegate::applicationDidFinishLaunching()
{
    makeStatusItem();
    m_panelController = m_makers.panelController();
    showPanel();
    if (!m_daemonLifecycleManager.isDaemonRunning())
        m_daemonLifecycleManager.startDaemon();
    // A daemon that is still starting refuses the first attempt; the connector comes back by itself.
    m_daemonConnector.connect();
    setUpShortcutManager();
}

void AppDelegate::applicationWillTerminate()
{
    m_accessibilityCheckTimer.cancel();
    m_shortcutManager.stopEventTap();
    m_daemonConnector.disconnect();
}

void AppDelegate::showPanel()
{
    m_panelController->bringForward();
}

void AppDelegate::makeStatusItem()
{
    m_statusItem = m_makers.statusItem({
        .togglePanel = [this] { m_panelController->togglePanel(); },
        .showPanel = [this] { showPanel(); },
        .quit = m_quit,
    });
}

void AppDelegate::setUpShortcutManager()
{
    m_shortcutManager.setPanelController(m_panelController.get());
    m_shortcutManager.setHasAccessibilityPermission(m_permission.isTrusted(false));
    if (m_shortcutManager.hasAccessibilityPermission()) {
        startEventTap();
        return;
    }
    showShortcutProblem();
    checkAccessibilityPermissionLater();
}

void AppDelegate::checkAccessibilityPermissionLater()
{
    m_accessibilityCheckTimer = m_clock.after(accessibilityCheckInterval, [this] {
        m_shortcutManager.setHasAccessibilityPermission(m_permission.isTrusted(false));
        if (m_shortcutManager.hasAccessibilityPermission())
            startEventTap();
        else
            checkAccessibilityPermissionLater();
    });
}

void AppDelegate::startEventTap()
{
    m_shortcutManager.startEventTap();
    showShortcutProblem();
}

void AppDelegate::showShortcutProblem()
{
    if (!m_shortcutManager.hasAccessibilityPermission()) {
        m_content.setShortcutProblem(
            tr("Shortcuts are off: %1").arg(QString::fromStdString(m_permission.reason())));
        return;
    }
    if (!m_shortcutManager.eventTapRunning()) {
        m_content.setShortcutProblem(tr("Shortcuts are off: the keyboard could not be watched"));
        return;
    }
    QStringList reasons;
    for (const platform::TapConflict &conflict : m_shortcutManager.conflicts())
        reasons.append(QString::fromStdString(conflict.reason));
    m_content.setShortcutProblem(reasons.join(QStringLiteral("; ")));
}

} // namespace stavelin::app
