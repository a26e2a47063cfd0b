#include "daemon/link/FrameReader.h"

#include "testkit/VirtualClock.h"

#include <gtest/gtest.h>

namespace stavelin::daemon {
namespace {

class FrameReaderTest : public testing::Test
{
protected:
    testkit::VirtualClock clock;
    FrameReader reader{clock};
};

TEST_F(FrameReaderTest, aMessageIsAMessage)
{
    const auto frame = reader.read(FrameKind::text, R"({"id":"7","type":"response"})");
    ASSERT_TRUE(std::holds_alternative<ProtocolMessage>(frame));
    EXPECT_EQ(std::get<ProtocolMessage>(frame).id, "7");
}

TEST_F(FrameReaderTest, aStateComesAsTheModelsRecords)
{
    const auto frame = reader.read(FrameKind::text,
                                   R"({"id":"7","type":"event","method":"state.updated","payload":{
            "clipboard_slots":[{"slot_index":2,"content":"x","updated_at":"never"}],
            "file_references":[{"id":"f","file_path":"/f","file_name":"f","is_image":true,"thumbnail":"AAAA",
                                "sort_order":0,"added_at":"2024-05-01T10:00:01Z"}]}})");
    ASSERT_TRUE(std::holds_alternative<ReceivedState>(frame));
    const auto &state = std::get<ReceivedState>(frame);
    ASSERT_EQ(state.clipboardSlots.size(), 1U);
    EXPECT_EQ(state.clipboardSlots[0].slotIndex, 2);
    EXPECT_EQ(state.clipboardSlots[0].updatedAt, clock.now());
    ASSERT_EQ(state.fileReferences.size(), 1U);
    EXPECT_EQ(state.fileReferences[0].thumbnailData, std::vector<std::byte>(3));
    EXPECT_EQ(state.fileReferences[0].addedAt, clock.now() + std::chrono::seconds(1));
}

TEST_F(FrameReaderTest, aTextThatIsNoMessageIsADecodingError)
{
    for (const char *text : {"", "[]", "{", R"({"id":"7"})", R"({"id":7,"type":"event"})",
                             R"({"id":"7","type":"Event"})", "\xff"})
        EXPECT_TRUE(std::holds_alternative<DecodingError>(reader.read(FrameKind::text, text))) << text;
}

TEST_F(FrameReaderTest, aBinaryFrameOfUtf8IsReadAsText)
{
    EXPECT_TRUE(std::holds_alternative<ProtocolMessage>(
        reader.read(FrameKind::binary, R"({"id":"é","type":"response"})")));
    EXPECT_TRUE(std::holds_alternative<DecodingError>(reader.read(FrameKind::binary, "{")));
}

TEST_F(FrameReaderTest, aBinaryFrameThatIsNotUtf8IsDropped)
{
    EXPECT_TRUE(std::holds_alternative<DroppedFrame>(reader.read(FrameKind::binary, "{\"id\":\"\xc3\"}")));
}

} // namespace
} // namespace stavelin::daemon
