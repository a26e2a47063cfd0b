#pragma once

#include "daemon/AnyCodable.h"
#include "daemon/WireError.h"

#include <expected>
#include <string_view>

namespace stavelin::daemon {

/// Reads any JSON text, also integers that do not fit 64 bits, which become doubles. Slower than the reader
/// that WireDecoder begins with and used for the frames that one refuses for a number; the same strictness.
[[nodiscard]] std::expected<AnyCodable, DecodingError> parseExactJson(std::string_view json);

} // namespace stavelin::daemon
