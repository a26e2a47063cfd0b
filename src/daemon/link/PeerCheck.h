#pragma once

#include "daemon/link/DaemonError.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <string>

namespace stavelin::daemon {

/// One end of a TCP connection.
struct SocketAddress
{
    std::string host; ///< numeric: "127.0.0.1"
    std::uint16_t port = 0;

    friend bool operator==(const SocketAddress &, const SocketAddress &) = default;
};

/// Decides whether whoever listens at the other end may be talked to. Called once per connection on the
/// transport's thread, when the TCP connection stands and before anything is sent. An error ends the
/// connection with that error.
using PeerCheck = std::function<std::expected<void, TransportError>(const SocketAddress &local,
                                                                    const SocketAddress &remote)>;

[[nodiscard]] inline std::expected<void, TransportError> acceptAnyPeer(const SocketAddress &,
                                                                       const SocketAddress &)
{
    return {};
}

} // namespace stavelin::daemon
