#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <functional>
#include <future>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace stavelin::daemon {

/// A WebSocket server for one client on a port of the system's choice. Its side of the talk is a function
/// that runs on the server's own thread with blocking calls; it may end by throwing.
class LoopbackServer
{
public:
    using Stream = boost::beast::websocket::stream<boost::asio::ip::tcp::socket>;
    using Request = boost::beast::http::request<boost::beast::http::string_body>;

    explicit LoopbackServer(std::move_only_function<void(Stream &)> talk)
        : m_thread([this, talk = std::move(talk)]() mutable { serve(talk); })
    {}
    ~LoopbackServer()
    {
        // What still blocks the thread ends with the sockets' use.
        ::shutdown(m_acceptor.native_handle(), SHUT_RDWR);
        const int connection = m_connection.get_future().get();
        ::shutdown(connection, SHUT_RDWR);
        m_thread.join();
        ::close(connection);
    }
    LoopbackServer(const LoopbackServer &) = delete;
    LoopbackServer &operator=(const LoopbackServer &) = delete;

    [[nodiscard]] std::uint16_t port() const { return m_port; }
    [[nodiscard]] std::string url() const { return "ws://127.0.0.1:" + std::to_string(m_port); }
    /// The client's upgrade request; waits for it.
    [[nodiscard]] Request request() { return m_request.get_future().get(); }

    /// The next message as text.
    static std::string read(Stream &stream)
    {
        boost::beast::flat_buffer buffer;
        stream.read(buffer);
        return boost::beast::buffers_to_string(buffer.data());
    }
    static void write(Stream &stream, std::string_view message)
    {
        stream.write(boost::asio::buffer(message.data(), message.size()));
    }
    /// Reads until the connection ends, without answering anything.
    static void readWithoutAnswering(Stream &stream)
    {
        boost::system::error_code error;
        std::vector<char> bytes(1024 * 1024);
        while (!error)
            stream.next_layer().read_some(boost::asio::buffer(bytes), error);
    }
    /// Reads until the connection ends and says how: the close code, or 0 when there was no close frame.
    static int readToTheEnd(Stream &stream)
    {
        boost::system::error_code error;
        boost::beast::flat_buffer buffer;
        while (!error)
            stream.read(buffer, error);
        return error == boost::beast::websocket::error::closed ? stream.reason().code : 0;
    }

private:
    void serve(std::move_only_function<void(Stream &)> &talk)
    {
        boost::system::error_code error;
        m_acceptor.accept(m_stream.next_layer(), error);
        // A descriptor of the destructor's own: the talk may close the stream's at any time.
        m_connection.set_value(::dup(m_stream.next_layer().native_handle()));
        Request request;
        boost::beast::flat_buffer buffer;
        boost::beast::http::read(m_stream.next_layer(), buffer, request, error);
        m_request.set_value(request);
        if (error)
            return;
        try {
            m_stream.read_message_max(0); // no limit
            m_stream.accept(request);
            talk(m_stream);
        } catch (
            const std::exception &) { // the client is gone; what the test expects of it has failed or holds
        }
    }

    boost::asio::io_context m_context;
    boost::asio::ip::tcp::acceptor m_acceptor{m_context, {boost::asio::ip::make_address("127.0.0.1"), 0}};
    std::uint16_t m_port = m_acceptor.local_endpoint().port();
    Stream m_stream{m_context};
    std::promise<int> m_connection;
    std::promise<Request> m_request;
    std::thread m_thread;
};

} // namespace stavelin::daemon
