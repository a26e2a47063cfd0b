#pragma once

#include "platform/x11/X11Connection.h"
#include "support/HandOver.h"
#include "support/WakeUp.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace stavelin::support {
class Log;
}

namespace stavelin::platform::x11 {

/// What the pasteboard's thread does: it counts the changes of CLIPBOARD and reads it when asked.
class X11PasteboardThread
{
public:
    using Answer = std::move_only_function<void(std::optional<std::string>)>;

    explicit X11PasteboardThread(support::Log &log);

    /// Begins to watch. Before run(), on any thread; without a display there is nothing to watch, which the
    /// log is told.
    void start();
    /// Returns after stop().
    void run();

    void stop(); ///< Any thread.
    /// Calls `answer` on the pasteboard's thread, once, unless that is stopped first: then it goes with this
    /// object. Any thread.
    void read(std::uint64_t before, Answer answer);
    [[nodiscard]] std::uint64_t changeCount() const { return m_changeCount; } ///< Any thread.

private:
    using TimePoint = std::chrono::steady_clock::time_point;
    struct Wish
    {
        std::uint64_t before;
        TimePoint deadline;
        Answer answer;
    };

    [[nodiscard]] bool connect();
    void handle(const xcb_generic_event_t &event);
    void readEvents();
    void serveWishes();
    [[nodiscard]] std::optional<std::string> readText();

    support::Log &m_log;
    support::HandOver m_tasks;
    support::WakeUp m_stop;
    std::atomic<bool> m_isStopping = false;
    std::atomic<std::uint64_t> m_changeCount = 0;
    std::unique_ptr<X11Connection> m_connection; // null while there is none
    std::uint8_t m_fixesEventCode = 0;
    std::deque<Wish> m_wishes; // in the order in which they were asked for
};

} // namespace stavelin::platform::x11
