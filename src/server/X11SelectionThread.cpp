#include "server/X11SelectionThread.h"

#include <array>
#include <cstdlib>
#include <optional>
#include <thread>
#include <utility>

#include <poll.h>
#include <xcb/xcb.h>

namespace stavelin::server {

using platform::x11::selection::SelectionContent;
using platform::x11::selection::SelectionError;
using platform::x11::selection::SelectionOwner;

namespace {

constexpr std::chrono::seconds longestFarewell{1};

struct Disconnect
{
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
};

const xcb_screen_t *screenNumber(xcb_connection_t *connection, int number)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 1 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.data;
}

} // namespace

/// What the thread works on.
class X11SelectionThread::Loop
{
public:
    explicit Loop(SessionEnvironment environment) : m_environment(std::move(environment)) {}

    void run()
    {
        while (!m_isStopping) {
            serve();
            std::array<pollfd, 2> descriptors{
                {{m_handOver.descriptor(), POLLIN, 0},
                 {m_connection ? xcb_get_file_descriptor(m_connection.get()) : -1, POLLIN, 0}}};
            ::poll(descriptors.data(), descriptors.size(), timeout());
            if (descriptors[0].revents != 0)
                m_handOver.run();
        }
        disconnect();
        const std::lock_guard lock(m_mutex);
        m_hasEnded = true;
        m_ended.notify_all();
    }

    void own(SelectionContent content, Deadline deadline, Done done)
    {
        m_handOver.post([this, content = std::move(content), deadline, done = std::move(done)]() mutable {
            done(ownNow(content, deadline));
        });
    }

    void stop()
    {
        m_handOver.post([this] { m_isStopping = true; });
        std::unique_lock lock(m_mutex);
        m_ended.wait_for(lock, longestFarewell, [this] { return m_hasEnded; });
    }

private:
    /// Handles what has come from the X server.
    void serve()
    {
        if (!m_connection)
            return;
        while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection.get())) {
            m_owner->handle(*event);
            std::free(event);
        }
        if (xcb_connection_has_error(m_connection.get()) != 0)
            disconnect();
        else
            m_owner->expire(SelectionOwner::SteadyClock::now());
    }

    /// Milliseconds for poll(): without end while no transfer is under way.
    [[nodiscard]] int timeout() const
    {
        const auto deadline = m_owner ? m_owner->nextDeadline() : std::nullopt;
        if (!deadline)
            return -1;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(*deadline - SelectionOwner::SteadyClock::now());
        return static_cast<int>(std::max(left.count(), decltype(left.count()){0}));
    }

    std::expected<void, PasteboardError> ownNow(const SelectionContent &content, Deadline deadline)
    {
        // An X server that has gone may show only when it is spoken to; then there may be another by now.
        for (int attempt = 1;; ++attempt) {
            serve();
            if (!m_connection) {
                if (auto connected = connect(); !connected)
                    return connected;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - SelectionOwner::SteadyClock::now());
            // Whoever asked has been told that it failed, and must not be surprised by the text later.
            if (left.count() <= 0)
                return std::unexpected(PasteboardError{"The X server did not answer in time"});
            const auto owned = m_owner->own("CLIPBOARD", content, left);
            if (owned)
                return {};
            if (owned.error() != SelectionError::connectionLost || attempt == 2)
                return std::unexpected(PasteboardError{"The clipboard could not be taken: " +
                                                       std::string(description(owned.error()))});
            disconnect();
        }
    }

    std::expected<void, PasteboardError> connect()
    {
        std::string tried;
        for (const SessionEnvironment::Display &display : m_environment.displays()) {
            // xcb asks the environment for the key's place and nothing else; no other thread looks there.
            if (display.authority)
                ::setenv("XAUTHORITY", display.authority->c_str(), 1);
            else
                ::unsetenv("XAUTHORITY");
            int screen = 0;
            m_connection.reset(xcb_connect(display.name.c_str(), &screen));
            if (xcb_connection_has_error(m_connection.get()) == 0) {
                m_owner.emplace(m_connection.get(), screenNumber(m_connection.get(), screen));
                return {};
            }
            m_connection.reset();
            tried += (tried.empty() ? "" : ", ") + display.name;
        }
        if (!tried.empty())
            return std::unexpected(PasteboardError{"The X11 display " + tried + " cannot be reached"});
        if (m_environment.find("WAYLAND_DISPLAY"))
            return std::unexpected(
                PasteboardError{"This Wayland session has no X11 display to paste through"});
        return std::unexpected(PasteboardError{"There is no X11 display to paste on"});
    }

    void disconnect()
    {
        m_owner.reset();
        m_connection.reset();
    }

    SessionEnvironment m_environment;
    support::HandOver m_handOver;
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection; // either both or none
    std::optional<SelectionOwner> m_owner;
    bool m_isStopping = false;

    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_hasEnded = false;
};

X11SelectionThread::X11SelectionThread(SessionEnvironment environment)
    : m_loop(std::make_shared<Loop>(std::move(environment)))
{
    std::thread([loop = m_loop] { loop->run(); }).detach();
}

X11SelectionThread::~X11SelectionThread()
{
    m_loop->stop();
}

void X11SelectionThread::own(SelectionContent content, Deadline deadline, Done done)
{
    m_loop->own(std::move(content), deadline, std::move(done));
}

} // namespace stavelin::server
