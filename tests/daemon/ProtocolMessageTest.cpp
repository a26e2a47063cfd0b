#include "daemon/WireDecoder.h"
#include "daemon/WireEncoder.h"

#include <string>

#include <gtest/gtest.h>

namespace stavelin::daemon {
namespace {

AnyCodable integer(std::int64_t number)
{
    return {number};
}

AnyCodable text(std::string content)
{
    return {std::move(content)};
}

std::expected<ProtocolMessage, DecodingError> decode(std::string_view json)
{
    return WireDecoder().decodeMessage(json);
}

std::string failureOf(std::string_view json)
{
    const auto message = decode(json);
    return message ? "decoded" : message.error().description;
}

TEST(ProtocolMessage, aResponseWithAllMembersIsDecoded)
{
    const auto message = decode(
        R"({"id":"X","type":"response","method":"m","payload":{"content":"hi"},"error":{"code":"c","message":"why"}})");
    ASSERT_TRUE(message);
    EXPECT_EQ(message->id, "X");
    EXPECT_EQ(message->type, MessageType::response);
    EXPECT_EQ(message->method, "m");
    EXPECT_EQ(message->payload, AnyCodable{AnyCodable::Object({{"content", text("hi")}})});
    EXPECT_EQ(message->error, (ErrorPayload{.code = "c", .message = "why"}));
}

TEST(ProtocolMessage, optionalMembersMayBeMissingOrNull)
{
    for (const auto *json : {R"({"id":"X","type":"response"})",
                             R"({"id":"X","type":"response","method":null,"payload":null,"error":null})"}) {
        const auto message = decode(json);
        ASSERT_TRUE(message) << json;
        EXPECT_FALSE(message->method);
        EXPECT_FALSE(message->payload);
        EXPECT_FALSE(message->error);
    }
}

TEST(ProtocolMessage, otherMembersAreIgnored)
{
    EXPECT_TRUE(decode(R"({"version":7,"id":"X","type":"event","extra":{"a":[1]}})"));
}

TEST(ProtocolMessage, aMissingOrIllTypedIdOrTypeMakesTheFrameUndecodable)
{
    EXPECT_EQ(failureOf(R"({"type":"event"})"), "missing member: id");
    EXPECT_EQ(failureOf(R"({"id":null,"type":"event"})"), "missing member: id");
    EXPECT_EQ(failureOf(R"({"id":7,"type":"event"})"), "member of the wrong type: id");
    EXPECT_EQ(failureOf(R"({"id":"X"})"), "missing member: type");
    EXPECT_EQ(failureOf(R"({"id":"X","type":1})"), "member of the wrong type: type");
}

TEST(ProtocolMessage, aTypeOutsideTheThreeMakesTheFrameUndecodable)
{
    EXPECT_EQ(failureOf(R"({"id":"X","type":"Event"})"), "unknown message type");
    EXPECT_EQ(failureOf(R"({"id":"X","type":""})"), "unknown message type");
}

TEST(ProtocolMessage, anOptionalMemberOfTheWrongTypeMakesTheFrameUndecodable)
{
    EXPECT_EQ(failureOf(R"({"id":"X","type":"event","method":1})"), "member of the wrong type: method");
    EXPECT_EQ(failureOf(R"({"id":"X","type":"response","error":"no"})"), "member of the wrong type: error");
    EXPECT_EQ(failureOf(R"({"id":"X","type":"response","error":{"code":"c"}})"),
              "member of the wrong type: error");
}

TEST(ProtocolMessage, aFrameThatIsNoObjectIsUndecodable)
{
    EXPECT_EQ(failureOf("[]"), "not an object: message");
    EXPECT_EQ(failureOf("\"id\""), "not an object: message");
    EXPECT_EQ(failureOf("{"), "not well-formed JSON");
}

TEST(ProtocolMessage, anErrorNeverQuotesTheFrame)
{
    for (const auto *json :
         {R"({"id":"SECRET","type":"SECRET"})", R"({"id":"X","type":"event","method":["SECRET"]})",
          R"("SECRET)", R"({"SECRET":1})"})
        EXPECT_EQ(failureOf(json).find("SECRET"), std::string::npos) << failureOf(json);
}

TEST(ProtocolMessage, ofTwoMembersWithTheSameNameTheLastCounts)
{
    const auto message = decode(R"({"id":1,"id":"Y","type":"event"})");
    ASSERT_TRUE(message);
    EXPECT_EQ(message->id, "Y");
}

TEST(ProtocolMessage, aRequestForSlot3CarryingHiHoldsExactlyThat)
{
    const ProtocolMessage request{
        .id = "X",
        .type = MessageType::request,
        .method = "clipboard.set_slot",
        .payload = AnyCodable{AnyCodable::Object({{"slot_index", integer(3)}, {"content", text("hi")}})}};
    EXPECT_EQ(
        encode(request),
        R"({"id":"X","type":"request","method":"clipboard.set_slot","payload":{"content":"hi","slot_index":3}})");
}

TEST(ProtocolMessage, absentMembersAreLeftOut)
{
    EXPECT_EQ(encode(ProtocolMessage{.id = "X", .type = MessageType::response, .method = {}, .payload = {}}),
              R"({"id":"X","type":"response"})");
}

TEST(ProtocolMessage, anErrorIsEncodedWithCodeAndMessage)
{
    EXPECT_EQ(
        encode(ProtocolMessage{.id = "X",
                               .type = MessageType::response,
                               .method = {},
                               .payload = {},
                               .error = ErrorPayload{.code = "slot_empty", .message = "Slot 3 is empty"}}),
        R"({"id":"X","type":"response","error":{"code":"slot_empty","message":"Slot 3 is empty"}})");
}

TEST(MessageType, isMadeFromExactlyItsThreeRawValues)
{
    for (const MessageType type : {MessageType::request, MessageType::response, MessageType::event})
        EXPECT_EQ(messageTypeFromRawValue(rawValue(type)), type);
    for (const auto *raw : {"", "Request", "EVENT", "response ", "other"})
        EXPECT_FALSE(messageTypeFromRawValue(raw)) << raw;
}

} // namespace
} // namespace stavelin::daemon
