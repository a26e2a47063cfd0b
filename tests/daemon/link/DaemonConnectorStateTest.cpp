#include "daemon/link/DaemonConnectorFixture.h"

#include <chrono>

namespace stavelin::daemon {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;

TEST_F(DaemonConnectorTest, reportsNineEmptySlotsAndNoFilesBeforeTheFirstState)
{
    const auto &slots = connector->clipboardSlots();
    ASSERT_EQ(slots.size(), 9U);
    for (std::size_t place = 0; place < slots.size(); ++place) {
        EXPECT_EQ(slots[place].slotIndex, static_cast<std::int64_t>(place + 1));
        EXPECT_EQ(slots[place].content, "");
        EXPECT_EQ(slots[place].updatedAt, clock.now());
    }
    EXPECT_THAT(connector->fileReferences(), IsEmpty());
}

TEST_F(DaemonConnectorTest, takesBothListsFromAStateInTheDaemonsOrder)
{
    connector->connect();
    pushState(
        {.clipboard_slots = {slot(3, "three"), slot(1, "one")}, .file_references = {file("b"), file("a")}});
    ASSERT_EQ(connector->clipboardSlots().size(), 2U);
    EXPECT_EQ(connector->clipboardSlots()[0].slotIndex, 3);
    EXPECT_EQ(connector->clipboardSlots()[1].content, "one");
    ASSERT_EQ(connector->fileReferences().size(), 2U);
    EXPECT_EQ(connector->fileReferences()[0].id, "b");
    EXPECT_EQ(connector->fileReferences()[1].filePath, "/files/a");
    EXPECT_EQ(slotChanges, 1);
    EXPECT_EQ(fileChanges, 1);
}

TEST_F(DaemonConnectorTest, anEmptyStateEmptiesBothLists)
{
    connector->connect();
    pushState({.clipboard_slots = {slot(1, "x")}, .file_references = {file("a")}});
    daemon().deliverText(
        R"({"id":"X","type":"event","method":"state.updated","payload":{"clipboard_slots":[],"file_references":[]}})");
    EXPECT_THAT(connector->clipboardSlots(), IsEmpty());
    EXPECT_THAT(connector->fileReferences(), IsEmpty());
}

TEST_F(DaemonConnectorTest, statesWithoutAPayloadThatCanBeReadAreDroppedWithoutAWord)
{
    connector->connect();
    const std::string payloads[] = {"",
                                    R"(,"payload":null)",
                                    R"(,"payload":[])",
                                    R"(,"payload":{})",
                                    R"(,"payload":{"clipboard_slots":[]})",
                                    R"(,"payload":{"clipboard_slots":[],"file_references":[{"id":"a"}]})"};
    for (const std::string &payload : payloads) {
        daemon().deliverText(R"({"id":"X","type":"event","method":"state.updated")" + payload + "}");
        EXPECT_EQ(connector->clipboardSlots().size(), 9U) << payload;
    }
    EXPECT_EQ(slotChanges, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

struct SlotChange
{
    const char *label;
    std::vector<ClipboardSlotData> after; ///< before: slot 1 "one", slot 2 "two", both of 10:00:00
    int notifications;
};

TEST_F(DaemonConnectorTest, notifiesOfSlotsOnlyWhenAPersonWouldSeeADifference)
{
    const SlotChange changes[] = {
        {"nothing", {slot(1, "one"), slot(2, "two")}, 0},
        {"a date", {slot(1, "one"), slot(2, "two", "2024-05-01T11:00:00Z")}, 0},
        {"a text", {slot(1, "one"), slot(2, "TWO")}, 1},
        {"a number", {slot(1, "one"), slot(3, "two")}, 1},
        {"the order", {slot(2, "two"), slot(1, "one")}, 1},
        {"the length", {slot(1, "one")}, 1},
    };
    connector->connect();
    for (const SlotChange &change : changes) {
        pushState({.clipboard_slots = {slot(1, "one"), slot(2, "two")}, .file_references = {}});
        slotChanges = 0;
        pushState({.clipboard_slots = change.after, .file_references = {}});
        EXPECT_EQ(slotChanges, change.notifications) << change.label;
    }
    EXPECT_EQ(fileChanges, 0);
}

struct FileChange
{
    const char *label;
    std::vector<FileReferenceData> after; ///< before: "a" with a thumbnail, "b" without
    int notifications;
};

TEST_F(DaemonConnectorTest, notifiesOfFilesOnlyWhenTheBoardLooksDifferent)
{
    FileReferenceData moved = file("b");
    moved.file_path = "/elsewhere/b";
    FileReferenceData renamed = file("b");
    renamed.file_name = "new name";
    const FileChange changes[] = {
        {"nothing", {file("a", "AAAA"), file("b")}, 0},
        {"the thumbnail's bytes", {file("a", "BBBB"), file("b")}, 0},
        {"a name", {file("a", "AAAA"), renamed}, 0},
        {"a thumbnail appears", {file("a", "AAAA"), file("b", "AAAA")}, 1},
        {"a thumbnail goes", {file("a"), file("b")}, 1},
        {"a thumbnail becomes unreadable", {file("a", "A"), file("b")}, 1},
        {"a path", {file("a", "AAAA"), moved}, 1},
        {"an id", {file("a", "AAAA"), file("c")}, 1},
        {"the length", {file("a", "AAAA")}, 1},
    };
    connector->connect();
    for (const FileChange &change : changes) {
        pushState({.clipboard_slots = {}, .file_references = {file("a", "AAAA"), file("b")}});
        fileChanges = 0;
        pushState({.clipboard_slots = {}, .file_references = change.after});
        EXPECT_EQ(fileChanges, change.notifications) << change.label;
    }
}

TEST_F(DaemonConnectorTest, anUnchangedListKeepsItsOldDate)
{
    connector->connect();
    pushState({.clipboard_slots = {slot(1, "one", "2024-05-01T10:00:00Z")}, .file_references = {}});
    const auto before = connector->clipboardSlots();
    pushState({.clipboard_slots = {slot(1, "one", "2024-05-01T11:00:00Z")}, .file_references = {}});
    EXPECT_EQ(connector->clipboardSlots(), before);
}

TEST_F(DaemonConnectorTest, aDateWithAFractionBecomesTheMomentOfItsArrival)
{
    clock.advance(42s);
    connector->connect();
    FileReferenceData withFraction = file("a");
    withFraction.added_at = "2024-05-01T10:00:00.123Z";
    pushState(
        {.clipboard_slots = {slot(1, "one", "2024-05-01T10:00:00.123Z")}, .file_references = {withFraction}});
    EXPECT_EQ(connector->clipboardSlots().at(0).updatedAt, clock.now());
    EXPECT_EQ(connector->fileReferences().at(0).addedAt, clock.now());
}

TEST_F(DaemonConnectorTest, theListsSurviveADisconnectionUntilTheNextStateReplacesThem)
{
    connector->connect();
    pushState({.clipboard_slots = {slot(1, "one")}, .file_references = {file("a")}});
    daemon().failReceive("reset");
    EXPECT_EQ(connector->clipboardSlots().at(0).content, "one");
    EXPECT_EQ(connector->fileReferences().size(), 1U);
    clock.advance(1s);
    EXPECT_EQ(connector->clipboardSlots().at(0).content, "one");
    pushState({.clipboard_slots = {slot(1, "new")}, .file_references = {}});
    EXPECT_EQ(connector->clipboardSlots().at(0).content, "new");
    EXPECT_THAT(connector->fileReferences(), IsEmpty());
}

} // namespace
} // namespace stavelin::daemon
