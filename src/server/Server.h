#pragma once

#include "daemon/WireDecoder.h"
#include "server/LeveledLog.h"
#include "server/Limits.h"
#include "server/RequestDispatcher.h"
#include "server/SessionHost.h"
#include "server/StatePublisher.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <sys/types.h>

namespace stavelin::server {

/// Why the port could not be taken.
struct ListenError
{
    bool isInUse = false;
    std::string description;
};

/// Listens on 127.0.0.1 and speaks with the clients: each is told the state when it connects and after every
/// change, and its requests go to a RequestDispatcher. Only processes of the same user get in. One thread,
/// the one that runs `io`.
class Server final : private SessionHost
{
public:
    /// Takes the port; 0 takes any free one. Nobody is served before serve(). `io` and `log` must outlive the
    /// server.
    [[nodiscard]] static std::expected<std::unique_ptr<Server>, ListenError>
    listen(boost::asio::io_context &io, std::uint16_t port, LeveledLog &log, const Limits &limits = {});

    ~Server() override;
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    [[nodiscard]] std::uint16_t port() const { return m_port; }

    /// Begins to serve what is in `store`. Called once; both must outlive the server.
    void serve(SlotStore &store, Pasteboard &pasteboard, RequestDispatcher::IsSensitive isSensitive);

    /// Accepts nobody any more and says good-bye to all; `stopped` runs when they have gone, at the latest
    /// after a second.
    void stop(std::function<void()> stopped);

private:
    Server(boost::asio::io_context &io, boost::asio::ip::tcp::acceptor acceptor, std::uint16_t port,
           LeveledLog &log, const Limits &limits);

    void acceptNext();
    void admit(boost::asio::ip::tcp::socket socket);
    [[nodiscard]] std::optional<uid_t> uidOf(const boost::asio::ip::tcp::socket &socket) const;
    void publish();
    void finishStopping();

    void opened(Session &session) override;
    [[nodiscard]] bool received(Session &session, std::string_view frame) override;
    void refused(std::string_view reason) override;
    void stalled() override;
    void ended(Session &session) override;

    /// A client, and whether its handshake is done.
    struct Client
    {
        std::shared_ptr<Session> session;
        bool isOpen = false;
    };

    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::steady_timer m_pause; // before the next try to accept, and until stop() gives up waiting
    const std::uint16_t m_port;
    LeveledLog &m_log;
    const Limits m_limits;
    daemon::WireDecoder m_decoder;
    std::optional<StatePublisher> m_publisher;
    std::optional<RequestDispatcher> m_dispatcher;
    std::vector<Client> m_clients;
    std::function<void()> m_stopped;
};

} // namespace stavelin::server
