#include "platform/x11/X11EventTap.h"

#include "platform/x11/X11TapLoop.h"

#include <utility>

namespace stavelin::platform::x11 {

X11EventTap::X11EventTap(std::unique_ptr<X11TapLoop> loop)
    : m_loop(std::move(loop)), m_thread([this] { m_loop->run(); })
{}

X11EventTap::~X11EventTap()
{
    m_loop->stop();
    m_thread.join();
}

void X11EventTap::waitingChanged()
{
    m_loop->waitingChanged();
}

std::vector<TapConflict> X11EventTap::conflicts() const
{
    return m_loop->conflicts();
}

} // namespace stavelin::platform::x11
