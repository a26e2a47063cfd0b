#pragma once

#include "support/Clock.h"

#include <optional>
#include <string>
#include <string_view>

namespace stavelin::support {

/// Parses an ISO 8601 internet date-time (RFC 3339 without fractional seconds): "2024-05-01T10:00:00Z" or
/// with a numeric offset, "2024-05-01T12:00:00+02:00" or "+0200". Anything else (a fraction, a date alone, no
/// zone, a day that the month does not have, surrounding space) yields nothing, and so does a moment that a
/// Timestamp cannot hold (which reaches from 1677-09-21 to 2262-04-11).
[[nodiscard]] std::optional<Timestamp> parseIsoDate(std::string_view text);

/// Writes `time` in UTC, cut to whole seconds: "2024-05-01T10:00:00Z". Years 0000 to 9999.
[[nodiscard]] std::string formatIsoDate(Timestamp time);

} // namespace stavelin::support
