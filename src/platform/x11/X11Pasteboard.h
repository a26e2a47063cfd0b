#pragma once

#include "platform/Pasteboard.h"

#include <memory>
#include <thread>

namespace stavelin::support {
class HandOver;
class Log;
} // namespace stavelin::support

namespace stavelin::platform::x11 {

class X11PasteboardThread;

/// Reads the CLIPBOARD selection of an X11 session (DISPLAY) from a thread and a connection of its own, so
/// that a program that owns it and hangs holds up nobody.
class X11Pasteboard final : public Pasteboard
{
public:
    /// Watches from now on. Both outlive this object; `mainThread` runs the completions.
    X11Pasteboard(support::HandOver &mainThread, support::Log &log);
    ~X11Pasteboard() override;
    X11Pasteboard(const X11Pasteboard &) = delete;
    X11Pasteboard &operator=(const X11Pasteboard &) = delete;

    [[nodiscard]] std::uint64_t changeCount() const override;
    void readString(std::uint64_t before, StringCompletion completion) override;

private:
    support::HandOver &m_mainThread;
    /// What completions hold weakly: none runs after this object has gone.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    std::unique_ptr<X11PasteboardThread> m_worker;
    std::thread m_thread;
};

} // namespace stavelin::platform::x11
