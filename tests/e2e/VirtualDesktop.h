#pragma once

#include "e2e/DaemonClient.h"
#include "e2e/DesktopProcess.h"
#include "e2e/Mousepad.h"
#include "e2e/PrivateSession.h"
#include "e2e/Screen.h"
#include "e2e/Wait.h"
#include "e2e/Witness.h"
#include "e2e/Xterm.h"
#include "testkit/NestedX.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <source_location>
#include <string>
#include <string_view>

namespace stavelin::e2e {

/// A desktop of its own for one test: two nested X servers (keys pressed on the outer one reach the
/// applications on the inner one like those of a real keyboard, apart from what programs synthesize), a
/// session with its own folders and message bus, a window manager, a tray, real applications, and Stavelin.
/// The verbs are what a person does and sees. Each expectation waits until it is met and throws Unmet when it
/// is not. Everything ends with the object.
///
/// Port 9847 must be free: it is to run under tests/testkit/in-private-namespaces.
class VirtualDesktop
{
public:
    using Where = std::source_location;

    VirtualDesktop();
    ~VirtualDesktop();
    VirtualDesktop(const VirtualDesktop &) = delete;
    VirtualDesktop &operator=(const VirtualDesktop &) = delete;

    // Keys. A chord is "Super+V"; its last key goes down last and up first.
    void press(std::string_view chord);
    void hold(std::string_view key);
    void release(std::string_view key);
    /// Types ASCII text on a US keyboard; a line feed is Return.
    void type(std::string_view text);

    /// Clicks twice at this place of the application's window, in pixels from its top left corner.
    void doubleClick(const Application &application, int x, int y);
    /// Clicks the icon in the tray, which holds no other.
    void clickTrayIcon();

    // Other applications. Each comes up with the focus and stays open until the desktop ends.
    Mousepad &openMousepad(const std::string &text = {});
    Xterm &openXterm();
    Witness &openWitness(const std::string &text = {});
    void focus(const Application &application, const Where &where = Where::current());
    void selectAll(const Application &application, const Where &where = Where::current());
    /// Selects everything, presses Ctrl+C and waits until the clipboard has changed hands, as people do
    /// without knowing. Another application must have held the clipboard before, or none.
    void copyAll(const Application &application, const Where &where = Where::current());
    /// Replaces what is in the application by typing, selects it and presses Super+C.
    void copyIn(const Application &application, std::string_view text, const Where &where = Where::current());

    // Stavelin.
    /// Starts the application and waits until its panel shows, its shortcuts work and it has the slots.
    void startStavelin(const Where &where = Where::current());
    /// Starts the daemon without the application, the way the application does: with one variable of its own,
    /// below a process that has the session's environment.
    void startDaemonAlone(const Where &where = Where::current());
    [[nodiscard]] DesktopProcess &stavelin() { return *m_stavelin; }
    /// The daemon's process; throws Unmet when there is not exactly one.
    [[nodiscard]] pid_t daemonProcess() const;
    /// Ends the daemon by this signal and waits until it is gone.
    void endDaemon(int signalNumber, const Where &where = Where::current());
    /// A client of the running daemon, connected on first use and anew after endDaemon().
    [[nodiscard]] DaemonClient &daemon();
    /// The panel's window while it is shown.
    [[nodiscard]] std::optional<xcb_window_t> panel() const;

    // What is to be seen.
    void expectSlot(int index, const std::string &text, const Where &where = Where::current());
    void expectText(Application &application, const std::string &text, const Where &where = Where::current());
    void expectInterruption(const Xterm &terminal, const Where &where = Where::current());
    void expectPanelShown(bool shown, const Where &where = Where::current());
    void expectFocus(const Application &application, const Where &where = Where::current());
    void expectNoKeyDown(const Where &where = Where::current());
    /// Waits for any condition; `what` completes "expected that ...".
    void expect(const std::string &what, const std::function<bool()> &condition,
                const Where &where = Where::current(), std::chrono::milliseconds deadline = patience) const;

    [[nodiscard]] Screen &screen() { return *m_screen; }
    void screenshot(const std::filesystem::path &file) const;
    /// What every program wrote, for the report of a failed test.
    [[nodiscard]] std::string logs() const;

private:
    struct Key
    {
        xcb_keycode_t code = 0;
        bool shifted = false;
    };

    void clickHere();
    [[nodiscard]] Key keyFor(xcb_keysym_t symbol) const;
    [[nodiscard]] std::unique_ptr<DesktopProcess> start(const std::string &name,
                                                        std::vector<std::string> arguments);
    [[nodiscard]] xcb_window_t windowOf(DesktopProcess &process, const std::string &name,
                                        const Where &where = Where::current());
    template <typename Kind>
    Kind &adopt(std::unique_ptr<Kind> application);
    [[nodiscard]] bool hasStavelinReadTheState() const;

    PrivateSession m_session;
    std::unique_ptr<testkit::NestedX> m_servers;
    Environment m_environment;
    std::unique_ptr<Screen> m_screen;
    std::unique_ptr<DesktopProcess> m_windowManager;
    std::unique_ptr<DesktopProcess> m_tray;
    std::vector<std::unique_ptr<Application>> m_applications;
    std::unique_ptr<DesktopProcess> m_daemonParent;
    std::unique_ptr<DesktopProcess> m_stavelin;
    std::unique_ptr<DaemonClient> m_daemon;
    int m_started = 0;
};

} // namespace stavelin::e2e
