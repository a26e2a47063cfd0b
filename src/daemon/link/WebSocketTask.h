#pragma once

#include "daemon/ProtocolMessage.h"
#include "daemon/WireError.h"
#include "daemon/link/DaemonError.h"
#include "model/ClipboardSlot.h"
#include "model/FileReference.h"

#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace stavelin::daemon {

/// A well-formed state event, already turned into the model's records.
struct ReceivedState
{
    std::vector<model::ClipboardSlot> clipboardSlots;
    std::vector<model::FileReference> fileReferences;
};

/// A frame that no message can be in: binary that is not UTF-8.
struct DroppedFrame
{};

/// One received frame, read as far as can be done away from the main thread. Every frame gives exactly one of
/// these, in the order of arrival, the undecodable ones included.
using ReceivedFrame = std::variant<ProtocolMessage, ReceivedState, DecodingError, DroppedFrame>;

/// One WebSocket connection, from the attempt to its end. All calls and completions on the main thread; no
/// completion runs inside the call that it belongs to, and none after the task was destroyed. Destroying an
/// open task drops the connection without a close frame.
class WebSocketTask
{
public:
    using SendCompletion = std::move_only_function<void(std::expected<void, TransportError>)>;
    using ReceiveCompletion = std::move_only_function<void(std::expected<ReceivedFrame, TransportError>)>;

    virtual ~WebSocketTask() = default;

    /// Starts the connection. Called once.
    virtual void resume() = 0;

    /// Sends one text frame; frames go out in the order of these calls. May be called before the socket is
    /// open.
    virtual void send(std::string text, SendCompletion completion) = 0;

    /// Arms one receive: the completion gets the next frame, or the error that ended the connection (at once,
    /// if it has ended already). At most one receive is armed at a time.
    virtual void receive(ReceiveCompletion completion) = 0;

    /// Sends a close frame with this code and no reason, and ends. An armed receive completes with an error.
    virtual void cancel(int closeCode) = 0;
};

class WebSocketTaskFactory
{
public:
    virtual ~WebSocketTaskFactory() = default;

    /// A task that is not started yet. `url` is of the form "ws://host:port".
    [[nodiscard]] virtual std::unique_ptr<WebSocketTask> makeTask(const std::string &url) = 0;
};

} // namespace stavelin::daemon
