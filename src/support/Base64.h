#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace stavelin::support {

/// Decodes standard base64 (RFC 4648, section 4): padding required, no line break or other character, and the
/// unused bits of the last character zero. Anything else yields nothing. An empty text yields no bytes.
[[nodiscard]] std::optional<std::vector<std::byte>> decodeBase64(std::string_view text);

/// Encodes in the same alphabet, with padding, without line breaks.
[[nodiscard]] std::string encodeBase64(std::span<const std::byte> bytes);

} // namespace stavelin::support
