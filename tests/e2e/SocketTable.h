#pragma once

#include <cstdint>

#include <sys/types.h>

namespace stavelin::e2e {

/// True while a socket of this network namespace listens on this port of 127.0.0.1 or of all addresses. The
/// listener does not notice that it was looked for.
[[nodiscard]] bool isListenedOn(std::uint16_t port);

/// How many bytes the process has read from its connection to this port of 127.0.0.1; 0 without a connection,
/// and while there is something that it has not read yet. The process must be one that this one may look
/// into, such as a child.
[[nodiscard]] std::uint64_t bytesReadFromLoopbackPort(pid_t process, std::uint16_t port);

} // namespace stavelin::e2e
