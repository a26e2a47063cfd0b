#include "testkit/NestedX.h"

#include "testkit/ChildProcess.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <utility>

namespace stavelin::testkit {

namespace {

constexpr int firstDisplay = 50;
constexpr int lastDisplay = 119;
constexpr int startMilliseconds = 10'000;

/// A display number that no other test uses at the same time. The servers' own lock files do not do: a server
/// in another process namespace takes them for leftovers of a dead one.
class DisplayNumber
{
public:
    explicit DisplayNumber(int number)
    {
        const std::string path = "/tmp/.stavelin-test-display-" + std::to_string(number);
        m_descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        m_isOurs = m_descriptor >= 0 && ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0;
    }
    ~DisplayNumber()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    DisplayNumber(const DisplayNumber &) = delete;
    DisplayNumber &operator=(const DisplayNumber &) = delete;

    [[nodiscard]] bool isOurs() const { return m_isOurs; }

private:
    int m_descriptor = -1;
    bool m_isOurs = false;
};

/// An X server on a display number of its own.
class Server
{
public:
    /// `arguments` go between the display and the options that every server gets.
    Server(const std::string &program, const std::vector<std::string> &arguments,
           const std::vector<std::string> &environment)
    {
        for (int number = firstDisplay; number <= lastDisplay; ++number) {
            auto lock = std::make_unique<DisplayNumber>(number);
            if (lock->isOurs() && start(program, number, arguments, environment)) {
                m_lock = std::move(lock);
                m_display = ':' + std::to_string(number);
                return;
            }
        }
        throw std::runtime_error(program + " does not start on any display");
    }

    [[nodiscard]] const std::string &display() const { return m_display; }

private:
    bool start(const std::string &program, int number, const std::vector<std::string> &arguments,
               const std::vector<std::string> &environment)
    {
        int ready[2];
        if (::pipe2(ready, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        std::vector<std::string> command{program, ':' + std::to_string(number)};
        command.insert(command.end(), arguments.begin(), arguments.end());
        command.insert(command.end(), {"-displayfd", "3", "-nolisten", "tcp", "-noreset"});
        m_process.emplace(command, environment, ready[1]);
        ::close(ready[1]);
        const bool isReady = hasSaidItsNumber(ready[0]);
        ::close(ready[0]);
        if (!isReady)
            m_process.reset();
        return isReady;
    }

    /// The server writes its number, a line, when it accepts clients; when it ends instead, the pipe closes.
    static bool hasSaidItsNumber(int descriptor)
    {
        for (char character = 0; character != '\n';) {
            pollfd readable{descriptor, POLLIN, 0};
            if (::poll(&readable, 1, startMilliseconds) != 1 || ::read(descriptor, &character, 1) != 1)
                return false;
        }
        return true;
    }

    std::unique_ptr<DisplayNumber> m_lock;
    std::optional<ChildProcess> m_process;
    std::string m_display;
};

std::string screenSize(int width, int height)
{
    return std::to_string(width) + 'x' + std::to_string(height);
}

} // namespace

struct NestedX::Private
{
    Private(int width, int height)
        : outer("Xvfb", {"-screen", "0", screenSize(width, height) + "x24"}, {}),
          inner("Xephyr", {"-screen", screenSize(width, height), "-no-host-grab"},
                {"DISPLAY=" + outer.display()})
    {
        connection = xcb_connect(outer.display().c_str(), nullptr);
        innerConnection = xcb_connect(inner.display().c_str(), nullptr);
        if (xcb_connection_has_error(connection) != 0 || xcb_connection_has_error(innerConnection) != 0)
            throw std::runtime_error("no connection to the nested servers");
        root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        // The outer server's repeats would arrive in the inner one as if the key had been let go and pressed
        // again.
        const std::uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
        xcb_change_keyboard_control(connection, XCB_KB_AUTO_REPEAT_MODE, &off);
    }
    ~Private()
    {
        xcb_disconnect(innerConnection);
        xcb_disconnect(connection);
    }
    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;

    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0)
    {
        xcb_test_fake_input(connection, type, detail, XCB_CURRENT_TIME, root, static_cast<std::int16_t>(x),
                            static_cast<std::int16_t>(y), 0);
        // An answer comes after all that was asked before: the outer server has told the inner one, and that
        // one has been through its own loop once.
        answer(connection);
        answer(innerConnection);
    }
    static void answer(xcb_connection_t *server)
    {
        std::free(xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    }

    Server outer;
    Server inner;
    xcb_connection_t *connection = nullptr;
    xcb_connection_t *innerConnection = nullptr;
    xcb_window_t root = XCB_NONE;
};

NestedX::NestedX(int width, int height) : m_private(std::make_unique<Private>(width, height))
{
    // Without a window manager the keys go where the pointer is.
    movePointer(width / 2, height / 2);
}

NestedX::~NestedX() = default;

const std::string &NestedX::outerDisplay() const
{
    return m_private->outer.display();
}

const std::string &NestedX::innerDisplay() const
{
    return m_private->inner.display();
}

void NestedX::press(std::uint8_t keycode)
{
    m_private->fake(XCB_KEY_PRESS, keycode);
}

void NestedX::release(std::uint8_t keycode)
{
    m_private->fake(XCB_KEY_RELEASE, keycode);
}

void NestedX::tap(std::uint8_t keycode)
{
    press(keycode);
    release(keycode);
}

void NestedX::chord(const std::vector<std::uint8_t> &keycodes)
{
    for (const std::uint8_t keycode : keycodes)
        press(keycode);
    for (auto keycode = keycodes.rbegin(); keycode != keycodes.rend(); ++keycode)
        release(*keycode);
}

void NestedX::movePointer(int x, int y)
{
    m_private->fake(XCB_MOTION_NOTIFY, 0, x, y);
}

void NestedX::pressButton(std::uint8_t button)
{
    m_private->fake(XCB_BUTTON_PRESS, button);
}

void NestedX::releaseButton(std::uint8_t button)
{
    m_private->fake(XCB_BUTTON_RELEASE, button);
}

} // namespace stavelin::testkit
