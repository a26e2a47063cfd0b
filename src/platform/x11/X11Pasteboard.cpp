#include "platform/x11/X11Pasteboard.h"

#include "platform/x11/X11PasteboardThread.h"
#include "support/HandOver.h"

#include <utility>

namespace stavelin::platform::x11 {

X11Pasteboard::X11Pasteboard(support::HandOver &mainThread, support::Log &log)
    : m_mainThread(mainThread), m_worker(std::make_unique<X11PasteboardThread>(log))
{
    // Here, not on the thread: what changes after this call is counted.
    m_worker->start();
    m_thread = std::thread([this] { m_worker->run(); });
}

X11Pasteboard::~X11Pasteboard()
{
    m_worker->stop();
    m_thread.join();
}

std::uint64_t X11Pasteboard::changeCount() const
{
    return m_worker->changeCount();
}

void X11Pasteboard::readString(std::uint64_t before, StringCompletion completion)
{
    m_worker->read(before, [&mainThread = m_mainThread, alive = std::weak_ptr(m_alive),
                            completion = std::move(completion)](std::optional<std::string> text) mutable {
        mainThread.post([alive, completion = std::move(completion), text = std::move(text)]() mutable {
            if (!alive.expired())
                completion(std::move(text));
        });
    });
}

} // namespace stavelin::platform::x11
