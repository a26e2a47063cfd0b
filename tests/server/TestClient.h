#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace boost::asio {
class io_context;
}

namespace stavelin::testkit {

/// Runs what is due on `io` until the condition holds; false when it does not come to that in time.
bool runUntil(boost::asio::io_context &io, const std::function<bool()> &condition,
              std::chrono::milliseconds limit = std::chrono::seconds(10));

/// How a client introduces itself.
struct Handshake
{
    std::string host = "127.0.0.1";
    std::optional<std::string> origin{};
    int receiveBuffer = 0; ///< of the socket, in bytes; 0 leaves it as it is
};

/// A client of the daemon on the test's own thread, beside the server: each operation runs `io` until it is
/// done.
class TestClient
{
public:
    /// Connects to 127.0.0.1 and shakes hands.
    TestClient(boost::asio::io_context &io, std::uint16_t port, const Handshake &handshake = {});
    ~TestClient();
    TestClient(TestClient &&) noexcept;
    TestClient &operator=(TestClient &&) = delete;

    [[nodiscard]] bool isOpen() const;
    /// The HTTP status of the handshake, 101 when it succeeded, 0 when there was no answer.
    [[nodiscard]] unsigned status() const;

    /// The next frame; nothing when the connection ends or none comes in time.
    [[nodiscard]] std::optional<std::string> read(std::chrono::milliseconds limit = std::chrono::seconds(10));
    /// Sends a text frame without waiting until it is gone. The texts of several calls follow each other.
    void send(std::string text);
    void sendBinary(std::string bytes);
    [[nodiscard]] bool isSent() const; ///< Nothing waits to be sent.
    /// The code of the close frame with which the server ended the connection, 0 when there was none.
    [[nodiscard]] std::uint16_t closeCode() const;
    /// Says good-bye (1001) and waits until the server has answered it and ended the connection.
    void close();
    /// Drops the connection without a close frame.
    void drop();

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace stavelin::testkit
