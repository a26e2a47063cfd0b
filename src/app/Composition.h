#pragma once

#include "app/AppDelegate.h"
#include "daemon/link/BeastWebSocketTaskFactory.h"
#include "platform/PlatformFactory.h"
#include "platform/qt/HandOverNotifier.h"
#include "support/HandOver.h"
#include "support/Log.h"
#include "views/PanelContent.h"

#include <QSocketNotifier>

#include <memory>

namespace stavelin::app {

/// Puts the program together: makes every object in the order in which they need each other, and destroys
/// them in reverse. The only place that names back-ends and installs the shared instances. One at a time, on
/// the main thread, while the application object exists.
class Composition
{
public:
    Composition();
    /// Gives the transport the time to say goodbye to the daemon.
    ~Composition();
    Composition(const Composition &) = delete;
    Composition &operator=(const Composition &) = delete;

    /// Runs the program to its end. Returns its exit status.
    int run();

private:
    void installSharedInstances();

    std::unique_ptr<platform::TerminationSignals> m_terminationSignals;
    QSocketNotifier m_terminationNotifier;
    support::StandardOutputLog m_log;
    support::HandOver m_mainThread;
    platform::qt::HandOverNotifier m_mainThreadNotifier;
    std::unique_ptr<support::Clock> m_clock;
    std::unique_ptr<platform::UserDefaults> m_userDefaults;
    platform::ModifierRoles m_modifierRoles;
    std::unique_ptr<platform::ProcessTable> m_processTable;
    std::unique_ptr<platform::ProcessLauncher> m_processLauncher;
    std::unique_ptr<platform::StandardPaths> m_standardPaths;
    std::unique_ptr<platform::FileSystem> m_fileSystem;
    std::unique_ptr<platform::Beeper> m_beeper;
    platform::DesktopBackEnds m_desktop;
    daemon::BeastWebSocketTaskFactory m_webSockets;
    std::unique_ptr<views::PanelContent> m_panelContent;
    std::unique_ptr<AppDelegate> m_appDelegate;
};

} // namespace stavelin::app
