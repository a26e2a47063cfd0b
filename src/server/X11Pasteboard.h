#pragma once

#include "server/LeveledLog.h"
#include "server/Pasteboard.h"
#include "server/SessionEnvironment.h"
#include "server/X11SelectionThread.h"

#include <memory>
#include <optional>
#include <string>

#include <boost/asio/io_context.hpp>

namespace stavelin::server {

/// The CLIPBOARD selection of the user's X11 display (never PRIMARY: a program that loses PRIMARY deselects
/// its text, and a paste would no longer replace it). A thread of its own owns and serves it, from the first
/// put() on, so that an X server that hangs stops nothing else. All calls on the thread that runs `io`.
class X11Pasteboard final : public Pasteboard
{
public:
    /// `io` and `log` must outlive this object.
    X11Pasteboard(boost::asio::io_context &io, SessionEnvironment environment, LeveledLog &log);
    ~X11Pasteboard() override;

    void put(std::string text, bool isSecret, Completion completion) override;

private:
    class Desk;

    std::shared_ptr<Desk> m_desk;
    SessionEnvironment m_environment;
    std::optional<X11SelectionThread> m_thread; // none before the first put()
};

} // namespace stavelin::server
