#pragma once

#include <chrono>
#include <cstddef>

namespace stavelin::server {

/// How much the daemon takes from others. Sizes in bytes.
struct Limits
{
    static constexpr std::size_t slotText = std::size_t{64} * 1024 * 1024;
    /// Of a frame in either direction. The state of all slots must fit, or no client could be told of it.
    static constexpr std::size_t frame = std::size_t{256} * 1024 * 1024;

    std::size_t connections = 32;
    std::chrono::milliseconds handshake{5000};
    /// How long a client may leave a frame unread before it is dropped.
    std::chrono::milliseconds stall{30000};
    /// A client with this many requests whose answers it has not taken is not read from until it takes one.
    std::size_t openRequests = 16;
};

} // namespace stavelin::server
