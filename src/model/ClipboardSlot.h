#pragma once

#include "daemon/ClipboardSlotData.h"
#include "support/Clock.h"

#include <cstdint>
#include <string>
#include <vector>

namespace stavelin::model {

/// One numbered slot of text.
struct ClipboardSlot
{
    std::int64_t slotIndex = 0; ///< the panel shows slots 1 to 9
    std::string content;        ///< UTF-8; empty means an empty slot
    support::Timestamp updatedAt;

    /// Two slots with the same id are the same row.
    [[nodiscard]] std::int64_t id() const { return slotIndex; }

    friend bool operator==(const ClipboardSlot &, const ClipboardSlot &) = default;
};

/// Never fails: a date that does not parse becomes `now`, the moment of the conversion.
[[nodiscard]] ClipboardSlot makeClipboardSlot(daemon::ClipboardSlotData data, support::Timestamp now);

/// Keeps the order of the wire.
[[nodiscard]] std::vector<ClipboardSlot> makeClipboardSlots(std::vector<daemon::ClipboardSlotData> data,
                                                            support::Timestamp now);

/// Whether a person would see no difference: same length and, place by place, the same slotIndex and content.
[[nodiscard]] bool sameClipboardSlots(const std::vector<ClipboardSlot> &a,
                                      const std::vector<ClipboardSlot> &b);

} // namespace stavelin::model
