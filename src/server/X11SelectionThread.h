#pragma once

#include "platform/x11/selection/SelectionOwner.h"
#include "server/Pasteboard.h"
#include "server/SessionEnvironment.h"
#include "support/HandOver.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace stavelin::server {

/// The thread that owns the CLIPBOARD selection and serves it. It connects to the display when the first text
/// comes and anew when the X server has gone. It may outlive this object for as long as an X server holds it
/// up.
class X11SelectionThread
{
public:
    using Deadline = std::chrono::steady_clock::time_point;
    /// Runs on the selection's thread.
    using Done = std::move_only_function<void(std::expected<void, PasteboardError>)>;

    explicit X11SelectionThread(SessionEnvironment environment);
    /// Gives the selection up. Waits for the thread, at most a second.
    ~X11SelectionThread();
    X11SelectionThread(const X11SelectionThread &) = delete;
    X11SelectionThread &operator=(const X11SelectionThread &) = delete;

    /// Offers a text as CLIPBOARD, unless the deadline has passed by the time when its turn comes.
    void own(platform::x11::selection::SelectionContent content, Deadline deadline, Done done);

private:
    class Loop;
    std::shared_ptr<Loop> m_loop;
};

} // namespace stavelin::server
