#pragma once

#include "platform/FileSystem.h"
#include "platform/ProcessLauncher.h"
#include "platform/ProcessTable.h"
#include "platform/StandardPaths.h"
#include "support/Log.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace stavelin::daemon {

/// Makes sure that the daemon runs before the application talks to it. Launches at most once per call and
/// never stops, watches or restarts what it launched: the store outlives the interface. Main thread.
class DaemonLifecycleManager
{
public:
    /// The executable's file name and the process name that is looked for.
    static constexpr std::string_view daemonName = "stavelin-daemon";

    DaemonLifecycleManager(platform::ProcessTable &processes, platform::ProcessLauncher &launcher,
                           const platform::StandardPaths &paths, platform::FileSystem &files,
                           support::Log &log);

    [[nodiscard]] static DaemonLifecycleManager &shared();

    /// Whether a process named exactly `daemonName` exists, whoever started it.
    [[nodiscard]] bool isDaemonRunning();

    /// Finds and launches the daemon unless it runs already. What goes wrong is one line in the log. The
    /// daemon's own output goes to "Stavelin/logs/daemon.log" in the user's data folder if that file exists,
    /// else where this program's output goes.
    void startDaemon();

    /// The process id of the daemon that this object launched, if it did; for information only.
    [[nodiscard]] std::optional<int> daemonProcess() const { return m_daemonProcess; }

private:
    [[nodiscard]] std::vector<std::filesystem::path> candidates() const;
    [[nodiscard]] std::optional<std::filesystem::path> prepareLogFile();

    platform::ProcessTable &m_processes;
    platform::ProcessLauncher &m_launcher;
    const platform::StandardPaths &m_paths;
    platform::FileSystem &m_files;
    support::Log &m_log;
    std::optional<int> m_daemonProcess;
};

} // namespace stavelin::daemon
