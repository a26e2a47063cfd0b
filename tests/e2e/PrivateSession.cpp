#include "e2e/PrivateSession.h"

#include "e2e/Unmet.h"
#include "e2e/Wait.h"

#include <cstdlib>
#include <fstream>
#include <string>

namespace stavelin::e2e {

namespace {

constexpr const char *busConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%socket%</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

std::filesystem::path newTemporaryFolder()
{
    std::string pattern = std::filesystem::temp_directory_path() / "stavelin-desktop-XXXXXX";
    if (!::mkdtemp(pattern.data())) {
        throw Unmet("cannot make a folder like " + pattern);
    }
    return pattern;
}

void makePrivateFolder(const std::filesystem::path &folder)
{
    std::filesystem::create_directories(folder);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
}

std::string inherited(const char *variable, const std::string &otherwise)
{
    const char *value = std::getenv(variable);
    return value ? value : otherwise;
}

} // namespace

PrivateSession::PrivateSession() : m_root(newTemporaryFolder())
{
    const std::filesystem::path runtime = m_root / "run";
    const std::filesystem::path socket = runtime / "bus";
    m_environment = {
        {"PATH", inherited("PATH", "/usr/local/bin:/usr/bin:/bin")},
        {"LANG", "C.UTF-8"},
        {"HOME", home()},
        {"USER", inherited("USER", "root")},
        {"TMPDIR", m_root / "tmp"},
        {"XDG_CONFIG_HOME", home() / ".config"},
        {"XDG_DATA_HOME", home() / ".local/share"},
        {"XDG_CACHE_HOME", home() / ".cache"},
        {"XDG_STATE_HOME", home() / ".local/state"},
        {"XDG_RUNTIME_DIR", runtime},
        {"XDG_SESSION_TYPE", "x11"},
        {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + socket.string()},
        // GTK programs would otherwise wait for an accessibility bus and a settings service that are not
        // there.
        {"NO_AT_BRIDGE", "1"},
        {"GSETTINGS_BACKEND", "memory"},
        {"GDK_BACKEND", "x11"},
        {"QT_QPA_PLATFORM", "xcb"},
    };
    for (const char *variable : {"HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                 "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
        makePrivateFolder(m_environment.at(variable));
    }
    makePrivateFolder(documents());
    makePrivateFolder(logs());

    std::string configuration = busConfiguration;
    const std::string placeholder = "%socket%";
    configuration.replace(configuration.find(placeholder), placeholder.size(), socket);
    const std::filesystem::path configurationFile = m_root / "bus.conf";
    std::ofstream(configurationFile) << configuration;
    m_bus = std::make_unique<DesktopProcess>(DesktopProcess::Command{
        {"dbus-daemon", "--config-file=" + configurationFile.string(), "--nofork", "--nopidfile"},
        m_environment,
        logs() / "bus.log"});
    if (!waitUntil([&] { return std::filesystem::exists(socket) || !m_bus->isRunning(); }) ||
        !m_bus->isRunning()) {
        throw Unmet("the message bus did not start: " + m_bus->output());
    }
}

PrivateSession::~PrivateSession()
{
    m_bus.reset();
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
}

} // namespace stavelin::e2e
