#pragma once

#include "daemon/link/WebSocketTask.h"

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <utility>

namespace stavelin::daemon {

/// What the owner of a task waits for. Lives on the main thread and may outlive its task, since news from the
/// transport's thread can still be under way to it. Whatever the owner handed in is destroyed on the main
/// thread.
class WebSocketCompletions
{
public:
    /// Returns the number by which finishSend() finds the completion.
    std::uint64_t addSend(WebSocketTask::SendCompletion completion);
    void armReceive(WebSocketTask::ReceiveCompletion completion);

    /// Both do nothing if nothing waits for this news any more. The completion may destroy the task.
    void finishSend(std::uint64_t number, std::expected<void, TransportError> outcome);
    void finishReceive(std::expected<ReceivedFrame, TransportError> received);

    /// From now on every received frame turns into this error.
    void cancel(TransportError error) { m_cancellation = std::move(error); }
    /// Drops all completions unused: nothing runs after this.
    void forget();

private:
    std::uint64_t m_lastNumber = 0;
    std::map<std::uint64_t, WebSocketTask::SendCompletion> m_sends;
    WebSocketTask::ReceiveCompletion m_receive;
    std::optional<TransportError> m_cancellation;
};

} // namespace stavelin::daemon
