#pragma once

#include "daemon/ClipboardSlotData.h"
#include "daemon/FileReferenceData.h"

#include <vector>

namespace stavelin::daemon {

/// The payload of the event "state.updated": all that the daemon holds.
struct StatePayload
{
    std::vector<ClipboardSlotData> clipboard_slots;
    std::vector<FileReferenceData> file_references; ///< in board order

    friend bool operator==(const StatePayload &, const StatePayload &) = default;
};

} // namespace stavelin::daemon
