#include "model/ClipboardSlot.h"

#include "support/IsoDate.h"

#include <gtest/gtest.h>

namespace stavelin::model {
namespace {

using namespace std::chrono_literals;

const support::Timestamp now{std::chrono::seconds(1'700'000'000)};

TEST(ClipboardSlot, isBuiltFromTheWire)
{
    const ClipboardSlot slot =
        makeClipboardSlot({.slot_index = 3, .content = "hi", .updated_at = "2024-05-01T10:00:00Z"}, now);
    EXPECT_EQ(slot.slotIndex, 3);
    EXPECT_EQ(slot.id(), 3);
    EXPECT_EQ(slot.content, "hi");
    EXPECT_EQ(slot.updatedAt, support::parseIsoDate("2024-05-01T10:00:00Z"));
}

TEST(ClipboardSlot, withADateThatDoesNotParseIsFromNow)
{
    for (const auto *date : {"", "yesterday", "2024-05-01", "2024-05-01T10:00:00.123Z"})
        EXPECT_EQ(makeClipboardSlot({.slot_index = 1, .content = "", .updated_at = date}, now).updatedAt, now)
            << date;
}

TEST(ClipboardSlot, listsKeepTheOrderOfTheWire)
{
    const auto slots = makeClipboardSlots({{.slot_index = 2, .content = "b", .updated_at = ""},
                                           {.slot_index = 1, .content = "a", .updated_at = ""},
                                           {.slot_index = 2, .content = "c", .updated_at = ""}},
                                          now);
    ASSERT_EQ(slots.size(), 3U);
    EXPECT_EQ(slots[0].content, "b");
    EXPECT_EQ(slots[1].content, "a");
    EXPECT_EQ(slots[2].content, "c");
}

TEST(ClipboardSlot, listsAreTheSameWhenIndexAndContentAre)
{
    const std::vector<ClipboardSlot> slots{{.slotIndex = 1, .content = "a", .updatedAt = now},
                                           {.slotIndex = 2, .content = "", .updatedAt = now}};
    auto other = slots;
    other[0].updatedAt += 1h;
    EXPECT_TRUE(sameClipboardSlots(slots, other));

    other[0].content = "b";
    EXPECT_FALSE(sameClipboardSlots(slots, other));
    other = slots;
    other[1].slotIndex = 3;
    EXPECT_FALSE(sameClipboardSlots(slots, other));
    other = slots;
    other.pop_back();
    EXPECT_FALSE(sameClipboardSlots(slots, other));
}

} // namespace
} // namespace stavelin::model
