#pragma once

#include "server/Limits.h"
#include "server/OutgoingQueue.h"
#include "server/SessionHost.h"

#include <cstdint>
#include <memory>
#include <utility>

#include <boost/asio/ip/tcp.hpp>

namespace stavelin::server {

/// One client's connection, from the handshake to its end. All calls on the server's thread. Keeps itself
/// alive while something is under way, so that the host may drop it at any moment after detach().
class Session : public std::enable_shared_from_this<Session>
{
public:
    using Frame = OutgoingQueue::Frame;

    virtual ~Session() = default;

    /// Begins with the handshake. Called once.
    virtual void start() = 0;
    /// Replaces a state that still waits to be sent.
    virtual void sendState(Frame frame) = 0;
    virtual void sendAnswer(Frame frame) = 0;
    /// Says that the server goes away (1001) and ends.
    virtual void close() = 0;
    /// The host is going: it is not called any more, and the connection is dropped.
    virtual void detach() = 0;
};

/// A session over WebSocket on a connection that was just accepted on `port`. Refuses the handshake of a web
/// page: one with an Origin header, or with a Host that is not loopback.
[[nodiscard]] std::shared_ptr<Session> makeWebSocketSession(boost::asio::ip::tcp::socket socket,
                                                            std::uint16_t port, const Limits &limits,
                                                            SessionHost &host);

} // namespace stavelin::server
