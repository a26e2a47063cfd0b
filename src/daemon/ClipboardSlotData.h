#pragma once

#include <cstdint>
#include <string>

namespace stavelin::daemon {

/// A slot as the daemon writes it; the members are named as on the wire.
struct ClipboardSlotData
{
    std::int64_t slot_index = 0;
    std::string content;    ///< empty for an empty slot
    std::string updated_at; ///< ISO 8601 date-time without fractional seconds, "2024-05-01T10:00:00Z"

    friend bool operator==(const ClipboardSlotData &, const ClipboardSlotData &) = default;
};

} // namespace stavelin::daemon
