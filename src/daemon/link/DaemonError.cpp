#include "daemon/link/DaemonError.h"

#include <utility>

namespace stavelin::daemon {

std::string DaemonError::description() const
{
    switch (kind) {
    case Kind::serverError:
        return message;
    case Kind::notConnected:
        return "Not connected to daemon";
    case Kind::disconnected:
        return "Disconnected from daemon";
    case Kind::timeout:
        return "Request timed out";
    case Kind::invalidResponse:
        return "Invalid response from daemon";
    }
    std::unreachable();
}

namespace {

struct Describe
{
    std::string operator()(const DaemonError &error) const { return error.description(); }
    std::string operator()(const TransportError &error) const { return error.description; }
    std::string operator()(const EncodingError &error) const { return error.description; }
};

} // namespace

std::string description(const LinkError &error)
{
    return std::visit(Describe{}, error);
}

} // namespace stavelin::daemon
