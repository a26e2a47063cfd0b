#pragma once

#include "daemon/link/FrameReader.h"
#include "daemon/link/WebSocketTask.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace stavelin::testkit {

/// The other end of a FakeWebSocketTask: what the test sees of the task and does to it. Outlives the task.
/// Completions run inside the calls below, never inside the task's own; after the task was destroyed, or when
/// it armed no receive, what is delivered to it is lost.
class FakeConnection
{
public:
    FakeConnection(std::string address, const support::Clock &clock)
        : url(std::move(address)), m_reader(clock)
    {}

    std::string url;
    std::vector<std::string> sent; ///< the texts of all frames, in order
    bool isResumed = false;
    bool isDestroyed = false;
    std::optional<int> closeCode; ///< given to cancel()

    [[nodiscard]] bool isReceiveArmed() const { return m_receive != nullptr; }

    void deliverText(std::string_view text) { deliver(m_reader.read(daemon::FrameKind::text, text)); }
    void deliverBinary(std::string_view bytes) { deliver(m_reader.read(daemon::FrameKind::binary, bytes)); }
    void failReceive(std::string description);

    /// Ends all sends that have not ended yet, those included that the completions start.
    void completeSends();
    void failSends(std::string description);

private:
    friend class FakeWebSocketTask;

    void deliver(std::expected<daemon::ReceivedFrame, daemon::TransportError> received);
    void finishSends(const std::expected<void, daemon::TransportError> &outcome);

    daemon::FrameReader m_reader;
    std::deque<daemon::WebSocketTask::SendCompletion> m_sends;
    daemon::WebSocketTask::ReceiveCompletion m_receive;
};

} // namespace stavelin::testkit
