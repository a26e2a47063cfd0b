#include "support/WakeUp.h"

#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace stavelin::support {

WakeUp::WakeUp() : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

WakeUp::~WakeUp()
{
    ::close(m_descriptor);
}

void WakeUp::signal() const
{
    // Fails only when the counter is full, and then the descriptor is readable already.
    [[maybe_unused]] const int result = ::eventfd_write(m_descriptor, 1);
}

void WakeUp::clear() const
{
    // Fails only when nothing was signalled.
    eventfd_t count = 0;
    [[maybe_unused]] const int result = ::eventfd_read(m_descriptor, &count);
}

} // namespace stavelin::support
