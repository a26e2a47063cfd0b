#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include <sys/types.h>

namespace stavelin::server {

/// The two ends of a TCP connection on the loopback interface, in host byte order, as the other end sees
/// them.
struct PeerConnection
{
    std::uint32_t peerAddress;
    std::uint16_t peerPort;
    std::uint32_t ownAddress;
    std::uint16_t ownPort;
};

/// Whose the other end is: asked of the kernel (NETLINK_SOCK_DIAG, by the exact four-tuple), else read from
/// `procRoot`/net/tcp. Nothing when neither knows it, or when that end is not an established connection that
/// a process still holds: a closed one seems to be root's.
[[nodiscard]] std::optional<uid_t> uidOfPeer(const PeerConnection &connection,
                                             const std::filesystem::path &procRoot = "/proc");

/// The part that reads the table, for kernels without the other.
[[nodiscard]] std::optional<uid_t> uidOfPeerFromTable(const PeerConnection &connection,
                                                      const std::filesystem::path &procRoot);

} // namespace stavelin::server
