#pragma once

#include "e2e/Picture.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>
#include <xcb/xcb.h>

namespace stavelin::e2e {

struct Rectangle
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// The applications' X server, seen from outside of them: windows, focus, keys, bell, pixels.
class Screen
{
public:
    /// Throws Unmet when the display cannot be opened.
    explicit Screen(const std::string &display);
    ~Screen();
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    [[nodiscard]] Rectangle size() const;
    [[nodiscard]] bool hasWindowManager() const;

    /// The managed, mapped windows of a process, oldest first.
    [[nodiscard]] std::vector<xcb_window_t> windowsOf(pid_t process) const;
    [[nodiscard]] std::string titleOf(xcb_window_t window) const;
    [[nodiscard]] xcb_window_t activeWindow() const;

    /// True when key events go to this window or one inside it.
    [[nodiscard]] bool hasFocus(xcb_window_t window) const;

    /// Asks the window manager to raise and focus the window, as a taskbar does.
    void activate(xcb_window_t window) const;

    /// Asks the window manager to give the window's frame this place.
    void place(xcb_window_t window, const Rectangle &place) const;

    /// Where the window's content is on the screen.
    [[nodiscard]] Rectangle placeOf(xcb_window_t window) const;

    /// The key codes that are logically down.
    [[nodiscard]] std::vector<xcb_keycode_t> heldKeys() const;

    /// The window that holds the clipboard; another one after another program has copied something.
    [[nodiscard]] xcb_window_t clipboardOwner() const;

    /// How often the bell was rung since the screen was opened.
    [[nodiscard]] int bellCount();

    [[nodiscard]] Picture capture() const;
    [[nodiscard]] Picture capture(xcb_window_t window) const;

    void paintBackground(std::uint32_t colour) const;

    /// The key code whose `column` (0 plain, 1 with Shift) is this symbol; 0 when no key has it.
    [[nodiscard]] xcb_keycode_t keyCodeOf(xcb_keysym_t symbol, int column) const;

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };

    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    [[nodiscard]] std::string property(xcb_window_t window, std::string_view name) const;
    [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view name) const;
    void tellWindowManager(xcb_window_t window, std::string_view message,
                           const std::vector<std::uint32_t> &data) const;
    [[nodiscard]] Picture captureDrawable(xcb_drawable_t drawable, int width, int height) const;
    void listenToBell();

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_screen_t *m_screen = nullptr;
    std::uint8_t m_xkbFirstEvent = 0;
    int m_bellCount = 0;
};

} // namespace stavelin::e2e
