#include "platform/x11/X11KeySender.h"

#include "platform/x11/X11KeySenderThread.h"

#include <utility>

namespace stavelin::platform::x11 {

X11KeySender::X11KeySender(support::Log &log, std::shared_ptr<X11ExpectedKeys> expectedKeys)
    : m_worker(std::make_unique<X11KeySenderThread>(log, std::move(expectedKeys))),
      m_thread([this] { m_worker->run(); })
{}

X11KeySender::~X11KeySender()
{
    m_worker->stop();
    m_thread.join();
}

void X11KeySender::simulateKeyPress(std::int64_t keyCode)
{
    m_worker->send(keyCode);
}

} // namespace stavelin::platform::x11
