#include "server/Server.h"

#include "daemon/WireEncoder.h"
#include "server/PeerUid.h"
#include "server/Session.h"
#include "server/Uuid.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <unistd.h>

namespace stavelin::server {

using boost::asio::ip::tcp;
using daemon::MessageType;
using daemon::ProtocolMessage;

namespace {

constexpr std::chrono::milliseconds pauseAfterFailedAccept{100};
constexpr std::chrono::seconds longestGoodbye{1};
// A decoder keeps buffers of the size of the largest frame that it has read.
constexpr std::size_t ordinaryFrame = std::size_t{1024} * 1024;

} // namespace

std::expected<std::unique_ptr<Server>, ListenError>
Server::listen(boost::asio::io_context &io, std::uint16_t port, LeveledLog &log, const Limits &limits)
{
    const tcp::endpoint endpoint(boost::asio::ip::address_v4::loopback(), port);
    tcp::acceptor acceptor(io);
    boost::system::error_code error;
    acceptor.open(endpoint.protocol(), error);
    if (!error) // or a restart would have to wait for the connections of the run before to be forgotten
        acceptor.set_option(tcp::acceptor::reuse_address(true), error);
    if (!error)
        acceptor.bind(endpoint, error);
    if (!error)
        acceptor.listen(tcp::acceptor::max_listen_connections, error);
    if (error)
        return std::unexpected(ListenError{error == boost::asio::error::address_in_use, error.message()});
    const std::uint16_t taken = acceptor.local_endpoint().port();
    return std::unique_ptr<Server>(new Server(io, std::move(acceptor), taken, log, limits));
}

Server::Server(boost::asio::io_context &io, tcp::acceptor acceptor, std::uint16_t port, LeveledLog &log,
               const Limits &limits)
    : m_acceptor(std::move(acceptor)), m_pause(io), m_port(port), m_log(log), m_limits(limits)
{}

Server::~Server()
{
    for (const Client &client : m_clients)
        client.session->detach();
}

void Server::serve(SlotStore &store, Pasteboard &pasteboard, RequestDispatcher::IsSensitive isSensitive)
{
    m_publisher.emplace(store, makeUuid);
    m_dispatcher.emplace(store, pasteboard, std::move(isSensitive), [this] { publish(); });
    acceptNext();
}

void Server::stop(std::function<void()> stopped)
{
    m_stopped = std::move(stopped);
    boost::system::error_code ignored;
    m_acceptor.close(ignored);
    const std::vector<Client> clients = m_clients; // closing one takes it off the list
    for (const Client &client : clients)
        client.session->close();
    if (m_clients.empty()) {
        finishStopping();
        return;
    }
    m_pause.expires_after(longestGoodbye);
    m_pause.async_wait([this](boost::system::error_code error) {
        if (!error)
            finishStopping();
    });
}

void Server::finishStopping()
{
    if (const auto stopped = std::exchange(m_stopped, nullptr))
        stopped();
}

void Server::acceptNext()
{
    m_acceptor.async_accept([this](boost::system::error_code error, tcp::socket socket) {
        if (error == boost::asio::error::operation_aborted || !m_acceptor.is_open())
            return;
        if (!error) {
            admit(std::move(socket));
            acceptNext();
            return;
        }
        // Most likely the process has run out of descriptors: the connection stays in line meanwhile.
        m_log.warn("A connection could not be accepted: " + error.message());
        m_pause.expires_after(pauseAfterFailedAccept);
        m_pause.async_wait([this](boost::system::error_code cancelled) {
            if (!cancelled)
                acceptNext();
        });
    });
}

void Server::admit(tcp::socket socket)
{
    const auto uid = uidOf(socket);
    if (!uid) {
        m_log.debug("A connection was refused: it ended at once, or nobody knows whose it is.");
        return;
    }
    if (*uid != ::geteuid()) {
        m_log.warn("A connection of another user was refused.");
        return;
    }
    if (m_clients.size() >= m_limits.connections) {
        m_log.warn("A connection was refused: there are " + std::to_string(m_clients.size()) + " already.");
        return;
    }
    const auto session = makeWebSocketSession(std::move(socket), m_port, m_limits, *this);
    m_clients.push_back({session});
    session->start();
}

std::optional<uid_t> Server::uidOf(const tcp::socket &socket) const
{
    boost::system::error_code error;
    const tcp::endpoint peer = socket.remote_endpoint(error);
    if (error || !peer.address().is_v4())
        return std::nullopt;
    return uidOfPeer({peer.address().to_v4().to_uint(), peer.port(),
                      boost::asio::ip::address_v4::loopback().to_uint(), m_port});
}

void Server::publish()
{
    m_publisher->stateChanged();
    for (const Client &client : m_clients) {
        if (client.isOpen)
            client.session->sendState(m_publisher->frame());
    }
}

void Server::opened(Session &session)
{
    for (Client &client : m_clients) {
        if (client.session.get() == &session)
            client.isOpen = true;
    }
    session.sendState(m_publisher->frame());
    m_log.debug("A client connected.");
}

bool Server::received(Session &session, std::string_view frame)
{
    std::optional<daemon::WireDecoder> ownDecoder;
    if (frame.size() > ordinaryFrame)
        ownDecoder.emplace();
    auto message = (ownDecoder ? *ownDecoder : m_decoder).decodeMessage(frame);
    if (!message) {
        m_log.warn("Failed to decode message: " + message.error().description);
        return false;
    }
    if (message->type != MessageType::request)
        return false;
    m_log.debug("A request arrived.");
    m_dispatcher->dispatch(
        std::move(*message), [session = session.weak_from_this()](const ProtocolMessage &answer) {
            const auto asking = session.lock();
            if (!asking)
                return;
            // Nothing in an answer can fail to be written: its texts came in through the decoder.
            if (auto encoded = daemon::encode(answer))
                asking->sendAnswer(std::make_shared<const std::string>(std::move(*encoded)));
        });
    return true;
}

void Server::refused(std::string_view reason)
{
    m_log.warn("A handshake was refused: " + std::string(reason) + ".");
}

void Server::stalled()
{
    m_log.warn("A client that does not read was dropped.");
}

void Server::ended(Session &session)
{
    std::erase_if(m_clients, [&](const Client &client) { return client.session.get() == &session; });
    if (m_clients.empty() && m_stopped) {
        m_pause.cancel();
        finishStopping();
    }
}

} // namespace stavelin::server
