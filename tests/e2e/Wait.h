#pragma once

#include <chrono>
#include <thread>

namespace stavelin::e2e {

/// Long enough for a loaded machine; what is awaited normally comes within milliseconds.
constexpr std::chrono::seconds patience{10};

/// For a program that may have to be read from the disk first.
constexpr std::chrono::seconds startingPatience{30};

/// Asks `condition` again and again until it holds; false when it does not within `deadline`.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds deadline = patience)
{
    constexpr std::chrono::milliseconds pause{5};
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(pause);
    }
    return true;
}

} // namespace stavelin::e2e
