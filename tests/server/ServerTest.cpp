#include "server/Server.h"

#include "daemon/WireDecoder.h"
#include "server/FakeServerPasteboard.h"
#include "server/TestClient.h"
#include "testkit/RecordingLog.h"
#include "testkit/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace stavelin;
using namespace std::chrono_literals;
using daemon::MessageType;
using daemon::ProtocolMessage;
using daemon::StatePayload;
using testing::Contains;
using testing::HasSubstr;
using testkit::runUntil;
using testkit::TestClient;

namespace {

/// A server on a free port, with a real store and a fake pasteboard, on the test's own thread.
class Serving : public testing::Test
{
protected:
    void SetUp() override { begin({}); }
    void TearDown() override
    {
        m_clients.clear();
        m_server.reset();
    }

    void begin(const server::Limits &limits)
    {
        m_clients.clear();
        m_server.reset();
        auto listening = server::Server::listen(m_io, 0, m_log, limits);
        ASSERT_TRUE(listening) << listening.error().description;
        m_server = std::move(*listening);
        m_server->serve(m_store, m_pasteboard, [](std::string_view) { return false; });
    }

    TestClient &connect(const testkit::Handshake &handshake = {})
    {
        m_clients.push_back(std::make_unique<TestClient>(m_io, m_server->port(), handshake));
        return *m_clients.back();
    }
    /// A client that has read its first state.
    TestClient &connectAndReadState()
    {
        TestClient &client = connect();
        EXPECT_TRUE(client.isOpen());
        EXPECT_TRUE(readState(client));
        return client;
    }

    std::optional<StatePayload> readState(TestClient &client)
    {
        const auto text = client.read();
        if (!text)
            return std::nullopt;
        const auto frame = m_decoder.decodeFrame(*text);
        const auto *state = frame ? std::get_if<StatePayload>(&*frame) : nullptr;
        return state ? std::optional(*state) : std::nullopt;
    }
    std::optional<ProtocolMessage> readAnswer(TestClient &client)
    {
        const auto text = client.read();
        if (!text)
            return std::nullopt;
        const auto message = m_decoder.decodeMessage(*text);
        return message && message->type == MessageType::response ? std::optional(*message) : std::nullopt;
    }

    static std::string setRequest(const std::string &id, int slotIndex, const std::string &content)
    {
        return R"({"id":")" + id +
               R"(","type":"request","method":"clipboard.set_slot","payload":{"slot_index":)" +
               std::to_string(slotIndex) + R"(,"content":")" + content + R"("}})";
    }
    static std::string pasteRequest(const std::string &id, int slotIndex)
    {
        return R"({"id":")" + id +
               R"(","type":"request","method":"clipboard.paste_slot","payload":{"slot_index":)" +
               std::to_string(slotIndex) + "}}";
    }

    boost::asio::io_context m_io{1};
    testkit::TemporaryFolder m_folder;
    testkit::RecordingLog m_lines;
    server::LeveledLog m_log{m_lines, server::LogLevel::trace, std::chrono::system_clock::now};
    server::SlotStore m_store{m_folder.path() / "Stavelin", m_log, std::chrono::system_clock::now};
    testkit::FakeServerPasteboard m_pasteboard;
    std::unique_ptr<server::Server> m_server;
    std::vector<std::unique_ptr<TestClient>> m_clients;
    daemon::WireDecoder m_decoder;
};

/// A socket of the test's own to the server, outside any event loop. -1 when it cannot connect.
int rawConnection(const char *address, std::uint16_t port)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(port);
    ::inet_pton(AF_INET, address, &to.sin_addr);
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&to), sizeof to) == 0)
        return descriptor;
    ::close(descriptor);
    return -1;
}

} // namespace

TEST_F(Serving, tellsEveryNewClientTheStateFirst)
{
    ASSERT_TRUE(m_store.set(4, "four"));
    for (int i = 0; i < 2; ++i) {
        const auto state = readState(connect());
        ASSERT_TRUE(state);
        EXPECT_EQ(state->clipboard_slots, m_store.slots());
    }
}

TEST_F(Serving, tellsAllOfAChangeAndTheAskingClientBeforeItsAnswer)
{
    TestClient &asking = connectAndReadState();
    TestClient &other = connectAndReadState();
    asking.send(setRequest("R1", 2, "two"));
    const auto state = readState(asking);
    ASSERT_TRUE(state);
    EXPECT_EQ(state->clipboard_slots.at(1).content, "two");
    const auto answer = readAnswer(asking);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->id, "R1");
    EXPECT_FALSE(answer->error);

    const auto seenByOther = readState(other);
    ASSERT_TRUE(seenByOther);
    EXPECT_EQ(seenByOther->clipboard_slots.at(1).content, "two");
}

TEST_F(Serving, answersAnErrorWithoutAState)
{
    TestClient &client = connectAndReadState();
    client.send(setRequest("R1", 12, "x"));
    const auto answer = readAnswer(client);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->id, "R1");
    ASSERT_TRUE(answer->error);
    EXPECT_EQ(answer->error->code, "invalid_slot");
}

TEST_F(Serving, answersAPasteWhenThePasteboardHasTheTextAndOthersMeanwhile)
{
    ASSERT_TRUE(m_store.set(1, "one"));
    m_pasteboard.wait();
    TestClient &client = connectAndReadState();
    client.send(pasteRequest("PASTE", 1));
    client.send(setRequest("SET", 2, "two"));
    ASSERT_TRUE(readState(client));
    EXPECT_EQ(readAnswer(client).value_or(ProtocolMessage{}).id, "SET");
    m_pasteboard.complete();
    const auto answer = readAnswer(client);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->id, "PASTE");
    EXPECT_FALSE(answer->error);
}

TEST_F(Serving, survivesAClientThatLeavesBeforeItsPasteIsDone)
{
    ASSERT_TRUE(m_store.set(1, "one"));
    m_pasteboard.wait();
    TestClient &leaving = connectAndReadState();
    leaving.send(pasteRequest("PASTE", 1));
    ASSERT_TRUE(runUntil(m_io, [this] { return !m_pasteboard.texts().empty(); }));
    leaving.drop();
    TestClient &other = connectAndReadState();
    m_pasteboard.complete();
    other.send(setRequest("SET", 2, "two"));
    EXPECT_TRUE(readState(other));
    EXPECT_TRUE(readAnswer(other));
}

TEST_F(Serving, answersManyRequestsThatWereSentInOneGoInTheirOrder)
{
    TestClient &client = connectAndReadState();
    constexpr int count = 200;
    for (int i = 0; i < count; ++i)
        client.send(setRequest(std::to_string(i), i % 9 + 1, "text " + std::to_string(i)));
    int answered = 0;
    std::vector<int> newest(9, -1); // the number that each slot's text ends with in the newest state
    while (answered < count) {
        const auto text = client.read();
        ASSERT_TRUE(text) << answered;
        const auto frame = m_decoder.decodeFrame(*text);
        ASSERT_TRUE(frame);
        if (const auto *state = std::get_if<StatePayload>(&*frame)) {
            for (std::size_t slot = 0; slot < 9; ++slot) {
                const std::string &content = state->clipboard_slots.at(slot).content;
                newest[slot] = content.empty() ? -1 : std::stoi(content.substr(5));
            }
            continue;
        }
        EXPECT_EQ(std::get<ProtocolMessage>(*frame).id, std::to_string(answered));
        // An answer never comes before a state in which its change is seen, or one that came after it.
        EXPECT_GE(newest[static_cast<std::size_t>(answered % 9)], answered);
        ++answered;
    }
}

TEST_F(Serving, takesAndGivesTextsOfManyMegabytes)
{
    const std::string large(20 * 1024 * 1024, 'x');
    TestClient &client = connectAndReadState();
    client.send(setRequest("R1", 1, large));
    const auto state = readState(client);
    ASSERT_TRUE(state);
    EXPECT_TRUE(state->clipboard_slots.at(0).content == large);
    ASSERT_TRUE(readAnswer(client));
    client.send(pasteRequest("R2", 1));
    const auto answer = readAnswer(client);
    ASSERT_TRUE(answer);
    EXPECT_FALSE(answer->error);
}

TEST_F(Serving, logsAFrameThatItCannotDecodeWithoutItsTextAndKeepsTheConnection)
{
    TestClient &client = connectAndReadState();
    for (const char *frame : {"the secret text", "", "[1,2]", R"({"id":"the secret text"})",
                              R"({"id":1,"type":"request"})", R"({"id":"X","type":"question"})"})
        client.send(frame);
    client.sendBinary("\xFF\xFEthe secret text");
    client.send(setRequest("R1", 1, "one"));
    ASSERT_TRUE(readState(client));
    ASSERT_TRUE(readAnswer(client));
    const auto lines = m_lines.lines();
    EXPECT_EQ(std::ranges::count_if(
                  lines, [](const std::string &line) { return line.contains("Failed to decode message: "); }),
              7);
    EXPECT_THAT(lines, testing::Each(testing::Not(HasSubstr("secret"))));
}

TEST_F(Serving, passesOverResponsesAndEvents)
{
    TestClient &client = connectAndReadState();
    client.send(R"({"id":"A","type":"response"})");
    client.send(R"({"id":"B","type":"event","method":"state.updated","payload":{}})");
    client.send(setRequest("R1", 1, "one"));
    ASSERT_TRUE(readState(client));
    EXPECT_EQ(readAnswer(client).value_or(ProtocolMessage{}).id, "R1");
}

TEST_F(Serving, refusesWebPages)
{
    for (const char *origin : {"https://example.org", "null", "http://127.0.0.1"}) {
        TestClient &client = connect({.origin = origin});
        EXPECT_FALSE(client.isOpen());
        EXPECT_EQ(client.status(), 403U) << origin;
    }
    for (const char *host : {"example.org", "example.org:9847", "127.0.0.1.example.org"}) {
        TestClient &client = connect({.host = host});
        EXPECT_FALSE(client.isOpen());
        EXPECT_EQ(client.status(), 403U) << host;
    }
    EXPECT_THAT(m_lines.lines(), Contains(HasSubstr("Origin")));
    const std::string port = std::to_string(m_server->port());
    for (const std::string &host : {"localhost:" + port, "[::1]:" + port, "127.0.0.1:" + port})
        EXPECT_TRUE(connect({.host = host}).isOpen()) << host;
}

TEST_F(Serving, refusesAProcessOfAnotherUser)
{
    ASSERT_EQ(::geteuid(), 0U) << "this test needs root, to become somebody else";
    const std::uint16_t port = m_server->port();
    const pid_t other = ::fork();
    if (other == 0) {
        if (::setuid(65534) != 0)
            ::_exit(2);
        const int descriptor = rawConnection("127.0.0.1", port);
        const std::string request = "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\n"
                                    "Connection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                                    "Sec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==\r\n\r\n";
        ::send(descriptor, request.data(), request.size(), MSG_NOSIGNAL);
        char byte = 0;
        ::_exit(::recv(descriptor, &byte, 1, 0) > 0
                    ? 1
                    : 0); // the end of the connection, and not one byte before
    }
    int status = -1;
    ASSERT_TRUE(runUntil(m_io, [&] {
        m_io.poll();
        return ::waitpid(other, &status, WNOHANG) == other ||
               std::ranges::any_of(m_lines.lines(),
                                   [](const std::string &line) { return line.contains("another user"); });
    }));
    if (status == -1)
        ::waitpid(other, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_THAT(m_lines.lines(), Contains(HasSubstr("another user")));
}

TEST_F(Serving, letsAClientGoThatSaysGoodbye)
{
    TestClient &leaving = connectAndReadState();
    leaving.close();
    EXPECT_EQ(leaving.closeCode(), 1001); // the server has answered with the same code
    TestClient &other = connectAndReadState();
    other.send(setRequest("R1", 1, "one"));
    EXPECT_TRUE(readState(other));
    EXPECT_TRUE(readAnswer(other));
}

TEST_F(Serving, refusesTheThirtyThirdConnectionUntilOneOfTheOthersEnds)
{
    for (int i = 0; i < 32; ++i)
        ASSERT_TRUE(connect().isOpen()) << i;
    EXPECT_FALSE(connect().isOpen());
    m_clients.front()->drop();
    ASSERT_TRUE(runUntil(m_io, [this] { return connect().isOpen(); }));
}

TEST_F(Serving, givesAReaderThatStalledTheNewestStateOnly)
{
    TestClient &slow = connect({.receiveBuffer = 16 * 1024});
    TestClient &busy = connectAndReadState();
    constexpr int count = 40;
    for (int i = 1; i <= count; ++i) {
        busy.send(setRequest(std::to_string(i), 1, std::to_string(i) + std::string(1024 * 1024, 'x')));
        ASSERT_TRUE(readState(busy));
        ASSERT_TRUE(readAnswer(busy));
    }
    std::vector<int> seen;
    while (seen.empty() || seen.back() != count) {
        const auto state = readState(slow);
        ASSERT_TRUE(state);
        const std::string &content = state->clipboard_slots.at(0).content;
        seen.push_back(content.empty() ? 0 : std::atoi(content.c_str()));
    }
    EXPECT_TRUE(std::ranges::is_sorted(seen));
    EXPECT_LT(seen.size(), 20U); // what the sockets held, one on its way, and the newest
}

TEST_F(Serving, dropsAClientThatLeavesAFrameUnreadTooLongAndNoIdleOne)
{
    server::Limits limits;
    limits.stall = 200ms;
    begin(limits);
    TestClient &idle = connectAndReadState();
    ASSERT_TRUE(m_store.set(1, std::string(30 * 1024 * 1024, 'x')));
    TestClient &stalled = connect({.receiveBuffer = 16 * 1024});
    ASSERT_TRUE(stalled.isOpen());
    ASSERT_TRUE(runUntil(m_io, [this] {
        return std::ranges::any_of(m_lines.lines(),
                                   [](const std::string &line) { return line.contains("does not read"); });
    }));
    EXPECT_FALSE(readState(stalled));
    idle.send(setRequest("R1", 1, "one"));
    EXPECT_TRUE(readState(idle));
    EXPECT_TRUE(readAnswer(idle));
}

TEST_F(Serving, dropsAConnectionThatDoesNotShakeHandsInTime)
{
    server::Limits limits;
    limits.handshake = 100ms;
    begin(limits);
    const int descriptor = rawConnection("127.0.0.1", m_server->port());
    ASSERT_GE(descriptor, 0);
    char byte = 0;
    ssize_t received = -1;
    EXPECT_TRUE(runUntil(m_io, [&] {
        m_io.run_one_for(10ms);
        received = ::recv(descriptor, &byte, 1, MSG_DONTWAIT);
        return received == 0;
    }));
    ::close(descriptor);
    EXPECT_TRUE(connect().isOpen());
}

TEST_F(Serving, listensOnTheLoopbackAddressOnly)
{
    EXPECT_LT(rawConnection("127.0.0.2", m_server->port()), 0);
    const int descriptor = rawConnection("127.0.0.1", m_server->port());
    EXPECT_GE(descriptor, 0);
    ::close(descriptor);
}

TEST_F(Serving, saysThatAPortIsInUse)
{
    const auto second = server::Server::listen(m_io, m_server->port(), m_log);
    ASSERT_FALSE(second);
    EXPECT_TRUE(second.error().isInUse);
}

TEST_F(Serving, saysGoodbyeWhenItStops)
{
    TestClient &client = connectAndReadState();
    bool isStopped = false;
    m_server->stop([&isStopped] { isStopped = true; });
    EXPECT_FALSE(client.read());
    EXPECT_EQ(client.closeCode(), 1001);
    EXPECT_TRUE(runUntil(m_io, [&] { return isStopped; }));
    EXPECT_LT(rawConnection("127.0.0.1", m_server->port()), 0);
}

TEST_F(Serving, stopsAlsoWhenAClientDoesNotAnswerItsGoodbye)
{
    connectAndReadState();
    const int silent = rawConnection("127.0.0.1", m_server->port());
    bool isStopped = false;
    m_server->stop([&isStopped] { isStopped = true; });
    EXPECT_TRUE(runUntil(m_io, [&] { return isStopped; }));
    ::close(silent);
}

TEST_F(Serving, hasNothingToDoWhileNobodyAsks)
{
    connectAndReadState();
    m_io.restart();
    m_io.poll();
    // A timer that waits would end this earlier than the limit does.
    EXPECT_EQ(m_io.run_for(100ms), 0U);
}
