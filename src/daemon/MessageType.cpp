#include "daemon/MessageType.h"

#include <array>

namespace stavelin::daemon {

std::string_view rawValue(MessageType type)
{
    switch (type) {
    case MessageType::request:
        return "request";
    case MessageType::response:
        return "response";
    case MessageType::event:
        return "event";
    }
    return {};
}

std::optional<MessageType> messageTypeFromRawValue(std::string_view raw)
{
    for (const MessageType type : {MessageType::request, MessageType::response, MessageType::event}) {
        if (rawValue(type) == raw)
            return type;
    }
    return std::nullopt;
}

} // namespace stavelin::daemon
