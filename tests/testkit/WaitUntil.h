#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace stavelin::testkit {

/// Looks again and again, for tests of what other processes and threads do; false when the condition does not
/// hold within ten seconds.
inline bool waitUntil(const std::function<bool()> &condition)
{
    using namespace std::chrono_literals;
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

} // namespace stavelin::testkit
