#include "server/HandshakeRules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace stavelin::server {

bool isLoopbackHost(std::string_view host, std::uint16_t port)
{
    constexpr std::array<std::string_view, 3> names{"127.0.0.1", "localhost", "[::1]"};
    std::string lower(host);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
    const std::string portSuffix = ":" + std::to_string(port);
    return std::ranges::any_of(names, [&](std::string_view name) {
        return lower.starts_with(name) &&
               (lower.size() == name.size() || lower.substr(name.size()) == portSuffix);
    });
}

} // namespace stavelin::server
