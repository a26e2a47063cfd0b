#include "model/ClipboardSlot.h"

#include "support/IsoDate.h"

#include <algorithm>
#include <utility>

namespace stavelin::model {

ClipboardSlot makeClipboardSlot(daemon::ClipboardSlotData data, support::Timestamp now)
{
    return {.slotIndex = data.slot_index,
            .content = std::move(data.content),
            .updatedAt = support::parseIsoDate(data.updated_at).value_or(now)};
}

std::vector<ClipboardSlot> makeClipboardSlots(std::vector<daemon::ClipboardSlotData> data,
                                              support::Timestamp now)
{
    std::vector<ClipboardSlot> slots;
    slots.reserve(data.size());
    for (daemon::ClipboardSlotData &slot : data)
        slots.push_back(makeClipboardSlot(std::move(slot), now));
    return slots;
}

bool sameClipboardSlots(const std::vector<ClipboardSlot> &a, const std::vector<ClipboardSlot> &b)
{
    return std::ranges::equal(a, b, [](const ClipboardSlot &x, const ClipboardSlot &y) {
        return x.slotIndex == y.slotIndex && x.content == y.content;
    });
}

} // namespace stavelin::model
