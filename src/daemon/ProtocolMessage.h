#pragma once

#include "daemon/AnyCodable.h"
#include "daemon/ErrorPayload.h"
#include "daemon/MessageType.h"

#include <optional>
#include <string>

namespace stavelin::daemon {

/// The envelope of every frame in either direction: one JSON object in one WebSocket text frame.
struct ProtocolMessage
{
    std::string id; ///< a response carries the id of the request that it answers
    MessageType type = MessageType::request;
    std::optional<std::string> method;   ///< of a request its method, of an event its name
    std::optional<AnyCodable> payload;   ///< arguments, result or data; requests send an object
    std::optional<ErrorPayload> error{}; ///< on a failed response

    friend bool operator==(const ProtocolMessage &, const ProtocolMessage &) = default;
};

} // namespace stavelin::daemon
