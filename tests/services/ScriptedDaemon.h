#pragma once

#include "daemon/WireDecoder.h"
#include "daemon/WireEncoder.h"
#include "testkit/FakeWebSocketTask.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace stavelin::testkit {

/// A daemon at the other end of a connector's socket: keeps the requests and answers them as the test says.
class ScriptedDaemon final
{
public:
    using Answer = std::optional<daemon::ProtocolMessage>;

    explicit ScriptedDaemon(FakeWebSocketTaskFactory &sockets) : m_sockets(sockets) {}

    /// Takes the requests that have come and answers them; false when there was none.
    bool serve()
    {
        if (m_sockets.connections.empty())
            return false;
        const auto connection = m_sockets.connections.back(); // what is answered may make another
        if (std::exchange(m_served, connection) != connection)
            m_servedCount = 0;
        const std::size_t countBefore = m_servedCount;
        while (m_servedCount < connection->sent.size()) {
            const auto request = m_decoder.decodeMessage(connection->sent[m_servedCount++]).value();
            requests.push_back(request);
            connection->completeSends();
            if (const Answer response = onRequest(request))
                answer(*response);
        }
        return m_servedCount != countBefore;
    }

    /// Pushes a state of these slots and no files.
    void pushSlots(std::vector<daemon::ClipboardSlotData> slots)
    {
        const daemon::StatePayload state{.clipboard_slots = std::move(slots), .file_references = {}};
        m_sockets.last().deliverText(daemon::encodeStateEvent("state", state).value());
    }
    /// Pushes an answer to a request that onRequest left unanswered.
    void answer(const daemon::ProtocolMessage &message)
    {
        m_sockets.last().deliverText(daemon::encode(message).value());
    }
    void breakConnection() { m_sockets.last().failReceive("the connection broke"); }

    static daemon::ProtocolMessage responseTo(const daemon::ProtocolMessage &request, std::string content)
    {
        daemon::AnyCodable::Object payload;
        payload.emplace("content", daemon::AnyCodable{std::move(content)});
        return {.id = request.id,
                .type = daemon::MessageType::response,
                .method = std::nullopt,
                .payload = daemon::AnyCodable{std::move(payload)}};
    }
    static daemon::ProtocolMessage refusalOf(const daemon::ProtocolMessage &request, std::string message)
    {
        return {.id = request.id,
                .type = daemon::MessageType::response,
                .method = std::nullopt,
                .payload = std::nullopt,
                .error = daemon::ErrorPayload{"refused", std::move(message)}};
    }

    std::vector<daemon::ProtocolMessage> requests;
    /// What a request is answered with; nothing leaves it unanswered.
    std::function<Answer(const daemon::ProtocolMessage &request)> onRequest =
        [](const auto &request) -> Answer { return responseTo(request, "text of the slot"); };

private:
    FakeWebSocketTaskFactory &m_sockets;
    daemon::WireDecoder m_decoder;
    std::shared_ptr<FakeConnection> m_served;
    std::size_t m_servedCount = 0;
};

} // namespace stavelin::testkit
