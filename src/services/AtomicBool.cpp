#include "services/AtomicBool.h"

namespace stavelin::services {

bool AtomicBool::get() const
{
    const std::lock_guard lock(m_lock);
    return m_value;
}

void AtomicBool::set(bool value)
{
    const std::lock_guard lock(m_lock);
    m_value = value;
}

} // namespace stavelin::services
