#pragma once

#include "platform/KeySender.h"

#include <memory>
#include <thread>

namespace stavelin::support {
class Log;
}

namespace stavelin::platform::x11 {

class X11ExpectedKeys;
class X11KeySenderThread;

/// Types for the user through the XTEST extension, from a thread and a connection of its own, which are made
/// with the first key. Both mappings of the modifiers send the same: the physical Ctrl, which is what
/// applications understand.
class X11KeySender final : public KeySender
{
public:
    /// `log` outlives this object. `expectedKeys` is the event tap's.
    X11KeySender(support::Log &log, std::shared_ptr<X11ExpectedKeys> expectedKeys);
    ~X11KeySender() override;
    X11KeySender(const X11KeySender &) = delete;
    X11KeySender &operator=(const X11KeySender &) = delete;

    /// c and v; other keys are refused with a line in the log. Any thread.
    void simulateKeyPress(std::int64_t keyCode) override;

private:
    std::unique_ptr<X11KeySenderThread> m_worker;
    std::thread m_thread;
};

} // namespace stavelin::platform::x11
