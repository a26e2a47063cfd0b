#include "daemon/WireDecoder.h"
#include "daemon/WireEncoder.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace stavelin::daemon {
namespace {

std::string stateOf(std::string_view slots, std::string_view files)
{
    return R"({"clipboard_slots":[)" + std::string(slots) + R"(],"file_references":[)" + std::string(files) +
           "]}";
}

std::string eventOf(std::string_view payload)
{
    return R"({"id":"X","type":"event","method":"state.updated","payload":)" + std::string(payload) + "}";
}

constexpr std::string_view slot = R"({"slot_index":3,"content":"hi","updated_at":"2024-05-01T10:00:00Z"})";
constexpr std::string_view file =
    R"({"id":"F","file_path":"/a/b.png","file_name":"b.png","file_size":12,"file_type":"PNG","is_image":true,)"
    R"("thumbnail":"AAAA","sort_order":0,"added_at":"2024-05-01T10:00:00Z"})";

/// The same reading, whichever way a state is read.
class StatePayloads : public testing::TestWithParam<WireDecoder::Reader>
{
protected:
    std::expected<StatePayload, DecodingError> decode(std::string_view json)
    {
        WireDecoder decoder(GetParam());
        const auto direct = decoder.decodeState(json);
        const auto detour = decodeState(*decoder.decodeValue(json));
        EXPECT_EQ(direct, detour);
        const auto frame = decoder.decodeFrame(eventOf(json));
        EXPECT_TRUE(frame);
        EXPECT_EQ(direct.has_value(), std::holds_alternative<StatePayload>(*frame));
        return direct;
    }
    std::string failureOf(std::string_view json)
    {
        const auto state = decode(json);
        return state ? "decoded" : state.error().description;
    }
};

INSTANTIATE_TEST_SUITE_P(, StatePayloads,
                         testing::Values(WireDecoder::Reader::fast, WireDecoder::Reader::exact),
                         [](const auto &reader) {
                             return reader.param == WireDecoder::Reader::fast ? "fast" : "exact";
                         });

TEST_P(StatePayloads, slotsAndFilesAreReadInTheOrderOfTheWire)
{
    const auto state = decode(stateOf(
        std::string(slot) + "," + R"({"updated_at":"","slot_index":-1,"content":""})", std::string(file)));
    ASSERT_TRUE(state);
    EXPECT_EQ(state->clipboard_slots,
              (std::vector<ClipboardSlotData>{
                  {.slot_index = 3, .content = "hi", .updated_at = "2024-05-01T10:00:00Z"},
                  {.slot_index = -1, .content = "", .updated_at = ""},
              }));
    EXPECT_EQ(state->file_references, (std::vector<FileReferenceData>{{.id = "F",
                                                                       .file_path = "/a/b.png",
                                                                       .file_name = "b.png",
                                                                       .file_size = 12,
                                                                       .file_type = "PNG",
                                                                       .is_image = true,
                                                                       .thumbnail = "AAAA",
                                                                       .sort_order = 0,
                                                                       .added_at = "2024-05-01T10:00:00Z"}}));
}

TEST_P(StatePayloads, twoEmptyListsAreAState)
{
    const auto state = decode(stateOf("", ""));
    ASSERT_TRUE(state);
    EXPECT_TRUE(state->clipboard_slots.empty());
    EXPECT_TRUE(state->file_references.empty());
}

TEST_P(StatePayloads, aFileWithANullSizeAndNoThumbnailIsDecoded)
{
    const auto state = decode(stateOf(
        "",
        R"({"id":"F","file_path":"/a","file_name":"a","file_size":null,"is_image":false,"sort_order":1,"added_at":""})"));
    ASSERT_TRUE(state);
    EXPECT_FALSE(state->file_references.at(0).file_size);
    EXPECT_FALSE(state->file_references.at(0).file_type);
    EXPECT_FALSE(state->file_references.at(0).thumbnail);
}

TEST_P(StatePayloads, oneFileWithoutIsImageDropsTheWholeState)
{
    EXPECT_EQ(failureOf(stateOf(
                  slot, std::string(file) +
                            R"(,{"id":"F","file_path":"/a","file_name":"a","sort_order":1,"added_at":""})")),
              "missing member: is_image");
}

TEST_P(StatePayloads, everyRequiredMemberMustBeThere)
{
    for (const std::string_view member : {"slot_index", "content", "updated_at"}) {
        std::string broken(slot);
        broken.replace(broken.find(member), member.size(), "other");
        EXPECT_EQ(failureOf(stateOf(broken, "")), "missing member: " + std::string(member));
    }
    for (const std::string_view member :
         {"id", "file_path", "file_name", "is_image", "sort_order", "added_at"}) {
        std::string broken(file);
        broken.replace(broken.find("\"" + std::string(member) + "\""), member.size() + 2, "\"other\"");
        EXPECT_EQ(failureOf(stateOf("", broken)), "missing member: " + std::string(member));
    }
    EXPECT_EQ(failureOf(R"({"clipboard_slots":[]})"), "missing member: file_references");
    EXPECT_EQ(failureOf(R"({"file_references":[]})"), "missing member: clipboard_slots");
    EXPECT_EQ(failureOf(R"({"clipboard_slots":null,"file_references":[]})"),
              "missing member: clipboard_slots");
}

TEST_P(StatePayloads, aMemberOfTheWrongTypeDropsTheWholeState)
{
    EXPECT_EQ(failureOf(R"({"clipboard_slots":{},"file_references":[]})"),
              "member of the wrong type: clipboard_slots");
    EXPECT_EQ(failureOf(stateOf("7", "")), "not an object: slot");
    EXPECT_EQ(failureOf("[]"), "not an object: state");
    for (const std::string_view index :
         {"\"3\"", "3.0", "true", "9223372036854775808", "100000000000000000000"})
        EXPECT_EQ(failureOf(stateOf(
                      R"({"content":"","updated_at":"","slot_index":)" + std::string(index) + "}", "")),
                  "member of the wrong type: slot_index")
            << index;
    std::string wrongSize(file);
    wrongSize.replace(wrongSize.find("12"), 2, "\"12\"");
    EXPECT_EQ(failureOf(stateOf("", wrongSize)), "member of the wrong type: file_size");
}

TEST_P(StatePayloads, aNumberOutside64BitsInAnIgnoredMemberDoesNoHarm)
{
    const auto state =
        decode(R"({"clipboard_slots":[],"file_references":[],"epoch":123456789012345678901234567890})");
    EXPECT_TRUE(state);
}

TEST(StateEvent, isAMessageWhenItsPayloadIsNoState)
{
    WireDecoder decoder;
    for (const auto *payload : {"null", "[]", "{}", "7", R"({"clipboard_slots":[]})"}) {
        const auto frame = decoder.decodeFrame(eventOf(payload));
        ASSERT_TRUE(frame) << payload;
        ASSERT_TRUE(std::holds_alternative<ProtocolMessage>(*frame)) << payload;
        EXPECT_EQ(std::get<ProtocolMessage>(*frame).type, MessageType::event);
    }
}

TEST(StateEvent, hasTheExactNameAndType)
{
    WireDecoder decoder;
    for (const auto *head :
         {R"({"id":"X","type":"event","method":"State.updated")",
          R"({"id":"X","type":"event","method":"state.updated ")", R"({"id":"X","type":"event")",
          R"({"id":"X","type":"response","method":"state.updated")"}) {
        const auto frame = decoder.decodeFrame(std::string(head) + R"(,"payload":)" + stateOf("", "") + "}");
        ASSERT_TRUE(frame) << head;
        EXPECT_TRUE(std::holds_alternative<ProtocolMessage>(*frame)) << head;
    }
}

TEST(StateEvent, withAnUndecodableEnvelopeIsNoFrame)
{
    EXPECT_FALSE(WireDecoder().decodeFrame(R"({"type":"event","method":"state.updated","payload":)" +
                                           stateOf("", "") + "}"));
}

TEST(StateEvent, isReadAsItWasWritten)
{
    const StatePayload state{.clipboard_slots = {{.slot_index = 1, .content = "a\"b\n😀", .updated_at = "x"}},
                             .file_references = {{.id = "1",
                                                  .file_path = "/p",
                                                  .file_name = "p",
                                                  .file_size = {},
                                                  .file_type = "Folder",
                                                  .is_image = false,
                                                  .thumbnail = {},
                                                  .sort_order = 0,
                                                  .added_at = "y"}}};
    const auto json = encodeStateEvent("ID", state);
    ASSERT_TRUE(json);
    const auto frame = WireDecoder().decodeFrame(*json);
    ASSERT_TRUE(frame);
    EXPECT_EQ(std::get<StatePayload>(*frame), state);
    EXPECT_EQ(encode(state), json->substr(json->find("{\"clipboard_slots"),
                                          json->size() - 1 - json->find("{\"clipboard_slots")));
}

TEST(StateEvent, ofAnyOtherMessageThePayloadComesAlong)
{
    const auto frame =
        WireDecoder().decodeFrame(R"({"id":"X","type":"response","payload":{"content":"hi"}})");
    ASSERT_TRUE(frame);
    EXPECT_EQ(std::get<ProtocolMessage>(*frame).payload,
              AnyCodable{AnyCodable::Object({{"content", AnyCodable{std::string("hi")}}})});
}

} // namespace
} // namespace stavelin::daemon
