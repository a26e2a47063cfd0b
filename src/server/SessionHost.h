#pragma once

#include <string_view>

namespace stavelin::server {

class Session;

/// What a session needs of the server. All on the server's thread.
class SessionHost
{
public:
    virtual ~SessionHost() = default;

    /// The handshake is done; from now on frames can be sent.
    virtual void opened(Session &session) = 0;
    /// A frame arrived. True when sendAnswer() follows for it, be it inside this call.
    [[nodiscard]] virtual bool received(Session &session, std::string_view frame) = 0;
    /// The handshake was refused: "an Origin header", for the log.
    virtual void refused(std::string_view reason) = 0;
    /// The client left a frame unread for too long and is dropped.
    virtual void stalled() = 0;
    /// The last call of a session, which the host drops.
    virtual void ended(Session &session) = 0;
};

} // namespace stavelin::server
