#include "daemon/link/BeastWebSocketTaskFactory.h"
#include "daemon/link/FrameReader.h"
#include "daemon/link/IoThread.h"
#include "daemon/link/WebSocketCompletions.h"
#include "daemon/link/WebSocketUrl.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <cassert>
#include <chrono>
#include <deque>
#include <string>
#include <utility>

namespace stavelin::daemon {

namespace {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;
using Tcp = net::ip::tcp;
using boost::system::error_code;
using namespace std::chrono_literals;

constexpr std::size_t longestFrame = 256 * 1024 * 1024;
constexpr std::size_t keptBuffer = 1024 * 1024; // a rare big frame must not hold its memory for good
constexpr std::size_t writeBuffer = 64 * 1024;  // a frame is masked and written in pieces of this size
constexpr auto handshakeTimeout = 5s;           // for the TCP connection, the upgrade and the closing each

const TransportError closedHere{.description = "The connection was closed by this side"};

SocketAddress socketAddress(const Tcp::endpoint &endpoint)
{
    return {.host = endpoint.address().to_string(), .port = endpoint.port()};
}

/// One connection on the transport's thread. All members are used on that thread only.
class Session : public std::enable_shared_from_this<Session>
{
public:
    Session(net::io_context &context, support::HandOver &mainThread, const support::Clock &clock,
            PeerCheck peerCheck, std::shared_ptr<WebSocketCompletions> completions)
        : m_mainThread(mainThread), m_peerCheck(std::move(peerCheck)), m_completions(std::move(completions)),
          m_stream(context), m_reader(clock)
    {}

    void open(const std::string &host, std::uint16_t port);
    void send(std::uint64_t number, std::string text);
    void receive();
    /// Ends the connection with a close frame after what is queued; at once, if it does not stand yet.
    void close(int code);
    /// Ends the connection without a word to the other side and reports the error to whatever waits.
    void fail(TransportError error);

private:
    struct Write
    {
        std::uint64_t number;
        std::string text;
    };

    [[nodiscard]] beast::tcp_stream &tcp() { return beast::get_lowest_layer(m_stream); }
    void handleConnected(error_code error);
    void handleHandshake(error_code error);
    void read();
    void handleRead(error_code error);
    void writeNext();
    void handleWritten(error_code error);
    void beginClose();
    void fail(error_code error);
    void reportSend(std::uint64_t number, std::expected<void, TransportError> outcome);
    void reportReceive(std::expected<ReceivedFrame, TransportError> received);

    support::HandOver &m_mainThread;
    PeerCheck m_peerCheck;
    std::shared_ptr<WebSocketCompletions> m_completions;
    websocket::stream<beast::tcp_stream> m_stream;
    std::string m_hostField;
    FrameReader m_reader;
    beast::flat_buffer m_buffer;
    std::deque<Write> m_writes; // the first one is under way while m_isWriting
    std::optional<int> m_closeCode;
    std::optional<TransportError> m_error; // why the connection is over
    bool m_isOpen = false;
    bool m_isWriting = false;
    bool m_isReceiveArmed = false;
};

void Session::open(const std::string &host, std::uint16_t port)
{
    if (m_error)
        return;
    error_code error;
    const auto address = net::ip::make_address(host, error);
    if (error)
        return fail(error);
    m_hostField = host + ':' + std::to_string(port);
    tcp().expires_after(handshakeTimeout);
    tcp().async_connect(Tcp::endpoint(address, port),
                        [self = shared_from_this()](error_code failed) { self->handleConnected(failed); });
}

void Session::handleConnected(error_code error)
{
    if (m_error)
        return;
    const auto local = error ? Tcp::endpoint() : tcp().socket().local_endpoint(error);
    const auto remote = error ? Tcp::endpoint() : tcp().socket().remote_endpoint(error);
    if (error || tcp().socket().set_option(Tcp::no_delay(true), error))
        return fail(error);

    auto verdict = m_peerCheck(socketAddress(local), socketAddress(remote));
    if (!verdict)
        return fail(std::move(verdict).error());

    tcp().expires_never(); // the stream watches the time itself from here on
    m_stream.set_option(websocket::stream_base::timeout{
        .handshake_timeout = handshakeTimeout,
        .idle_timeout = websocket::stream_base::none(),
        .keep_alive_pings = false,
    });
    m_stream.read_message_max(longestFrame);
    m_stream.auto_fragment(false);
    m_stream.write_buffer_bytes(writeBuffer);
    m_stream.text(true);
    m_stream.async_handshake(
        m_hostField, "/", [self = shared_from_this()](error_code failed) { self->handleHandshake(failed); });
}

void Session::handleHandshake(error_code error)
{
    if (m_error)
        return;
    if (error)
        return fail(error);
    m_isOpen = true;
    if (m_isReceiveArmed)
        read();
    writeNext();
}

void Session::receive()
{
    if (m_error)
        return reportReceive(std::unexpected(*m_error));
    m_isReceiveArmed = true;
    if (m_isOpen)
        read();
}

void Session::read()
{
    m_stream.async_read(
        m_buffer, [self = shared_from_this()](error_code error, std::size_t) { self->handleRead(error); });
}

void Session::handleRead(error_code error)
{
    if (m_error)
        return;
    if (error)
        return fail(error);

    const auto bytes = m_buffer.cdata();
    const auto kind = m_stream.got_text() ? FrameKind::text : FrameKind::binary;
    auto frame = m_reader.read(kind, {static_cast<const char *>(bytes.data()), bytes.size()});
    m_buffer.clear();
    if (m_buffer.capacity() > keptBuffer)
        m_buffer.shrink_to_fit();
    m_isReceiveArmed = false;
    reportReceive(std::move(frame));
}

void Session::send(std::uint64_t number, std::string text)
{
    if (m_error || m_closeCode)
        return reportSend(number, std::unexpected(m_error ? *m_error : closedHere));
    m_writes.push_back({.number = number, .text = std::move(text)});
    writeNext();
}

void Session::writeNext()
{
    if (!m_isOpen || m_isWriting)
        return;
    if (m_writes.empty()) {
        if (m_closeCode)
            beginClose();
        return;
    }
    m_isWriting = true;
    m_stream.async_write(
        net::buffer(m_writes.front().text),
        [self = shared_from_this()](error_code error, std::size_t) { self->handleWritten(error); });
}

void Session::handleWritten(error_code error)
{
    if (m_error)
        return;
    if (error)
        return fail(error);
    m_isWriting = false;
    reportSend(m_writes.front().number, {});
    m_writes.pop_front();
    writeNext();
}

void Session::close(int code)
{
    if (m_error || m_closeCode)
        return;
    if (!m_isOpen)
        return fail(closedHere);
    m_closeCode = code;
    writeNext();
}

void Session::beginClose()
{
    m_isWriting = true; // nothing may follow a close frame
    m_stream.async_close(static_cast<websocket::close_code>(*m_closeCode),
                         [self = shared_from_this()](error_code) { self->fail(closedHere); });
}

void Session::fail(error_code error)
{
    if (error == websocket::error::closed)
        return fail({.description = "The connection was closed by the other side with code " +
                                    std::to_string(m_stream.reason().code)});
    fail({.description = error.message()});
}

void Session::fail(TransportError error)
{
    if (m_error)
        return;
    m_error = std::move(error);
    m_isOpen = false;
    tcp().close();
    // The texts stay: the write that the closing interrupts may still refer to the first of them.
    for (const Write &write : m_writes)
        reportSend(write.number, std::unexpected(*m_error));
    if (m_isReceiveArmed)
        reportReceive(std::unexpected(*m_error));
}

void Session::reportSend(std::uint64_t number, std::expected<void, TransportError> outcome)
{
    m_mainThread.post([completions = m_completions, number, outcome = std::move(outcome)]() mutable {
        completions->finishSend(number, std::move(outcome));
    });
}

void Session::reportReceive(std::expected<ReceivedFrame, TransportError> received)
{
    m_mainThread.post([completions = m_completions, received = std::move(received)]() mutable {
        completions->finishReceive(std::move(received));
    });
}

} // namespace

/// The main thread's end of a Session.
class BeastWebSocketTask final : public WebSocketTask
{
public:
    BeastWebSocketTask(BeastWebSocketTaskFactory &factory, WebSocketUrl url)
        : m_ioThread(factory.m_ioThread), m_mainThread(factory.m_mainThread), m_host(url.host),
          m_port(url.port),
          m_session(std::make_shared<Session>(m_ioThread->context(), factory.m_mainThread, factory.m_clock,
                                              factory.m_peerCheck, m_completions))
    {}

    ~BeastWebSocketTask() override
    {
        m_completions->forget();
        if (!m_isCancelled)
            onIoThread([](Session &session) { session.fail(closedHere); });
    }
    BeastWebSocketTask(const BeastWebSocketTask &) = delete;
    BeastWebSocketTask &operator=(const BeastWebSocketTask &) = delete;

    void resume() override
    {
        m_ioThread->startOnce();
        onIoThread([host = m_host, port = m_port](Session &session) { session.open(host, port); });
    }

    void send(std::string text, SendCompletion completion) override
    {
        const auto number = m_completions->addSend(std::move(completion));
        onIoThread([number, text = std::move(text)](Session &session) mutable {
            session.send(number, std::move(text));
        });
    }

    void receive(ReceiveCompletion completion) override
    {
        m_completions->armReceive(std::move(completion));
        if (m_isCancelled)
            postCancellation();
        else
            onIoThread([](Session &session) { session.receive(); });
    }

    void cancel(int closeCode) override
    {
        m_isCancelled = true;
        m_completions->cancel(closedHere);
        postCancellation(); // the other side may be slow to confirm the closing, or never do it
        onIoThread([closeCode](Session &session) { session.close(closeCode); });
    }

private:
    template <typename Action>
    void onIoThread(Action action)
    {
        net::post(m_ioThread->context(),
                  [session = m_session, action = std::move(action)]() mutable { action(*session); });
    }

    void postCancellation()
    {
        m_mainThread.post(
            [completions = m_completions] { completions->finishReceive(std::unexpected(closedHere)); });
    }

    std::shared_ptr<IoThread> m_ioThread;
    support::HandOver &m_mainThread;
    std::string m_host;
    std::uint16_t m_port;
    std::shared_ptr<WebSocketCompletions> m_completions = std::make_shared<WebSocketCompletions>();
    std::shared_ptr<Session> m_session;
    bool m_isCancelled = false;
};

BeastWebSocketTaskFactory::BeastWebSocketTaskFactory(support::HandOver &mainThread,
                                                     const support::Clock &clock, PeerCheck peerCheck)
    : m_mainThread(mainThread), m_clock(clock), m_peerCheck(std::move(peerCheck)),
      m_ioThread(std::make_shared<IoThread>())
{}

BeastWebSocketTaskFactory::~BeastWebSocketTaskFactory()
{
    m_ioThread->stop();
}

std::unique_ptr<WebSocketTask> BeastWebSocketTaskFactory::makeTask(const std::string &url)
{
    const auto address = WebSocketUrl::parse(url);
    assert(address && "the address of a task must be of the form ws://host:port");
    return std::make_unique<BeastWebSocketTask>(*this, *address);
}

} // namespace stavelin::daemon
