#pragma once

#include <cstdint>

#include <sys/types.h>

namespace stavelin::e2e {

/// True while a socket of this network namespace listens on this port of 127.0.0.1 or of all addresses. The
/// listener does not notice that it was looked for.
[[nodiscard]] bool isListenedOn(std::uint16_t port);

/// True while the process has an established TCP connection to this port of 127.0.0.1.
[[nodiscard]] bool hasConnectionToLoopbackPort(pid_t process, std::uint16_t port);

} // namespace stavelin::e2e
