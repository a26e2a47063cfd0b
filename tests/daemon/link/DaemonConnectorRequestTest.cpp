#include "daemon/link/DaemonConnectorFixture.h"

#include <chrono>
#include <functional>
#include <set>

namespace stavelin::daemon {
namespace {

using namespace std::chrono_literals;
using enum DaemonError::Kind;
using testing::IsEmpty;
using testing::MatchesRegex;

const ErrorPayload slotEmpty{.code = "slot_empty", .message = "Slot 3 is empty"};

TEST_F(DaemonConnectorTest, aRequestBeforeConnectFailsWithNotConnected)
{
    const Outcome<ProtocolMessage> outcome(connector->sendRequest("m", std::nullopt));
    ASSERT_TRUE(outcome.isFinished());
    EXPECT_EQ(outcome.value().error(), error(notConnected));
}

TEST_F(DaemonConnectorTest, aRequestWhileConnectingFailsWithNotConnectedAlthoughASocketExists)
{
    connector->connect();
    const Outcome<ProtocolMessage> outcome(connector->sendRequest("m", std::nullopt));
    ASSERT_TRUE(outcome.isFinished());
    EXPECT_EQ(description(outcome.value().error()), "Not connected to daemon");
    EXPECT_THAT(daemon().sent, IsEmpty());
}

TEST_F(DaemonConnectorTest, aRequestAfterDisconnectFailsWithNotConnected)
{
    becomeConnected();
    connector->disconnect();
    const Outcome<void> outcome(connector->clearSlot(1));
    EXPECT_EQ(outcome.value().error(), error(notConnected));
}

TEST_F(DaemonConnectorTest, aRequestIsOneEnvelopeWithItsMethodAndPayloadAndNothingElse)
{
    becomeConnected();
    const Outcome<void> outcome(connector->setSlot(3, "hi"));
    ASSERT_EQ(daemon().sent.size(), 1U);
    const ProtocolMessage request = lastRequest();
    EXPECT_EQ(request.type, MessageType::request);
    EXPECT_EQ(request.method, "clipboard.set_slot");
    EXPECT_EQ(request.payload, object({{"slot_index", number(3)}, {"content", text("hi")}}));
    EXPECT_THAT(daemon().sent[0], testing::Not(testing::HasSubstr("error")));
}

TEST_F(DaemonConnectorTest, aRequestWithoutAPayloadHasNoPayloadMember)
{
    becomeConnected();
    const Outcome<ProtocolMessage> outcome(connector->sendRequest("m", std::nullopt));
    EXPECT_THAT(daemon().sent.at(0), testing::Not(testing::HasSubstr("payload")));
}

TEST_F(DaemonConnectorTest, everyRequestHasAFreshUppercaseRandomUuid)
{
    becomeConnected();
    std::set<std::string> ids;
    for (int count = 0; count < 20; ++count) {
        const Outcome<ProtocolMessage> outcome(connector->sendRequest("m", std::nullopt));
        const std::string id = lastRequest().id;
        EXPECT_EQ(id.size(), 36U);
        EXPECT_THAT(id, MatchesRegex("[0-9A-F]+-[0-9A-F]+-4[0-9A-F]+-[89AB][0-9A-F]+-[0-9A-F]+"));
        for (const std::size_t hyphen : {8U, 13U, 18U, 23U})
            EXPECT_EQ(id.at(hyphen), '-') << id;
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 20U);
}

TEST_F(DaemonConnectorTest, everyOperationSendsItsMethodAndItsMembers)
{
    becomeConnected();
    const Outcome<void> clear(connector->clearSlot(2));
    EXPECT_EQ(lastRequest().method, "clipboard.clear_slot");
    EXPECT_EQ(lastRequest().payload, object({{"slot_index", number(2)}}));
    const Outcome<std::string> paste(connector->pasteSlot(9));
    EXPECT_EQ(lastRequest().method, "clipboard.paste_slot");
    EXPECT_EQ(lastRequest().payload, object({{"slot_index", number(9)}}));
    const Outcome<void> add(connector->addFile("/tmp/a b"));
    EXPECT_EQ(lastRequest().method, "files.add");
    EXPECT_EQ(lastRequest().payload, object({{"file_path", text("/tmp/a b")}}));
    const Outcome<void> remove(connector->removeFile("f-1"));
    EXPECT_EQ(lastRequest().method, "files.remove");
    EXPECT_EQ(lastRequest().payload, object({{"id", text("f-1")}}));
    const Outcome<void> reorder(connector->reorderFile(4, 0));
    EXPECT_EQ(lastRequest().method, "files.reorder");
    EXPECT_EQ(lastRequest().payload, object({{"from_index", number(4)}, {"to_index", number(0)}}));
}

TEST_F(DaemonConnectorTest, aRequestEndsWithTheWholeResponse)
{
    becomeConnected();
    const Outcome<ProtocolMessage> outcome(connector->sendRequest("m", std::nullopt));
    daemon().completeSends();
    EXPECT_FALSE(outcome.isFinished());
    respond(lastRequest().id, object({{"a", number(1)}}), slotEmpty);
    ASSERT_TRUE(outcome.isFinished());
    EXPECT_EQ(outcome.value()->payload, object({{"a", number(1)}}));
    EXPECT_EQ(outcome.value()->error, slotEmpty);
}

TEST_F(DaemonConnectorTest, responsesFindTheirRequestsInAnyOrder)
{
    becomeConnected();
    const Outcome<std::string> first(connector->pasteSlot(1));
    const std::string firstId = lastRequest().id;
    const Outcome<std::string> second(connector->pasteSlot(2));
    const std::string secondId = lastRequest().id;
    daemon().completeSends();
    respond(secondId, object({{"content", text("two")}}));
    EXPECT_FALSE(first.isFinished());
    respond(firstId, object({{"content", text("one")}}));
    EXPECT_EQ(first.value(), "one");
    EXPECT_EQ(second.value(), "two");
}

TEST_F(DaemonConnectorTest, ofTwoResponsesWithOneIdTheSecondIsDropped)
{
    becomeConnected();
    const Outcome<std::string> outcome(connector->pasteSlot(1));
    answer(object({{"content", text("first")}}));
    respond(lastRequest().id, object({{"content", text("second")}}));
    EXPECT_EQ(outcome.value(), "first");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(daemon().isReceiveArmed());
}

TEST_F(DaemonConnectorTest, aResponseThatNobodyAskedForIsDroppedWithoutAWord)
{
    becomeConnected();
    respond("unknown");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(connector->connectionState(), ConnectionState::connected);
}

TEST_F(DaemonConnectorTest, aSendErrorGoesToTheCallerUnchangedAndNothingIsRegistered)
{
    becomeConnected();
    const Outcome<void> outcome(connector->setSlot(1, "x"));
    daemon().failSends("Broken pipe");
    ASSERT_TRUE(outcome.isFinished());
    EXPECT_EQ(outcome.value().error(), LinkError(TransportError{.description = "Broken pipe"}));
    EXPECT_EQ(clock.pendingCount(), 0U);
}

TEST_F(DaemonConnectorTest, aTextThatCannotBeWrittenFailsWithTheEncodersErrorAndIsNotSent)
{
    becomeConnected();
    const Outcome<void> outcome(connector->setSlot(1, "\xff"));
    ASSERT_TRUE(outcome.isFinished());
    ASSERT_TRUE(std::holds_alternative<EncodingError>(outcome.value().error()));
    EXPECT_EQ(description(outcome.value().error()), "Unable to encode value");
    EXPECT_THAT(daemon().sent, IsEmpty());
}

TEST_F(DaemonConnectorTest, aRequestWithoutAnAnswerTimesOutTenSecondsAfterItWentOut)
{
    becomeConnected();
    const Outcome<void> outcome(connector->setSlot(1, "x"));
    clock.advance(60s);
    EXPECT_FALSE(outcome.isFinished());
    daemon().completeSends();
    clock.advance(10s - 1ns);
    EXPECT_FALSE(outcome.isFinished());
    clock.advance(1ns);
    ASSERT_TRUE(outcome.isFinished());
    EXPECT_EQ(description(outcome.value().error()), "Request timed out");
}

TEST_F(DaemonConnectorTest, aResponseAfterTheTimeOutIsDropped)
{
    becomeConnected();
    const Outcome<std::string> outcome(connector->pasteSlot(1));
    daemon().completeSends();
    clock.advance(10s);
    respond(lastRequest().id, object({{"content", text("late")}}));
    EXPECT_EQ(outcome.value().error(), error(timeout));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DaemonConnectorTest, theTimerOfAnAnsweredRequestFindsNothing)
{
    becomeConnected();
    const Outcome<void> outcome(connector->setSlot(1, "x"));
    answer();
    EXPECT_EQ(clock.pendingCount(), 1U);
    clock.advance(10s);
    EXPECT_TRUE(outcome.value());
    EXPECT_EQ(connector->connectionState(), ConnectionState::connected);
}

TEST_F(DaemonConnectorTest, aLossFailsWaitingRequestsAndUnfinishedSendsWithDisconnected)
{
    becomeConnected();
    const Outcome<void> waiting(connector->setSlot(1, "x"));
    daemon().completeSends();
    const Outcome<void> sending(connector->setSlot(2, "y"));
    daemon().failReceive("reset");
    EXPECT_EQ(description(waiting.value().error()), "Disconnected from daemon");
    EXPECT_EQ(sending.value().error(), error(disconnected));
}

TEST_F(DaemonConnectorTest, disconnectLeavesRequestsToTheirOwnTimeOut)
{
    becomeConnected();
    const Outcome<void> outcome(connector->setSlot(1, "x"));
    daemon().completeSends();
    connector->disconnect();
    clock.advance(10s - 1ns);
    EXPECT_FALSE(outcome.isFinished());
    clock.advance(1ns);
    EXPECT_EQ(outcome.value().error(), error(timeout));
}

TEST_F(DaemonConnectorTest, aRequestThatAnObserverOfTheLossSendsFailsWithNotConnected)
{
    becomeConnected();
    std::unique_ptr<Outcome<void>> second;
    QObject::connect(connector.get(), &DaemonConnector::connectionStateChanged,
                     [&] { second = std::make_unique<Outcome<void>>(connector->clearSlot(1)); });
    daemon().failReceive("reset");
    ASSERT_TRUE(second);
    EXPECT_EQ(second->value().error(), error(notConnected));
}

TEST_F(DaemonConnectorTest, itsEndFailsWhatWaitsWithDisconnected)
{
    becomeConnected();
    const Outcome<void> waiting(connector->setSlot(1, "x"));
    daemon().completeSends();
    const Outcome<void> sending(connector->setSlot(2, "y"));
    connector.reset();
    EXPECT_EQ(waiting.value().error(), error(disconnected));
    EXPECT_EQ(sending.value().error(), error(disconnected));
    clock.advance(10s);
}

TEST_F(DaemonConnectorTest, anErrorInTheAnswerCountsAsSuccessForEveryOperationButPasteSlot)
{
    becomeConnected();
    const std::function<QCoro::Task<DaemonConnector::Result<>>()> operations[] = {
        [this] { return connector->setSlot(1, "x"); },   [this] { return connector->clearSlot(1); },
        [this] { return connector->addFile("/a"); },     [this] { return connector->removeFile("a"); },
        [this] { return connector->reorderFile(0, 1); },
    };
    for (const auto &operation : operations) {
        const Outcome<void> outcome(operation());
        answer(std::nullopt, slotEmpty);
        EXPECT_TRUE(outcome.value());
    }
}

TEST_F(DaemonConnectorTest, pasteSlotReturnsTheSlotsText)
{
    becomeConnected();
    const Outcome<std::string> outcome(connector->pasteSlot(1));
    answer(object({{"content", text("päste")}}));
    EXPECT_EQ(outcome.value(), "päste");
}

TEST_F(DaemonConnectorTest, pasteSlotFailsWithTheDaemonsWordsEvenIfATextCameWithThem)
{
    becomeConnected();
    const Outcome<std::string> outcome(connector->pasteSlot(3));
    answer(object({{"content", text("x")}}), slotEmpty);
    EXPECT_EQ(outcome.value().error(), error(serverError, "Slot 3 is empty"));
    EXPECT_EQ(description(outcome.value().error()), "Slot 3 is empty");
}

TEST_F(DaemonConnectorTest, aPasteAnswerWithoutAContentTextIsInvalid)
{
    becomeConnected();
    const std::optional<AnyCodable> payloads[] = {std::nullopt, text("x"), object({}),
                                                  object({{"content", number(1)}}),
                                                  object({{"Content", text("x")}})};
    for (const auto &payload : payloads) {
        const Outcome<std::string> outcome(connector->pasteSlot(1));
        answer(payload);
        EXPECT_EQ(description(outcome.value().error()), "Invalid response from daemon");
    }
}

TEST_F(DaemonConnectorTest, clearFilesWithoutFilesSendsNothingAndSucceeds)
{
    becomeConnected();
    const Outcome<void> outcome(connector->clearFiles());
    EXPECT_TRUE(outcome.value());
    EXPECT_THAT(daemon().sent, IsEmpty());
}

TEST_F(DaemonConnectorTest, clearFilesRemovesTheFilesOfItsStartOneAfterTheOther)
{
    becomeConnected();
    pushState({.clipboard_slots = {}, .file_references = {file("a"), file("b")}});
    const Outcome<void> outcome(connector->clearFiles());
    EXPECT_EQ(daemon().sent.size(), 1U);
    EXPECT_EQ(lastRequest().payload, object({{"id", text("a")}}));
    pushState({.clipboard_slots = {}, .file_references = {file("b"), file("c")}});
    answer(std::nullopt, slotEmpty);
    EXPECT_EQ(daemon().sent.size(), 2U);
    EXPECT_EQ(lastRequest().payload, object({{"id", text("b")}}));
    EXPECT_FALSE(outcome.isFinished());
    answer();
    EXPECT_TRUE(outcome.value());
    EXPECT_EQ(daemon().sent.size(), 2U);
}

TEST_F(DaemonConnectorTest, theFirstFailureEndsClearFiles)
{
    becomeConnected();
    pushState({.clipboard_slots = {}, .file_references = {file("a"), file("b")}});
    const Outcome<void> outcome(connector->clearFiles());
    daemon().completeSends();
    clock.advance(10s);
    EXPECT_EQ(outcome.value().error(), error(timeout));
    EXPECT_EQ(daemon().sent.size(), 1U);
}

TEST_F(DaemonConnectorTest, itsEndEndsClearFiles)
{
    becomeConnected();
    pushState({.clipboard_slots = {}, .file_references = {file("a"), file("b")}});
    const Outcome<void> outcome(connector->clearFiles());
    connector.reset();
    EXPECT_EQ(outcome.value().error(), error(disconnected));
}

} // namespace
} // namespace stavelin::daemon
