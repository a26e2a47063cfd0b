#pragma once

#include "daemon/ProtocolMessage.h"
#include "daemon/StatePayload.h"
#include "daemon/WireError.h"

#include <expected>
#include <string>

namespace stavelin::daemon {

// All write JSON as UTF-8 without white space; an absent optional member is left out. What JSON cannot hold
// (a number that is not finite, a text that is not well-formed UTF-8) fails with "Unable to encode value" and
// its coding path.

[[nodiscard]] std::expected<std::string, EncodingError> encode(const AnyCodable &value);
[[nodiscard]] std::expected<std::string, EncodingError> encode(const ProtocolMessage &message);
[[nodiscard]] std::expected<std::string, EncodingError> encode(const StatePayload &state);

/// A whole "state.updated" event frame with this state as its payload and `id` as its id.
[[nodiscard]] std::expected<std::string, EncodingError> encodeStateEvent(const std::string &id,
                                                                         const StatePayload &state);

} // namespace stavelin::daemon
