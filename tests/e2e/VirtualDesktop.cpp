#include "e2e/VirtualDesktop.h"

#include "e2e/KeyNames.h"
#include "e2e/SocketTable.h"
#include "e2e/Unmet.h"
#include "e2e/Wait.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <ranges>
#include <tuple>
#include <utility>

namespace stavelin::e2e {

namespace {

constexpr int screenWidth = 1280;
constexpr int screenHeight = 800;
constexpr int trayHeight = 28;
constexpr std::uint32_t backgroundColour = 0x3B5368;

// No key bindings of its own: every key belongs to the applications and to Stavelin. New windows are stacked
// below the last one, at the left, so that a picture shows all of them.
constexpr const char *windowManagerConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse><focusLast>yes</focusLast></focus>
  <placement><policy>Smart</policy><center>no</center></placement>
  <theme>
    <name>Clearlooks</name>
    <font place="ActiveWindow"><name>DejaVu Sans</name><size>10</size></font>
    <font place="InactiveWindow"><name>DejaVu Sans</name><size>10</size></font>
  </theme>
  <desktops><number>1</number><popupTime>0</popupTime></desktops>
  <keyboard></keyboard>
  <mouse>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
  </mouse>
</openbox_config>
)";

std::filesystem::path program(const std::string &name)
{
    return std::filesystem::path(STAVELIN_PROGRAMS) / name;
}

std::string inQuotes(const std::string &text)
{
    return '"' + text + '"';
}

} // namespace

VirtualDesktop::VirtualDesktop()
{
    if (isListenedOn(DaemonClient::port)) {
        throw Unmet("another daemon listens already; run this under tests/testkit/in-private-namespaces");
    }
    m_servers = std::make_unique<testkit::NestedX>(screenWidth, screenHeight);
    m_environment = m_session.environment();
    m_environment["DISPLAY"] = m_servers->innerDisplay();
    m_screen = std::make_unique<Screen>(m_servers->innerDisplay());
    m_screen->paintBackground(backgroundColour);

    const std::filesystem::path configuration = m_session.home() / "openbox.xml";
    std::ofstream(configuration) << windowManagerConfiguration;
    m_windowManager = start("openbox", {"openbox", "--config-file", configuration, "--sm-disable"});
    m_tray = start("trayer", {"trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request",
                              "--height", std::to_string(trayHeight)});
    expect("the window manager runs", [this] { return m_screen->hasWindowManager(); });
}

VirtualDesktop::~VirtualDesktop()
{
    m_daemon.reset();
    m_stavelin.reset();
    m_applications.clear();
    // The daemon outlives the application on purpose.
    for (const pid_t daemon : processesNamed("stavelin-daemon")) {
        ::kill(daemon, SIGTERM);
    }
    waitUntil([] { return processesNamed("stavelin-daemon").empty(); });
}

VirtualDesktop::Key VirtualDesktop::keyFor(xcb_keysym_t symbol) const
{
    for (const int column : {0, 1}) {
        if (const xcb_keycode_t code = m_screen->keyCodeOf(symbol, column); code != 0) {
            return {code, column == 1};
        }
    }
    throw Unmet("the keyboard has no key for symbol " + std::to_string(symbol));
}

void VirtualDesktop::press(std::string_view chord)
{
    const std::vector<xcb_keysym_t> keys = keysOfChord(chord);
    for (const xcb_keysym_t key : keys) {
        m_servers->press(keyFor(key).code);
    }
    for (const xcb_keysym_t key : keys | std::views::reverse) {
        m_servers->release(keyFor(key).code);
    }
}

void VirtualDesktop::hold(std::string_view key)
{
    m_servers->press(keyFor(keysOfChord(key).front()).code);
}

void VirtualDesktop::release(std::string_view key)
{
    m_servers->release(keyFor(keysOfChord(key).front()).code);
}

void VirtualDesktop::type(std::string_view text)
{
    for (const char character : text) {
        if (character == '\n') {
            press("Return");
            continue;
        }
        // ASCII characters are their own key symbols.
        const Key key = keyFor(static_cast<xcb_keysym_t>(character));
        if (key.shifted) {
            hold("Shift");
        }
        m_servers->press(key.code);
        m_servers->release(key.code);
        if (key.shifted) {
            release("Shift");
        }
    }
}

void VirtualDesktop::doubleClick(const Application &application, int x, int y)
{
    const Rectangle place = m_screen->placeOf(application.window());
    m_servers->movePointer(place.x + x, place.y + y);
    clickHere();
    clickHere();
}

void VirtualDesktop::clickTrayIcon()
{
    const xcb_window_t window = windowOf(*m_tray, "the tray");
    Rectangle tray;
    // An empty tray is a few pixels wide.
    expect("an icon is in the tray", [&] {
        tray = m_screen->placeOf(window);
        return tray.width >= trayHeight / 2;
    });
    m_servers->movePointer(tray.x + tray.width / 2, tray.y + tray.height / 2);
    clickHere();
}

void VirtualDesktop::clickHere()
{
    constexpr std::uint8_t leftButton = 1;
    m_servers->pressButton(leftButton);
    m_servers->releaseButton(leftButton);
}

std::unique_ptr<DesktopProcess> VirtualDesktop::start(const std::string &name,
                                                      std::vector<std::string> arguments)
{
    const std::string log = std::to_string(++m_started) + "-" + name + ".log";
    return std::make_unique<DesktopProcess>(
        DesktopProcess::Command{std::move(arguments), m_environment, m_session.logs() / log});
}

xcb_window_t VirtualDesktop::windowOf(DesktopProcess &process, const std::string &name, const Where &where)
{
    std::vector<xcb_window_t> windows;
    const auto isThere = [&] {
        windows = m_screen->windowsOf(process.id());
        if (windows.empty() && !process.isRunning()) {
            throw Unmet(name + " ended before it showed a window", where);
        }
        return !windows.empty();
    };
    expect(name + " shows a window", isThere, where, startingPatience);
    return windows.front();
}

template <typename Kind>
Kind &VirtualDesktop::adopt(std::unique_ptr<Kind> application)
{
    Kind &adopted = *application;
    m_applications.push_back(std::move(application));
    focus(adopted);
    return adopted;
}

Mousepad &VirtualDesktop::openMousepad(const std::string &text)
{
    const std::filesystem::path file =
        m_session.documents() / ("notes-" + std::to_string(m_started) + ".txt");
    std::ofstream(file) << text;
    auto process = start("mousepad", {"mousepad", "--disable-server", file});
    const xcb_window_t window = windowOf(*process, "Mousepad");
    // The file is read after the window has appeared.
    expect("Mousepad shows the file",
           [&] { return m_screen->titleOf(window).contains(file.filename().string()); });
    return adopt(std::make_unique<Mousepad>(*this, file, std::move(process), window));
}

Xterm &VirtualDesktop::openXterm()
{
    const std::string stem = m_session.documents() / ("terminal-" + std::to_string(m_started));
    const std::string ready = stem + ".ready";
    const std::string lines = stem + ".txt";
    const std::string interruptions = stem + ".interruptions";
    // A shell runs its trap when the program in the foreground has ended. An interrupt that comes before that
    // program does not end it, so it is the program that says that all is ready.
    const std::string reader = "touch " + ready + "; exec cat >>" + lines;
    const std::string collector =
        "trap 'echo interrupted >>" + interruptions + "' INT; while :; do sh -c '" + reader + "'; done";
    auto process = start("xterm", {"xterm", "-fa", "DejaVu Sans Mono", "-fs", "10", "-geometry", "72x12",
                                   "-title", "xterm", "-e", "sh", "-c", collector});
    const xcb_window_t window = windowOf(*process, "xterm");
    expect("the program in xterm runs", [&] { return std::filesystem::exists(ready); });
    return adopt(std::make_unique<Xterm>(lines, interruptions, std::move(process), window));
}

Witness &VirtualDesktop::openWitness(const std::string &text)
{
    auto process = start("witness", {program("stavelin-witness"), text});
    const xcb_window_t window = windowOf(*process, "the witness");
    return adopt(std::make_unique<Witness>(std::move(process), window));
}

void VirtualDesktop::focus(const Application &application, const Where &where)
{
    if (!m_screen->hasFocus(application.window())) {
        m_screen->activate(application.window());
    }
    expectFocus(application, where);
}

void VirtualDesktop::selectAll(const Application &application, const Where &where)
{
    focus(application, where);
    press("Ctrl+A");
}

void VirtualDesktop::copyAll(const Application &application, const Where &where)
{
    const xcb_window_t before = m_screen->clipboardOwner();
    selectAll(application, where);
    press("Ctrl+C");
    expect(
        application.name() + " takes the clipboard", [&] { return m_screen->clipboardOwner() != before; },
        where);
}

void VirtualDesktop::copyIn(const Application &application, std::string_view text, const Where &where)
{
    selectAll(application, where);
    type(text);
    selectAll(application, where);
    press("Super+C");
}

void VirtualDesktop::startStavelin(const Where &where)
{
    m_stavelin.reset();
    m_stavelin = start("stavelin", {program("stavelin")});
    std::ignore = windowOf(*m_stavelin, "Stavelin", where);
    expect(
        "the shortcuts work",
        [this] { return m_stavelin->output().contains("[ShortcutManager] Event tap started successfully"); },
        where);
    expect(
        "the application has read the slots", [this] { return hasStavelinReadTheState(); }, where);
}

void VirtualDesktop::startDaemonAlone(const Where &where)
{
    const std::string command = "env -i RUST_LOG=info '" + program("stavelin-daemon").string() + "' & wait";
    m_daemonParent = start("daemon-alone", {"sh", "-c", command});
    expect(
        "the daemon listens", [] { return isListenedOn(DaemonClient::port); }, where);
}

bool VirtualDesktop::hasStavelinReadTheState() const
{
    // More than the answer to the handshake, which has less than 300 bytes; the emptiest state has more than
    // 600.
    constexpr std::uint64_t handshakeAndMore = 500;
    return bytesReadFromLoopbackPort(m_stavelin->id(), DaemonClient::port) > handshakeAndMore;
}

pid_t VirtualDesktop::daemonProcess() const
{
    const std::vector<pid_t> daemons = processesNamed("stavelin-daemon");
    if (daemons.size() != 1) {
        throw Unmet("expected one daemon, there are " + std::to_string(daemons.size()));
    }
    return daemons.front();
}

void VirtualDesktop::endDaemon(int signalNumber, const Where &where)
{
    m_daemon.reset();
    ::kill(daemonProcess(), signalNumber);
    expect(
        "the daemon ends", [] { return processesNamed("stavelin-daemon").empty(); }, where);
}

DaemonClient &VirtualDesktop::daemon()
{
    if (!m_daemon) {
        expect("the daemon listens", [] { return isListenedOn(DaemonClient::port); });
        m_daemon = std::make_unique<DaemonClient>();
    }
    return *m_daemon;
}

std::optional<xcb_window_t> VirtualDesktop::panel() const
{
    const std::vector<xcb_window_t> windows = m_screen->windowsOf(m_stavelin->id());
    return windows.empty() ? std::nullopt : std::optional(windows.front());
}

void VirtualDesktop::expectSlot(int index, const std::string &text, const Where &where)
{
    const auto position = static_cast<std::size_t>(index - 1);
    if (!daemon().waitForSlots([&](const DaemonClient::Slots &slots) { return slots.at(position) == text; },
                               patience)) {
        throw Unmet("slot " + std::to_string(index) + " holds " + inQuotes(daemon().slots().at(position)) +
                        ", not " + inQuotes(text),
                    where);
    }
}

void VirtualDesktop::expectText(Application &application, const std::string &text, const Where &where)
{
    if (!waitUntil([&] { return application.text() == text; })) {
        throw Unmet("in " + application.name() + " there is " + inQuotes(application.text()) + ", not " +
                        inQuotes(text),
                    where);
    }
}

void VirtualDesktop::expectInterruption(const Xterm &terminal, const Where &where)
{
    expect(
        "the program in xterm is interrupted", [&] { return !terminal.interruptions().empty(); }, where);
}

void VirtualDesktop::expectPanelShown(bool shown, const Where &where)
{
    expect(
        shown ? "the panel is shown" : "the panel is hidden", [&] { return panel().has_value() == shown; },
        where);
}

void VirtualDesktop::expectFocus(const Application &application, const Where &where)
{
    expect(
        application.name() + " has the focus", [&] { return m_screen->hasFocus(application.window()); },
        where);
}

void VirtualDesktop::expectNoKeyDown(const Where &where)
{
    expect(
        "no key is down", [this] { return m_screen->heldKeys().empty(); }, where);
}

void VirtualDesktop::expect(const std::string &what, const std::function<bool()> &condition,
                            const Where &where, std::chrono::milliseconds deadline) const
{
    if (!waitUntil(condition, deadline)) {
        throw Unmet("expected that " + what, where);
    }
}

void VirtualDesktop::screenshot(const std::filesystem::path &file) const
{
    m_screen->capture().savePng(file);
}

std::string VirtualDesktop::logs() const
{
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(m_session.logs())) {
        files.push_back(entry.path());
    }
    std::ranges::sort(files);
    std::string text;
    for (const std::filesystem::path &file : files) {
        text += "== " + file.filename().string() + "\n" + contentOf(file);
    }
    return text;
}

} // namespace stavelin::e2e
