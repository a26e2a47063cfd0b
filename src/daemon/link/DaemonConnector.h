#pragma once

#include <QObject>

#include <QCoroTask>

#include "daemon/link/ConnectionState.h"
#include "daemon/link/DaemonError.h"
#include "daemon/link/WebSocketTask.h"
#include "support/Clock.h"
#include "support/Completion.h"
#include "support/Log.h"

#include <cstdint>
#include <expected>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace stavelin::daemon {

/// The application's only link to the daemon: one WebSocket, a mirror of the daemon's state, requests matched
/// to their answers, and reconnection with growing pauses for as long as the program runs. Main thread only.
///
/// An operation that changes the daemon's state waits for its answer and, except pasteSlot(), does not look
/// at an error in it: the state that the daemon pushes says what came of it. Nothing is queued while there is
/// no connection.
class DaemonConnector final : public QObject
{
    Q_OBJECT

public:
    template <typename T = void>
    using Result = std::expected<T, LinkError>;

    DaemonConnector(WebSocketTaskFactory &sockets, support::Clock &clock, support::Log &log);
    /// Completes every waiter with `disconnected`; drops the socket without a close frame.
    ~DaemonConnector() override;

    [[nodiscard]] static DaemonConnector &shared();

    /// Each has a notification that comes with every assignment. Before the first state: nine empty slots, no
    /// files.
    [[nodiscard]] ConnectionState connectionState() const { return m_connectionState; }
    [[nodiscard]] const std::vector<model::ClipboardSlot> &clipboardSlots() const { return m_clipboardSlots; }
    [[nodiscard]] const std::vector<model::FileReference> &fileReferences() const { return m_fileReferences; }

    /// Does nothing unless `disconnected`. Becomes `connected` with the first frame, not with the open
    /// socket.
    void connect();
    /// Closes with code 1001. Like any other loss this ends in a new reconnect timer once the socket has
    /// reported its end: no line is drawn between a wanted and an unwanted close.
    void disconnect();

    /// Waits up to 10 s for the answer. Fails with notConnected, timeout, disconnected, or the transport's or
    /// encoder's own error.
    QCoro::Task<Result<ProtocolMessage>> sendRequest(std::string method,
                                                     std::optional<AnyCodable::Object> payload);

    QCoro::Task<Result<>> setSlot(std::int64_t slotIndex, std::string content);
    QCoro::Task<Result<>> clearSlot(std::int64_t slotIndex);
    /// The slot's text, which is on the system pasteboard by then. Fails with serverError when the daemon
    /// says so.
    QCoro::Task<Result<std::string>> pasteSlot(std::int64_t slotIndex);
    QCoro::Task<Result<>> addFile(std::string filePath);
    QCoro::Task<Result<>> removeFile(std::string id);
    /// One removal after the other, of the files that are pinned now; the first failure ends it.
    QCoro::Task<Result<>> clearFiles();
    QCoro::Task<Result<>> reorderFile(std::int64_t fromIndex, std::int64_t toIndex);

Q_SIGNALS:
    void connectionStateChanged();
    void clipboardSlotsChanged();
    void fileReferencesChanged();

private:
    using Waiter = support::Completion<Result<ProtocolMessage>>;
    using SendOutcome = support::Completion<Result<>>;

    void setConnectionState(ConnectionState state);
    void armReceive();
    void handleReceived(const WebSocketTask *task, std::expected<ReceivedFrame, TransportError> received);
    void handleFrame(ReceivedFrame frame);
    void handleMessage(ProtocolMessage message);
    void apply(ReceivedState state);
    void handleDisconnect();
    void forgetClosingTask(const WebSocketTask *task);
    void failOutstandingRequests();
    void completeRequest(const std::string &id, Result<ProtocolMessage> outcome);
    QCoro::Task<Result<>> sendDiscardingResponse(std::string method, AnyCodable::Object payload);

    WebSocketTaskFactory &m_sockets;
    support::Clock &m_clock;
    support::Log &m_log;

    ConnectionState m_connectionState = ConnectionState::disconnected;
    std::vector<model::ClipboardSlot> m_clipboardSlots;
    std::vector<model::FileReference> m_fileReferences;
    std::unique_ptr<WebSocketTask> m_webSocketTask;
    std::vector<std::unique_ptr<WebSocketTask>> m_closingTasks; ///< cancelled, their end not yet reported
    support::TimerHandle m_reconnectTask;
    std::map<std::string, Waiter> m_pendingRequests;
    std::map<std::string, SendOutcome> m_unfinishedSends; ///< requests whose frame is still on its way out
    std::chrono::duration<double> m_reconnectDelay;
};

} // namespace stavelin::daemon
