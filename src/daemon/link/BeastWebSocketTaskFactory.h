#pragma once

#include "daemon/link/PeerCheck.h"
#include "daemon/link/WebSocketTask.h"
#include "support/Clock.h"
#include "support/HandOver.h"

#include <memory>

namespace stavelin::daemon {

class IoThread;

/// WebSocket connections (RFC 6455) whose input, output and decoding run on one thread of the factory's own,
/// started with the first connection. Frames up to 256 MiB. No sub-protocol, extension, extra header or ping.
/// The host of a task's address is a numeric one.
///
/// What a task reports comes through `mainThread`, in the order in which it happened: a frame never before
/// the end of the send that it answers; when the connection ends, first the failure of every send that has
/// not gone out, then the error of the armed receive. Main thread only, apart from that.
class BeastWebSocketTaskFactory final : public WebSocketTaskFactory
{
public:
    /// `mainThread` and `clock` outlive the factory; of the clock only now() is called, on the factory's
    /// thread.
    BeastWebSocketTaskFactory(support::HandOver &mainThread, const support::Clock &clock,
                              PeerCheck peerCheck = acceptAnyPeer);
    /// Waits up to 200 ms for the close frames of cancelled tasks to go out, then stops the thread. A task
    /// that is left over never reports anything again.
    ~BeastWebSocketTaskFactory() override;
    BeastWebSocketTaskFactory(const BeastWebSocketTaskFactory &) = delete;
    BeastWebSocketTaskFactory &operator=(const BeastWebSocketTaskFactory &) = delete;

    [[nodiscard]] std::unique_ptr<WebSocketTask> makeTask(const std::string &url) override;

private:
    friend class BeastWebSocketTask;

    support::HandOver &m_mainThread;
    const support::Clock &m_clock;
    PeerCheck m_peerCheck;
    std::shared_ptr<IoThread> m_ioThread;
};

} // namespace stavelin::daemon
