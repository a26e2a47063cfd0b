#pragma once

#include <cstdint>
#include <string_view>

namespace stavelin::server {

/// Whether a handshake's Host header names this computer by one of its loopback names: 127.0.0.1, localhost
/// or [::1], with no port or with `port`. A web page that has made its own name point here (DNS rebinding)
/// sends that name.
[[nodiscard]] bool isLoopbackHost(std::string_view host, std::uint16_t port);

} // namespace stavelin::server
