#pragma once

#include "daemon/WireDecoder.h"
#include "daemon/WireEncoder.h"
#include "daemon/link/DaemonConnector.h"
#include "testkit/FakeWebSocketTask.h"
#include "testkit/RecordingLog.h"
#include "testkit/TaskOutcome.h"
#include "testkit/VirtualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace stavelin::daemon {

/// A connector whose daemon, network and time are the test's.
class DaemonConnectorTest : public testing::Test
{
protected:
    template <typename T>
    using Outcome = testkit::TaskOutcome<DaemonConnector::Result<T>>;

    DaemonConnectorTest()
    {
        QObject::connect(connector.get(), &DaemonConnector::connectionStateChanged,
                         [this] { states.push_back(connector->connectionState()); });
        QObject::connect(connector.get(), &DaemonConnector::clipboardSlotsChanged, [this] { ++slotChanges; });
        QObject::connect(connector.get(), &DaemonConnector::fileReferencesChanged, [this] { ++fileChanges; });
    }

    static ClipboardSlotData slot(std::int64_t index, std::string content,
                                  std::string updatedAt = "2024-05-01T10:00:00Z")
    {
        return {.slot_index = index, .content = std::move(content), .updated_at = std::move(updatedAt)};
    }
    static FileReferenceData file(std::string id, std::optional<std::string> thumbnail = std::nullopt)
    {
        return {.id = id,
                .file_path = "/files/" + id,
                .file_name = id,
                .thumbnail = std::move(thumbnail),
                .added_at = "2024-05-01T10:00:00Z"};
    }
    static AnyCodable object(AnyCodable::Object members) { return {.value = std::move(members)}; }
    static AnyCodable number(std::int64_t value) { return {.value = value}; }
    static AnyCodable text(std::string value) { return {.value = std::move(value)}; }
    static LinkError error(DaemonError::Kind kind, std::string message = {})
    {
        return DaemonError{.kind = kind, .message = std::move(message)};
    }

    /// The newest connection.
    testkit::FakeConnection &daemon() { return sockets.last(); }
    void pushState(const StatePayload &state)
    {
        daemon().deliverText(encodeStateEvent("event", state).value());
    }
    /// Connects and lets the daemon push a first, empty state.
    void becomeConnected()
    {
        connector->connect();
        pushState({});
        ASSERT_EQ(connector->connectionState(), ConnectionState::connected);
    }
    /// The request that was sent last.
    ProtocolMessage lastRequest() { return WireDecoder().decodeMessage(daemon().sent.back()).value(); }
    void respond(const std::string &id, std::optional<AnyCodable> payload = std::nullopt,
                 std::optional<ErrorPayload> failure = std::nullopt)
    {
        ProtocolMessage response{
            .id = id, .type = MessageType::response, .method = {}, .payload = std::move(payload)};
        response.error = std::move(failure);
        daemon().deliverText(encode(response).value());
    }
    /// Lets the last request go out and answers it.
    void answer(std::optional<AnyCodable> payload = std::nullopt,
                std::optional<ErrorPayload> failure = std::nullopt)
    {
        daemon().completeSends();
        respond(lastRequest().id, std::move(payload), std::move(failure));
    }

    testkit::VirtualClock clock;
    testkit::RecordingLog log;
    testkit::FakeWebSocketTaskFactory sockets{clock};
    std::unique_ptr<DaemonConnector> connector = std::make_unique<DaemonConnector>(sockets, clock, log);
    std::vector<ConnectionState> states;
    int slotChanges = 0;
    int fileChanges = 0;
};

} // namespace stavelin::daemon
