#pragma once

#include "daemon/WireError.h"

#include <string>
#include <variant>

namespace stavelin::daemon {

/// Why an operation on the daemon failed.
struct DaemonError
{
    enum class Kind { serverError, notConnected, disconnected, timeout, invalidResponse };

    Kind kind = Kind::serverError;
    std::string message{}; ///< serverError only: the daemon's own words

    /// For people: the carried message of a serverError, a fixed sentence for the others.
    [[nodiscard]] std::string description() const;

    friend bool operator==(const DaemonError &, const DaemonError &) = default;
};

/// The socket failed: refused, reset, closed by the other side, or not to be trusted.
struct TransportError
{
    std::string description;

    friend bool operator==(const TransportError &, const TransportError &) = default;
};

/// What an operation of the connector fails with: its own error, or the transport's or encoder's unchanged.
using LinkError = std::variant<DaemonError, TransportError, EncodingError>;

[[nodiscard]] std::string description(const LinkError &error);

} // namespace stavelin::daemon
