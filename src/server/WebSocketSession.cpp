#include "server/Session.h"

#include "server/HandshakeRules.h"

#include <optional>
#include <string>
#include <utility>

#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

namespace stavelin::server {

namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using beast::error_code;

namespace {

constexpr std::size_t largestRequestHead = 8 * 1024;
// A buffer that has grown beyond this for one frame is given back after it.
constexpr std::size_t ordinaryBuffer = 64 * 1024;

class WebSocketSession final : public Session
{
public:
    WebSocketSession(boost::asio::ip::tcp::socket socket, std::uint16_t port, const Limits &limits,
                     SessionHost &host)
        : m_webSocket(std::move(socket)), m_stallTimer(m_webSocket.get_executor()), m_port(port),
          m_limits(limits), m_host(&host)
    {}

    void start() override
    {
        tcp().socket().set_option(boost::asio::ip::tcp::no_delay(true));
        tcp().expires_after(m_limits.handshake);
        m_parser.emplace();
        m_parser->header_limit(largestRequestHead);
        m_parser->body_limit(0);
        http::async_read(tcp(), m_buffer, *m_parser,
                         [this, self = shared_from_this()](error_code error, std::size_t) {
                             if (error)
                                 end();
                             else
                                 answerHandshake();
                         });
    }

    void sendState(Frame frame) override
    {
        m_queue.pushState(std::move(frame));
        writeNext();
    }

    void sendAnswer(Frame frame) override
    {
        m_queue.pushAnswer(std::move(frame));
        writeNext();
    }

    void close() override
    {
        if (!m_isOpen) {
            end();
            return;
        }
        if (std::exchange(m_isClosing, true))
            return;
        m_webSocket.async_close(websocket::close_code::going_away,
                                [this, self = shared_from_this()](error_code) { end(); });
    }

    void detach() override
    {
        m_host = nullptr;
        end();
    }

private:
    beast::tcp_stream &tcp() { return m_webSocket.next_layer(); }

    void answerHandshake()
    {
        const auto &request = m_parser->get();
        if (!websocket::is_upgrade(request))
            refuse(http::status::upgrade_required, "no WebSocket handshake");
        else if (request.count(http::field::origin) != 0)
            refuse(http::status::forbidden, "an Origin header");
        else if (request.count(http::field::host) != 1 || !isLoopbackHost(hostOf(request), m_port))
            refuse(http::status::forbidden, "a Host that is not loopback");
        else
            accept();
    }

    static std::string_view hostOf(const http::request<http::empty_body> &request)
    {
        const auto host = request[http::field::host];
        return {host.data(), host.size()};
    }

    void refuse(http::status status, std::string_view reason)
    {
        if (m_host)
            m_host->refused(reason);
        m_refusal.result(status);
        m_refusal.version(11);
        m_refusal.set(http::field::connection, "close");
        m_refusal.prepare_payload();
        http::async_write(tcp(), m_refusal,
                          [this, self = shared_from_this()](error_code, std::size_t) { end(); });
    }

    void accept()
    {
        // The stall timer watches what is written; an idle connection stays for as long as the client likes.
        tcp().expires_never();
        websocket::stream_base::timeout timeout{};
        timeout.handshake_timeout = m_limits.handshake;
        timeout.idle_timeout = websocket::stream_base::none();
        timeout.keep_alive_pings = false;
        m_webSocket.set_option(timeout);
        m_webSocket.read_message_max(Limits::frame);
        m_webSocket.auto_fragment(false);
        m_webSocket.text(true);
        m_webSocket.async_accept(m_parser->get(), [this, self = shared_from_this()](error_code error) {
            m_parser.reset();
            if (error || !m_host) {
                end();
                return;
            }
            m_isOpen = true;
            m_host->opened(*this);
            readNext();
        });
    }

    void readNext()
    {
        if (m_isReading || m_hasEnded || m_openRequests >= m_limits.openRequests)
            return;
        m_isReading = true;
        m_webSocket.async_read(m_buffer, [this, self = shared_from_this()](error_code error, std::size_t) {
            m_isReading = false;
            if (error || !m_host) {
                end();
                return;
            }
            const auto bytes = m_buffer.cdata();
            ++m_openRequests;
            if (!m_host->received(*this, {static_cast<const char *>(bytes.data()), bytes.size()}))
                --m_openRequests;
            m_buffer.consume(m_buffer.size());
            if (m_buffer.capacity() > ordinaryBuffer)
                m_buffer.shrink_to_fit();
            readNext();
        });
    }

    void writeNext()
    {
        if (m_isWriting || !m_isOpen || m_hasEnded || m_isClosing)
            return;
        const std::size_t answersBefore = m_queue.answers();
        m_inFlight = m_queue.pop();
        if (!m_inFlight)
            return;
        const bool isAnswer = m_queue.answers() < answersBefore;
        m_isWriting = true;
        watchForStall();
        m_webSocket.async_write(boost::asio::buffer(*m_inFlight),
                                [this, isAnswer, self = shared_from_this()](error_code error, std::size_t) {
                                    m_isWriting = false;
                                    m_inFlight.reset();
                                    m_stallTimer.cancel();
                                    if (error) {
                                        end();
                                        return;
                                    }
                                    if (isAnswer)
                                        --m_openRequests;
                                    writeNext();
                                    readNext();
                                });
    }

    void watchForStall()
    {
        m_stallTimer.expires_after(m_limits.stall);
        m_stallTimer.async_wait([this, self = shared_from_this()](error_code error) {
            // A timer that ran out just as its frame was taken may belong to the next frame already.
            const bool isOver = m_stallTimer.expiry() <= std::chrono::steady_clock::now();
            if (error || !m_isWriting || !isOver)
                return;
            if (m_host)
                m_host->stalled();
            end();
        });
    }

    void end()
    {
        if (std::exchange(m_hasEnded, true))
            return;
        m_isOpen = false;
        m_stallTimer.cancel();
        tcp().close();
        if (SessionHost *host = std::exchange(m_host, nullptr))
            host->ended(*this);
    }

    websocket::stream<beast::tcp_stream> m_webSocket;
    boost::asio::steady_timer m_stallTimer;
    const std::uint16_t m_port;
    const Limits m_limits;
    SessionHost *m_host; // null once it has been told of the end, or has gone itself
    beast::flat_buffer m_buffer;
    std::optional<http::request_parser<http::empty_body>> m_parser;
    http::response<http::empty_body> m_refusal;
    OutgoingQueue m_queue;
    Frame m_inFlight;
    std::size_t m_openRequests = 0; // received and not yet answered to the last byte
    bool m_isOpen = false;
    bool m_isReading = false;
    bool m_isWriting = false;
    bool m_isClosing = false;
    bool m_hasEnded = false;
};

} // namespace

std::shared_ptr<Session> makeWebSocketSession(boost::asio::ip::tcp::socket socket, std::uint16_t port,
                                              const Limits &limits, SessionHost &host)
{
    return std::make_shared<WebSocketSession>(std::move(socket), port, limits, host);
}

} // namespace stavelin::server
