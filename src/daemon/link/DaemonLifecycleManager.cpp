#include "daemon/link/DaemonLifecycleManager.h"

#include "support/SharedInstance.h"

#include <algorithm>
#include <string>

namespace stavelin::daemon {

namespace {

constexpr std::string_view applicationFolder = "Stavelin";
constexpr std::string_view developerBuilds = "Documents/projects/swift/Stavelin/stavelin-daemon/target";

std::string inQuotes(std::string_view text)
{
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\')
            result += '\\';
        result += character;
    }
    return result + '"';
}

std::string listLiteral(const std::vector<std::filesystem::path> &paths)
{
    std::string result = "[";
    for (const auto &path : paths) {
        if (result.size() > 1)
            result += ", ";
        result += inQuotes(path.native());
    }
    return result + ']';
}

} // namespace

DaemonLifecycleManager::DaemonLifecycleManager(platform::ProcessTable &processes,
                                               platform::ProcessLauncher &launcher,
                                               const platform::StandardPaths &paths,
                                               platform::FileSystem &files, support::Log &log)
    : m_processes(processes), m_launcher(launcher), m_paths(paths), m_files(files), m_log(log)
{}

DaemonLifecycleManager &DaemonLifecycleManager::shared()
{
    return support::SharedInstance<DaemonLifecycleManager>::get();
}

bool DaemonLifecycleManager::isDaemonRunning()
{
    return m_processes.isProcessRunning(daemonName);
}

void DaemonLifecycleManager::startDaemon()
{
    if (isDaemonRunning())
        return;

    const auto searched = candidates();
    const auto found =
        std::ranges::find_if(searched, [this](const auto &path) { return m_files.isExecutableFile(path); });
    if (found == searched.end()) {
        m_log.line("Daemon executable not found. Searched: " + listLiteral(searched));
        return;
    }

    // The daemon finds the user's session by itself: it must come up the same way whoever starts it.
    const platform::LaunchRequest request{
        .executable = *found,
        .environment = {{"RUST_LOG", "info"}},
        .outputFile = prepareLogFile(),
    };
    const auto launched = m_launcher.launch(request);
    if (!launched) {
        m_log.line("Failed to start daemon: " + launched.error().description);
        return;
    }
    m_daemonProcess = *launched;
    m_log.line("Daemon started at " + found->native());
}

std::vector<std::filesystem::path> DaemonLifecycleManager::candidates() const
{
    std::vector<std::filesystem::path> paths;
    if (const auto resource = m_paths.resource(daemonName))
        paths.push_back(*resource);
    if (const auto auxiliary = m_paths.auxiliaryExecutable(daemonName))
        paths.push_back(*auxiliary);
    if (const auto home = m_paths.home()) {
        // A developer's fresh build wins over what is installed.
        paths.push_back(*home / developerBuilds / "debug" / daemonName);
        paths.push_back(*home / developerBuilds / "release" / daemonName);
    }
    if (const auto applicationSupport = m_paths.applicationSupport())
        paths.push_back(*applicationSupport / applicationFolder / daemonName);
    return paths;
}

std::optional<std::filesystem::path> DaemonLifecycleManager::prepareLogFile()
{
    const auto applicationSupport = m_paths.applicationSupport();
    if (!applicationSupport)
        return std::nullopt;
    const auto logs = *applicationSupport / applicationFolder / "logs";
    m_files.createDirectories(logs); // without the folder the daemon's output stays with the application's
    return logs / "daemon.log";
}

} // namespace stavelin::daemon
