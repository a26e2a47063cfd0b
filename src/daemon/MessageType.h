#pragma once

#include <optional>
#include <string_view>

namespace stavelin::daemon {

/// What a frame is. Raw values on the wire: "request", "response", "event".
enum class MessageType { request, response, event };

[[nodiscard]] std::string_view rawValue(MessageType type);
/// Exactly the three raw values, case-sensitive; nothing for any other text.
[[nodiscard]] std::optional<MessageType> messageTypeFromRawValue(std::string_view raw);

} // namespace stavelin::daemon
