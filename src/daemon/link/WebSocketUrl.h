#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace stavelin::daemon {

/// The two parts of a "ws://host:port" address.
struct WebSocketUrl
{
    std::string_view host; ///< refers into the text that it was read from
    std::uint16_t port = 0;

    /// Nothing unless `text` has exactly that form: a host without a colon, a port from 1 to 65535, no path.
    [[nodiscard]] static constexpr std::optional<WebSocketUrl> parse(std::string_view text)
    {
        constexpr std::string_view scheme = "ws://";
        if (!text.starts_with(scheme))
            return std::nullopt;
        text.remove_prefix(scheme.size());
        const auto colon = text.find(':');
        if (colon == 0 || colon == std::string_view::npos)
            return std::nullopt;
        const auto port = parsePort(text.substr(colon + 1));
        if (!port)
            return std::nullopt;
        return WebSocketUrl{text.substr(0, colon), *port};
    }

private:
    [[nodiscard]] static constexpr std::optional<std::uint16_t> parsePort(std::string_view digits)
    {
        constexpr unsigned highestPort = 65535;
        unsigned port = 0;
        for (const char digit : digits) {
            if (digit < '0' || digit > '9')
                return std::nullopt;
            port = port * 10 + static_cast<unsigned>(digit - '0');
            if (port > highestPort)
                return std::nullopt;
        }
        if (port == 0)
            return std::nullopt;
        return static_cast<std::uint16_t>(port);
    }
};

} // namespace stavelin::daemon
