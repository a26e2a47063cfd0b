#include "daemon/link/BeastWebSocketTaskFactory.h"

#include "daemon/link/LoopbackServer.h"
#include "testkit/VirtualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <poll.h>

namespace stavelin::daemon {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Stream = LoopbackServer::Stream;
using Received = std::expected<ReceivedFrame, TransportError>;

std::string response(const std::string &id, const std::string &content = {})
{
    return R"({"id":")" + id + R"(","type":"response","payload":")" + content + "\"}";
}

class BeastWebSocketTaskTest : public testing::Test
{
protected:
    /// Does the main thread's part until the condition holds; false when it does not within ten seconds.
    bool runUntil(const std::function<bool()> &condition, std::chrono::seconds limit = 10s)
    {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline)
                return false;
            pollfd descriptor{.fd = mainThread.descriptor(), .events = POLLIN, .revents = 0};
            if (::poll(&descriptor, 1, 10) > 0)
                mainThread.run();
        }
        return true;
    }
    template <typename T>
    T get(std::future<T> future)
    {
        EXPECT_TRUE(runUntil([&] { return future.wait_for(0s) == std::future_status::ready; }));
        return future.get();
    }
    void open(const std::string &url)
    {
        task = factory->makeTask(url);
        task->resume();
    }
    void send(const std::string &text)
    {
        task->send(text, [this, text](const std::expected<void, TransportError> &outcome) {
            events.push_back((outcome ? "sent " : "not sent ") + text.substr(0, 20));
        });
    }
    void receive()
    {
        task->receive([this](Received received) { keep(std::move(received)); });
    }
    void receiveAll()
    {
        task->receive([this](Received received) {
            const bool goesOn = received.has_value();
            keep(std::move(received));
            if (goesOn)
                receiveAll();
        });
    }
    /// The error that ended the connection, waiting for it.
    std::string ending()
    {
        EXPECT_TRUE(runUntil([this] { return !lastError.empty(); }));
        return lastError;
    }

    support::HandOver mainThread;
    testkit::VirtualClock clock;
    std::unique_ptr<BeastWebSocketTaskFactory> factory =
        std::make_unique<BeastWebSocketTaskFactory>(mainThread, clock);
    std::unique_ptr<WebSocketTask> task;
    std::vector<std::string> events; ///< what the completions reported, in their order
    std::string lastError;

private:
    void keep(Received received)
    {
        if (!received) {
            lastError = received.error().description;
            events.emplace_back("error");
            return;
        }
        struct Describe
        {
            std::string operator()(const ProtocolMessage &message) const { return "message " + message.id; }
            std::string operator()(const ReceivedState &state) const
            {
                return "state of " + std::to_string(state.clipboardSlots.size());
            }
            std::string operator()(const DecodingError &) const { return "undecodable"; }
            std::string operator()(const DroppedFrame &) const { return "dropped"; }
        };
        events.push_back(std::visit(Describe{}, *received));
    }
};

TEST_F(BeastWebSocketTaskTest, theUpgradeRequestCarriesNothingThatAnOrdinaryClientNeedNotSay)
{
    LoopbackServer server([](Stream &stream) { LoopbackServer::readToTheEnd(stream); });
    open(server.url());
    const auto request = server.request();
    EXPECT_EQ(request.target(), "/");
    std::vector<std::string> fields;
    for (const auto &field : request)
        fields.emplace_back(field.name_string());
    EXPECT_THAT(fields, testing::UnorderedElementsAre("Host", "Upgrade", "Connection", "Sec-WebSocket-Key",
                                                      "Sec-WebSocket-Version"));
    EXPECT_EQ(request[boost::beast::http::field::host], "127.0.0.1:" + std::to_string(server.port()));
}

TEST_F(BeastWebSocketTaskTest, textsGoOutInOrderEvenThoseFromBeforeTheConnectionStood)
{
    std::promise<std::vector<std::string>> texts;
    LoopbackServer server([&](Stream &stream) {
        std::vector<std::string> read;
        for (int count = 0; count < 3; ++count)
            read.push_back(LoopbackServer::read(stream));
        texts.set_value(read);
    });
    open(server.url());
    send("one");
    send("two");
    send("three");
    EXPECT_THAT(get(texts.get_future()), ElementsAre("one", "two", "three"));
    EXPECT_TRUE(runUntil([this] { return events.size() == 3; }));
    EXPECT_THAT(events, ElementsAre("sent one", "sent two", "sent three"));
}

TEST_F(BeastWebSocketTaskTest, aLongTextIsOneMaskedTextFrame)
{
    std::promise<std::pair<int, int>> head;
    LoopbackServer server([&](Stream &stream) {
        unsigned char bytes[2];
        boost::asio::read(stream.next_layer(), boost::asio::buffer(bytes));
        head.set_value({bytes[0], bytes[1]});
        LoopbackServer::readWithoutAnswering(stream);
    });
    open(server.url());
    send(std::string(3'000'000, 'x'));
    const auto [first, second] = get(head.get_future());
    EXPECT_EQ(first, 0x81);  // the last frame of its message, text
    EXPECT_EQ(second, 0xff); // masked, the length in eight bytes
}

TEST_F(BeastWebSocketTaskTest, everyFrameGivesOneItemInTheOrderOfArrival)
{
    LoopbackServer server([](Stream &stream) {
        stream.text(true);
        LoopbackServer::write(stream, response("1"));
        LoopbackServer::write(stream, "no message");
        LoopbackServer::write(stream, R"({"id":"x","type":"event","method":"state.updated","payload":{
            "clipboard_slots":[{"slot_index":1,"content":"","updated_at":""}],"file_references":[]}})");
        stream.binary(true);
        LoopbackServer::write(stream, "\xff");
        LoopbackServer::write(stream, response("2"));
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    receiveAll();
    EXPECT_TRUE(runUntil([this] { return events.size() == 5; }));
    EXPECT_THAT(events, ElementsAre("message 1", "undecodable", "state of 1", "dropped", "message 2"));
}

TEST_F(BeastWebSocketTaskTest, aFrameThatArrivesBeforeAReceiveIsArmedWaitsForIt)
{
    std::promise<void> written;
    LoopbackServer server([&](Stream &stream) {
        LoopbackServer::write(stream, response("1"));
        LoopbackServer::write(stream, response("2"));
        written.set_value();
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    get(written.get_future());
    EXPECT_THAT(events, IsEmpty());
    receive();
    EXPECT_TRUE(runUntil([this] { return events.size() == 1; }));
    receive();
    EXPECT_TRUE(runUntil([this] { return events.size() == 2; }));
    EXPECT_THAT(events, ElementsAre("message 1", "message 2"));
}

TEST_F(BeastWebSocketTaskTest, aSendIsReportedBeforeTheAnswerToIt)
{
    LoopbackServer server([](Stream &stream) {
        for (;;)
            LoopbackServer::write(stream, response(LoopbackServer::read(stream).substr(0, 4)));
    });
    open(server.url());
    receiveAll();
    for (int round = 1000; round < 1500; ++round) {
        const std::string number = std::to_string(round);
        // Short frames and frames that need several writes.
        send(number + std::string(round % 5 == 0 ? 300'000 : 0, ' '));
        ASSERT_TRUE(runUntil([&] { return !events.empty() && events.back() == "message " + number; }));
        ASSERT_EQ(events.size(), 2U);
        ASSERT_EQ(events[0].substr(0, 9), "sent " + number);
        events.clear();
    }
}

TEST_F(BeastWebSocketTaskTest, aFrameOf27MegabytesArrivesWhole)
{
    LoopbackServer server([](Stream &stream) {
        LoopbackServer::write(stream, response("big", std::string(27'000'000, 'x')));
        LoopbackServer::write(stream, response("small"));
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    std::size_t length = 0;
    task->receive([&](Received received) {
        length = std::get<std::string>(std::get<ProtocolMessage>(received.value()).payload->value).size();
        receive();
    });
    // Under the thread sanitizer every byte of it takes its time.
    EXPECT_TRUE(runUntil([this] { return !events.empty(); }, 100s));
    EXPECT_EQ(length, 27'000'000U);
    EXPECT_THAT(events, ElementsAre("message small"));
}

TEST_F(BeastWebSocketTaskTest, aFrameLongerThan256MebibytesEndsTheConnection)
{
    LoopbackServer server([](Stream &stream) {
        const unsigned char head[] = {0x81, 127, 0, 0, 0, 0, 0x10, 0, 0, 1};
        boost::asio::write(stream.next_layer(), boost::asio::buffer(head));
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    receive();
    EXPECT_NE(ending(), "");
}

TEST_F(BeastWebSocketTaskTest, aCharacterMayBeSplitBetweenTwoFragments)
{
    LoopbackServer server([](Stream &stream) {
        const std::string message = response("é");
        const std::size_t middle = message.find("é") + 1;
        stream.write_some(false, boost::asio::buffer(message.data(), middle));
        stream.write_some(true, boost::asio::buffer(message.data() + middle, message.size() - middle));
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    receive();
    EXPECT_TRUE(runUntil([this] { return !events.empty(); }));
    EXPECT_THAT(events, ElementsAre("message é"));
}

TEST_F(BeastWebSocketTaskTest, aTextThatIsNotUtf8IsAProtocolError)
{
    std::promise<int> code;
    LoopbackServer server([&](Stream &stream) {
        stream.text(true);
        LoopbackServer::write(stream, "\xff\xff");
        code.set_value(LoopbackServer::readToTheEnd(stream));
    });
    open(server.url());
    receive();
    EXPECT_NE(ending(), "");
    EXPECT_EQ(get(code.get_future()), 1007);
}

TEST_F(BeastWebSocketTaskTest, cancelSendsItsCodeAfterWhatIsQueuedAndFailsTheArmedReceive)
{
    std::promise<std::pair<std::string, int>> seen;
    std::promise<std::string> reason;
    LoopbackServer server([&](Stream &stream) {
        const std::string text = LoopbackServer::read(stream);
        const int code = LoopbackServer::readToTheEnd(stream);
        seen.set_value({text, code});
        reason.set_value(std::string(stream.reason().reason.c_str()));
    });
    open(server.url());
    receive();
    send(std::string(5'000'000, 'x'));
    ASSERT_TRUE(runUntil([this] { return !events.empty(); })); // now the connection stands
    send("never read as a text");
    task->cancel(1001);
    EXPECT_EQ(ending(), "The connection was closed by this side");
    const auto [text, code] = get(seen.get_future());
    EXPECT_EQ(text.size(), 5'000'000U);
    EXPECT_EQ(code, 1001);
    EXPECT_EQ(get(reason.get_future()), "");
}

TEST_F(BeastWebSocketTaskTest, aFrameThatIsUnderWayWhenTheTaskIsCancelledIsNotDeliveredAnyMore)
{
    LoopbackServer server([](Stream &stream) {
        LoopbackServer::write(stream, response("1"));
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    receive();
    pollfd descriptor{.fd = mainThread.descriptor(), .events = POLLIN, .revents = 0};
    ASSERT_EQ(::poll(&descriptor, 1, 10'000), 1); // the frame is in the queue to this thread
    task->cancel(1001);
    EXPECT_NE(ending(), "");
    EXPECT_THAT(events, ElementsAre("error"));
}

TEST_F(BeastWebSocketTaskTest, afterCancelSendsAndReceivesFail)
{
    LoopbackServer server([](Stream &stream) {
        LoopbackServer::write(stream, response("1"));
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    receive();
    ASSERT_TRUE(runUntil([this] { return events.size() == 1; }));
    task->cancel(1001);
    send("late");
    EXPECT_TRUE(runUntil([this] { return events.size() == 2; }));
    receive();
    EXPECT_NE(ending(), "");
    EXPECT_THAT(events, ElementsAre("message 1", "not sent late", "error"));
}

TEST_F(BeastWebSocketTaskTest, theCloseFrameStillGoesOutWhenTaskAndFactoryGoAtOnce)
{
    std::promise<int> code;
    LoopbackServer server([&](Stream &stream) {
        LoopbackServer::write(stream, response("1"));
        code.set_value(LoopbackServer::readToTheEnd(stream));
    });
    open(server.url());
    receive();
    ASSERT_TRUE(runUntil([this] { return !events.empty(); }));
    task->cancel(1001);
    task.reset();
    factory.reset();
    EXPECT_EQ(get(code.get_future()), 1001);
}

TEST_F(BeastWebSocketTaskTest, aPeerThatNeverConfirmsTheClosingDoesNotHoldUpTheFactorysEnd)
{
    LoopbackServer server([](Stream &stream) {
        LoopbackServer::write(stream, response("1"));
        LoopbackServer::readWithoutAnswering(stream);
    });
    open(server.url());
    receive();
    ASSERT_TRUE(runUntil([this] { return !events.empty(); }));
    task->cancel(1001);
    task.reset();
    const auto start = std::chrono::steady_clock::now();
    factory.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
}

TEST_F(BeastWebSocketTaskTest, cancelBeforeTheConnectionStandsFailsWhatWaits)
{
    task = factory->makeTask("ws://127.0.0.1:1");
    send("x");
    receive();
    task->cancel(1001);
    task->resume();
    EXPECT_TRUE(runUntil([this] { return events.size() == 2; }));
    EXPECT_THAT(events, testing::UnorderedElementsAre("not sent x", "error"));
}

TEST_F(BeastWebSocketTaskTest, aDestroyedTaskDropsTheConnectionWithoutACloseFrame)
{
    std::promise<int> code;
    LoopbackServer server([&](Stream &stream) {
        LoopbackServer::write(stream, response("1"));
        code.set_value(LoopbackServer::readToTheEnd(stream));
    });
    open(server.url());
    receive();
    ASSERT_TRUE(runUntil([this] { return !events.empty(); }));
    task.reset();
    EXPECT_EQ(get(code.get_future()), 0);
}

TEST_F(BeastWebSocketTaskTest, aDestroyedTaskReportsNothingAndLetsGoOfItsCompletions)
{
    LoopbackServer server([](Stream &stream) {
        LoopbackServer::write(stream, response("1"));
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    const auto held = std::make_shared<int>();
    bool isReported = false;
    task->receive([&isReported, held](const Received &) { isReported = true; });
    task->send("x", [&isReported, held](const std::expected<void, TransportError> &) { isReported = true; });
    pollfd descriptor{.fd = mainThread.descriptor(), .events = POLLIN, .revents = 0};
    ASSERT_EQ(::poll(&descriptor, 1, 10'000), 1); // news is in the queue to this thread
    task.reset();
    EXPECT_EQ(held.use_count(), 1);
    factory.reset();
    mainThread.run();
    EXPECT_FALSE(isReported);
}

TEST_F(BeastWebSocketTaskTest, aCompletionMayDestroyItsTask)
{
    LoopbackServer server([](Stream &stream) {
        LoopbackServer::write(stream, response(LoopbackServer::read(stream)));
        LoopbackServer::readToTheEnd(stream);
    });
    open(server.url());
    task->send("1", [](const std::expected<void, TransportError> &) {});
    task->receive([this](const Received &) { task.reset(); });
    EXPECT_TRUE(runUntil([this] { return task == nullptr; }));
}

TEST_F(BeastWebSocketTaskTest, aRefusedConnectionFailsTheSendsFirstAndThenTheReceive)
{
    boost::asio::io_context context;
    // Bound without listening: nobody else gets the port, and connecting to it is refused.
    const boost::asio::ip::tcp::socket bound(context, {boost::asio::ip::make_address("127.0.0.1"), 0});
    task = factory->makeTask("ws://127.0.0.1:" + std::to_string(bound.local_endpoint().port()));
    receive();
    send("a");
    send("b");
    task->resume();
    EXPECT_EQ(ending(), "Connection refused");
    EXPECT_THAT(events, ElementsAre("not sent a", "not sent b", "error"));
    receive();
    EXPECT_TRUE(runUntil([this] { return events.size() == 4; }));
    EXPECT_EQ(events.back(), "error");
}

TEST_F(BeastWebSocketTaskTest, theOtherSidesCloseIsAnErrorThatNamesItsCode)
{
    LoopbackServer server(
        [](Stream &stream) { stream.close(boost::beast::websocket::close_code::going_away); });
    open(server.url());
    receive();
    EXPECT_EQ(ending(), "The connection was closed by the other side with code 1001");
}

TEST_F(BeastWebSocketTaskTest, aConnectionThatBreaksOffIsAnError)
{
    LoopbackServer server(
        [](Stream &stream) { stream.next_layer().shutdown(boost::asio::socket_base::shutdown_both); });
    open(server.url());
    receive();
    EXPECT_NE(ending(), "");
}

TEST_F(BeastWebSocketTaskTest, aServerThatDoesNotAnswerTheHandshakeIsGivenUpAfterFiveSeconds)
{
    boost::asio::io_context context;
    const boost::asio::ip::tcp::acceptor silent(context, {boost::asio::ip::make_address("127.0.0.1"), 0});
    const auto start = std::chrono::steady_clock::now();
    open("ws://127.0.0.1:" + std::to_string(silent.local_endpoint().port()));
    receive();
    EXPECT_NE(ending(), "");
    EXPECT_GE(std::chrono::steady_clock::now() - start, 4s);
}

TEST_F(BeastWebSocketTaskTest, thePeerCheckSeesBothAddressesAndItsErrorEndsTheConnectionBeforeAnythingIsSent)
{
    std::promise<std::pair<SocketAddress, SocketAddress>> addresses;
    factory = std::make_unique<BeastWebSocketTaskFactory>(
        mainThread, clock,
        [&](const SocketAddress &local, const SocketAddress &remote) -> std::expected<void, TransportError> {
            addresses.set_value({local, remote});
            return std::unexpected(TransportError{.description = "not ours"});
        });
    LoopbackServer server([](Stream &) {});
    open(server.url());
    receive();
    EXPECT_EQ(ending(), "not ours");
    const auto [local, remote] = get(addresses.get_future());
    EXPECT_EQ(remote, (SocketAddress{.host = "127.0.0.1", .port = server.port()}));
    EXPECT_EQ(local.host, "127.0.0.1");
    EXPECT_NE(local.port, 0);
    EXPECT_EQ(server.request()[boost::beast::http::field::upgrade], "");
}

} // namespace
} // namespace stavelin::daemon
