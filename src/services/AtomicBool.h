#pragma once

#include <mutex>

namespace stavelin::services {

/// A boolean that any thread reads and writes. Starts false.
class AtomicBool
{
public:
    [[nodiscard]] bool get() const;
    void set(bool value);

private:
    mutable std::mutex m_lock;
    bool m_value = false;
};

} // namespace stavelin::services
