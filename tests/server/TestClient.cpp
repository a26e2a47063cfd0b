#include "server/TestClient.h"

#include <deque>
#include <utility>

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>

namespace stavelin::testkit {

namespace beast = boost::beast;
namespace websocket = beast::websocket;
using beast::error_code;
using boost::asio::ip::tcp;

bool runUntil(boost::asio::io_context &io, const std::function<bool()> &condition,
              std::chrono::milliseconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        io.restart();
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        io.run_one_until(deadline);
    }
    return true;
}

struct TestClient::State
{
    explicit State(boost::asio::io_context &context) : io(context), webSocket(context) {}

    void writeNext(const std::shared_ptr<State> &self)
    {
        if (isWriting || outgoing.empty())
            return;
        isWriting = true;
        webSocket.binary(outgoing.front().second);
        webSocket.async_write(boost::asio::buffer(outgoing.front().first),
                              [this, self](error_code error, std::size_t) {
                                  isWriting = false;
                                  outgoing.pop_front();
                                  if (error)
                                      outgoing.clear();
                                  writeNext(self);
                              });
    }

    boost::asio::io_context &io;
    websocket::stream<tcp::socket> webSocket;
    beast::flat_buffer buffer;
    std::deque<std::pair<std::string, bool>> outgoing;
    unsigned status = 0;
    bool isOpen = false;
    bool isWriting = false;
};

TestClient::TestClient(boost::asio::io_context &io, std::uint16_t port, const Handshake &handshake)
    : m_state(std::make_shared<State>(io))
{
    auto &webSocket = m_state->webSocket;
    tcp::socket &socket = webSocket.next_layer();
    socket.open(tcp::v4());
    if (handshake.receiveBuffer != 0)
        socket.set_option(tcp::socket::receive_buffer_size(handshake.receiveBuffer));
    error_code error;
    socket.connect({boost::asio::ip::address_v4::loopback(), port}, error);
    if (error)
        return;
    webSocket.read_message_max(std::size_t{256} * 1024 * 1024);
    webSocket.auto_fragment(false);
    if (handshake.origin) {
        webSocket.set_option(
            websocket::stream_base::decorator([origin = *handshake.origin](websocket::request_type &request) {
                request.set("Origin", origin);
            }));
    }
    websocket::response_type response;
    std::optional<error_code> result;
    webSocket.async_handshake(response, handshake.host, "/", [&result](error_code done) { result = done; });
    const bool isDone = runUntil(io, [&] { return result.has_value(); });
    if (!isDone) {
        socket.close(error);
        runUntil(io, [&] { return result.has_value(); });
    }
    m_state->isOpen = isDone && !*result;
    m_state->status = response.result_int();
    if (*result && *result != websocket::error::upgrade_declined)
        m_state->status = 0;
}

TestClient::TestClient(TestClient &&) noexcept = default;

TestClient::~TestClient()
{
    if (m_state)
        drop();
}

bool TestClient::isOpen() const
{
    return m_state->isOpen;
}

unsigned TestClient::status() const
{
    return m_state->status;
}

std::optional<std::string> TestClient::read(std::chrono::milliseconds limit)
{
    if (!m_state->isOpen)
        return std::nullopt;
    const auto result = std::make_shared<std::optional<error_code>>();
    m_state->webSocket.async_read(
        m_state->buffer, [result, state = m_state](error_code done, std::size_t) { *result = done; });
    if (!runUntil(
            m_state->io, [&] { return result->has_value(); }, limit) ||
        **result) {
        m_state->isOpen = false;
        return std::nullopt;
    }
    std::string text = beast::buffers_to_string(m_state->buffer.data());
    m_state->buffer.consume(m_state->buffer.size());
    return text;
}

void TestClient::send(std::string text)
{
    m_state->outgoing.emplace_back(std::move(text), false);
    m_state->writeNext(m_state);
}

void TestClient::sendBinary(std::string bytes)
{
    m_state->outgoing.emplace_back(std::move(bytes), true);
    m_state->writeNext(m_state);
}

bool TestClient::isSent() const
{
    return m_state->outgoing.empty();
}

std::uint16_t TestClient::closeCode() const
{
    return m_state->webSocket.reason().code;
}

void TestClient::close()
{
    const auto isDone = std::make_shared<bool>(false);
    m_state->webSocket.async_close(websocket::close_code::going_away,
                                   [isDone, state = m_state](error_code) { *isDone = true; });
    runUntil(m_state->io, [&] { return *isDone; });
    m_state->isOpen = false;
}

void TestClient::drop()
{
    error_code ignored;
    m_state->webSocket.next_layer().close(ignored);
    m_state->isOpen = false;
}

} // namespace stavelin::testkit
