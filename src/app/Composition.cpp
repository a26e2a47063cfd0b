#include "app/Composition.h"

#include "app/TrayStatusItem.h"
#include "support/SharedInstance.h"

#include <QApplication>

#include <cstdlib>

namespace stavelin::app {

namespace {

/// Not QCoreApplication::quit(): that first asks the windows to close, and the panel answers by hiding
/// itself.
void endEventLoop()
{
    QCoreApplication::exit(EXIT_SUCCESS);
}

} // namespace

Composition::Composition()
    : m_terminationSignals(platform::PlatformFactory::makeTerminationSignals()),
      m_terminationNotifier(m_terminationSignals->descriptor(), QSocketNotifier::Read),
      m_mainThreadNotifier(m_mainThread), m_clock(platform::PlatformFactory::makeClock()),
      m_userDefaults(platform::PlatformFactory::makeUserDefaults()),
      m_modifierRoles(platform::modifierRoles(*m_userDefaults)),
      m_processTable(platform::PlatformFactory::makeProcessTable()),
      m_processLauncher(platform::PlatformFactory::makeProcessLauncher()),
      m_standardPaths(platform::PlatformFactory::makeStandardPaths(
          QCoreApplication::applicationFilePath().toStdString())),
      m_fileSystem(platform::PlatformFactory::makeFileSystem()),
      m_beeper(platform::PlatformFactory::makeBeeper()),
      m_desktop(platform::PlatformFactory::makeDesktopBackEnds(QGuiApplication::platformName().toStdString(),
                                                               m_modifierRoles, m_mainThread, m_log)),
      m_webSockets(m_mainThread, *m_clock)
{
    installSharedInstances();
    m_panelContent =
        std::make_unique<views::PanelContent>(daemon::DaemonConnector::shared(), *m_clock, m_modifierRoles);
    AppDelegate::Makers makers{
        .statusItem = [](StatusItem::Actions actions) -> std::unique_ptr<StatusItem> {
            return std::make_unique<TrayStatusItem>(std::move(actions));
        },
        .panelController =
            [this] {
                return std::make_unique<views::FloatingPanelController>(
                    *m_panelContent, *m_desktop.floatingWindow, *m_userDefaults, *m_clock, m_log);
            },
    };
    m_appDelegate = std::make_unique<AppDelegate>(
        std::move(makers), endEventLoop, *m_panelContent, daemon::DaemonLifecycleManager::shared(),
        daemon::DaemonConnector::shared(), services::ShortcutManager::shared(),
        *m_desktop.accessibilityPermission, *m_clock);

    QObject::connect(&m_terminationNotifier, &QSocketNotifier::activated, qApp, [this] {
        m_terminationNotifier.setEnabled(false); // the descriptor stays readable
        endEventLoop();
    });
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, m_appDelegate.get(),
                     &AppDelegate::applicationWillTerminate);
}

Composition::~Composition()
{
    m_appDelegate.reset();
    m_panelContent.reset();
    support::SharedInstance<services::ShortcutManager>::uninstall();
    support::SharedInstance<daemon::DaemonConnector>::uninstall();
    support::SharedInstance<daemon::DaemonLifecycleManager>::uninstall();
}

int Composition::run()
{
    m_appDelegate->applicationDidFinishLaunching();
    return QApplication::exec();
}

void Composition::installSharedInstances()
{
    support::SharedInstance<daemon::DaemonLifecycleManager>::install([this] {
        return std::make_unique<daemon::DaemonLifecycleManager>(*m_processTable, *m_processLauncher,
                                                                *m_standardPaths, *m_fileSystem, m_log);
    });
    support::SharedInstance<daemon::DaemonConnector>::install(
        [this] { return std::make_unique<daemon::DaemonConnector>(m_webSockets, *m_clock, m_log); });
    support::SharedInstance<services::ShortcutManager>::install([this] {
        return std::make_unique<services::ShortcutManager>(
            daemon::DaemonConnector::shared(), *m_desktop.eventTapFactory, *m_desktop.accessibilityPermission,
            *m_desktop.keySender, *m_desktop.pasteboard, *m_beeper, *m_userDefaults, *m_clock, m_mainThread,
            m_log);
    });
}

} // namespace stavelin::app
