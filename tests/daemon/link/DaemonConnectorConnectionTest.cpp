#include "daemon/link/DaemonConnectorFixture.h"

#include <chrono>

namespace stavelin::daemon {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(DaemonConnectorTest, isDisconnectedAndOpensNothingBeforeConnect)
{
    EXPECT_EQ(connector->connectionState(), ConnectionState::disconnected);
    EXPECT_THAT(sockets.connections, IsEmpty());
    EXPECT_EQ(clock.pendingCount(), 0U);
}

TEST_F(DaemonConnectorTest, connectOpensTheDaemonsAddressAndArmsOneReceive)
{
    connector->connect();
    ASSERT_EQ(sockets.connections.size(), 1U);
    EXPECT_EQ(daemon().url, "ws://127.0.0.1:9847");
    EXPECT_TRUE(daemon().isResumed);
    EXPECT_TRUE(daemon().isReceiveArmed());
    EXPECT_THAT(states, ElementsAre(ConnectionState::connecting));
}

TEST_F(DaemonConnectorTest, connectTwiceInARowOpensOneSocket)
{
    connector->connect();
    connector->connect();
    EXPECT_EQ(sockets.connections.size(), 1U);
    EXPECT_EQ(states.size(), 1U);
}

TEST_F(DaemonConnectorTest, connectWhileConnectedDoesNothing)
{
    becomeConnected();
    connector->connect();
    EXPECT_EQ(sockets.connections.size(), 1U);
    EXPECT_EQ(connector->connectionState(), ConnectionState::connected);
}

TEST_F(DaemonConnectorTest, theFirstFrameOfAnyKindMakesItConnected)
{
    const std::string frames[] = {
        R"({"id":"1","type":"event","method":"state.updated","payload":{"clipboard_slots":[],"file_references":[]}})",
        R"({"id":"1","type":"event","method":"another"})", "not a message", ""};
    for (const std::string &frame : frames) {
        DaemonConnector fresh(sockets, clock, log);
        fresh.connect();
        daemon().deliverText(frame);
        EXPECT_EQ(fresh.connectionState(), ConnectionState::connected) << frame;
        EXPECT_TRUE(daemon().isReceiveArmed()) << frame;
    }
}

TEST_F(DaemonConnectorTest, connectedIsSaidOnceForManyFrames)
{
    becomeConnected();
    pushState({});
    pushState({});
    EXPECT_THAT(states, ElementsAre(ConnectionState::connecting, ConnectionState::connected));
}

TEST_F(DaemonConnectorTest, anUndecodableFrameIsLoggedAndTheConnectionStays)
{
    connector->connect();
    daemon().deliverText("{\"type\":\"event\"}");
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_THAT(log.lines().front(), testing::StartsWith("Failed to decode message: "));
    EXPECT_EQ(connector->connectionState(), ConnectionState::connected);
    EXPECT_TRUE(daemon().isReceiveArmed());
}

TEST_F(DaemonConnectorTest, aBinaryFrameOfUtf8IsHandledAsText)
{
    connector->connect();
    daemon().deliverBinary(
        encodeStateEvent("1", {.clipboard_slots = {slot(1, "é")}, .file_references = {}}).value());
    ASSERT_EQ(connector->clipboardSlots().size(), 1U);
    EXPECT_EQ(connector->clipboardSlots()[0].content, "é");
}

TEST_F(DaemonConnectorTest, aBinaryFrameThatIsNotUtf8IsDroppedWithoutAWord)
{
    connector->connect();
    daemon().deliverBinary("\xff\xfe");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(connector->connectionState(), ConnectionState::connected);
    EXPECT_TRUE(daemon().isReceiveArmed());
}

TEST_F(DaemonConnectorTest, requestsAndOtherEventsFromTheDaemonAreDroppedWithoutAWord)
{
    becomeConnected();
    daemon().deliverText(
        R"({"id":"1","type":"request","method":"state.updated","payload":{"clipboard_slots":[],"file_references":[]}})");
    daemon().deliverText(R"({"id":"1","type":"event","method":"State.Updated","payload":{}})");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(daemon().isReceiveArmed());
}

TEST_F(DaemonConnectorTest, aLostConnectionIsLoggedDroppedAndTriedAgain)
{
    becomeConnected();
    states.clear();
    daemon().failReceive("Connection reset by peer");
    EXPECT_THAT(log.lines(), ElementsAre("WebSocket error: Connection reset by peer"));
    EXPECT_TRUE(daemon().isDestroyed);
    EXPECT_EQ(daemon().closeCode, std::nullopt);
    EXPECT_THAT(states, ElementsAre(ConnectionState::disconnected));
    clock.advance(1s);
    EXPECT_EQ(sockets.connections.size(), 2U);
    EXPECT_EQ(connector->connectionState(), ConnectionState::connecting);
}

TEST_F(DaemonConnectorTest, retriesAfter1_2_4_8_16_30_30SecondsWhileTheDaemonStaysAway)
{
    connector->connect();
    std::size_t attempts = 1;
    for (const std::chrono::nanoseconds wait : {1s, 2s, 4s, 8s, 16s, 30s, 30s, 30s}) {
        daemon().failReceive("refused");
        clock.advance(wait - 1ns);
        ASSERT_EQ(sockets.connections.size(), attempts);
        clock.advance(1ns);
        ASSERT_EQ(sockets.connections.size(), ++attempts);
    }
}

TEST_F(DaemonConnectorTest, aReceivedFrameStartsTheWaitsAgainAtOneSecond)
{
    connector->connect();
    for (int failures = 0; failures < 4; ++failures) {
        daemon().failReceive("refused");
        clock.advance(30s);
    }
    pushState({});
    daemon().failReceive("reset");
    const std::size_t attempts = sockets.connections.size();
    clock.advance(1s);
    EXPECT_EQ(sockets.connections.size(), attempts + 1);
}

TEST_F(DaemonConnectorTest, anOwnConnectDuringTheWaitOpensOneSocketAndTheTimerFindsIt)
{
    connector->connect();
    daemon().failReceive("refused");
    connector->connect();
    clock.advance(10s);
    EXPECT_EQ(sockets.connections.size(), 2U);
}

TEST_F(DaemonConnectorTest, disconnectClosesWith1001)
{
    becomeConnected();
    states.clear();
    connector->disconnect();
    EXPECT_EQ(daemon().closeCode, 1001);
    EXPECT_THAT(states, ElementsAre(ConnectionState::disconnected));
}

TEST_F(DaemonConnectorTest, disconnectWithoutAConnectionSaysNothing)
{
    connector->disconnect();
    EXPECT_THAT(states, IsEmpty());
    EXPECT_THAT(sockets.connections, IsEmpty());
}

TEST_F(DaemonConnectorTest, disconnectCancelsTheReconnectTimer)
{
    connector->connect();
    daemon().failReceive("refused");
    connector->disconnect();
    clock.advance(60s);
    EXPECT_EQ(sockets.connections.size(), 1U);
}

TEST_F(DaemonConnectorTest, theEndOfAClosedSocketIsALossLikeAnyOther)
{
    becomeConnected();
    connector->disconnect();
    ASSERT_FALSE(daemon().isDestroyed);
    daemon().failReceive("closed");
    EXPECT_TRUE(daemon().isDestroyed);
    EXPECT_THAT(log.lines(), ElementsAre("WebSocket error: closed"));
    clock.advance(1s);
    EXPECT_EQ(sockets.connections.size(), 2U);
}

TEST_F(DaemonConnectorTest, theLateEndOfAClosedSocketTakesTheNextConnectionWithIt)
{
    becomeConnected();
    connector->disconnect();
    connector->connect();
    ASSERT_EQ(sockets.connections.size(), 2U);
    sockets.connections[0]->failReceive("closed");
    EXPECT_TRUE(sockets.connections[0]->isDestroyed);
    EXPECT_TRUE(sockets.connections[1]->isDestroyed);
    EXPECT_EQ(connector->connectionState(), ConnectionState::disconnected);
    clock.advance(1s);
    EXPECT_EQ(sockets.connections.size(), 3U);
    EXPECT_TRUE(daemon().isReceiveArmed());
}

TEST_F(DaemonConnectorTest, aDisconnectAndConnectWhileAFrameIsHandledLeavesOneReceiveOnTheNewSocket)
{
    becomeConnected();
    QObject::connect(connector.get(), &DaemonConnector::clipboardSlotsChanged, [this] {
        connector->disconnect();
        connector->connect();
    });
    pushState({.clipboard_slots = {slot(1, "x")}, .file_references = {}});
    ASSERT_EQ(sockets.connections.size(), 2U);
    EXPECT_TRUE(sockets.connections[0]->isDestroyed);
    EXPECT_EQ(sockets.connections[0]->closeCode, 1001);
    EXPECT_TRUE(sockets.connections[1]->isReceiveArmed());
}

TEST_F(DaemonConnectorTest, itsEndDropsTheSocketWithoutACloseFrameAndTouchesNothingAfterwards)
{
    becomeConnected();
    connector.reset();
    EXPECT_TRUE(daemon().isDestroyed);
    EXPECT_EQ(daemon().closeCode, std::nullopt);
    daemon().failReceive("too late");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DaemonConnectorTest, itsEndDuringTheWaitEndsTheRetries)
{
    connector->connect();
    daemon().failReceive("refused");
    connector.reset();
    clock.advance(60s);
    EXPECT_EQ(sockets.connections.size(), 1U);
}

} // namespace
} // namespace stavelin::daemon
