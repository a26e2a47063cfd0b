#include "server/PeerUid.h"

#include "testkit/TemporaryFolder.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace stavelin;
using server::PeerConnection;

namespace {

constexpr std::uint32_t loopback = 0x7F000001;

std::uint16_t portOf(int descriptor)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(descriptor, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

/// A connection of this process to itself.
class Connected : public testing::Test
{
protected:
    void SetUp() override
    {
        m_listening = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(loopback);
        ASSERT_EQ(::bind(m_listening, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        ASSERT_EQ(::listen(m_listening, 1), 0);
        address.sin_port = htons(portOf(m_listening));
        m_peer = ::socket(AF_INET, SOCK_STREAM, 0);
        ASSERT_EQ(::connect(m_peer, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        m_connection = {loopback, portOf(m_peer), loopback, portOf(m_listening)};
    }
    void TearDown() override
    {
        ::close(m_listening);
        ::close(m_peer);
    }

    int m_listening = -1;
    int m_peer = -1;
    PeerConnection m_connection{};
};

} // namespace

TEST_F(Connected, theKernelKnowsWhoseTheOtherEndIs)
{
    // Without a table to fall back on.
    EXPECT_EQ(server::uidOfPeer(m_connection, "/nonexistent"), ::geteuid());
}

TEST_F(Connected, theTableKnowsItToo)
{
    EXPECT_EQ(server::uidOfPeerFromTable(m_connection, "/proc"), ::geteuid());
}

TEST_F(Connected, nobodyKnowsAnotherConnection)
{
    PeerConnection other = m_connection;
    other.peerAddress = loopback + 1;
    EXPECT_EQ(server::uidOfPeer(other), std::nullopt);
    other = m_connection;
    ++other.ownPort;
    EXPECT_EQ(server::uidOfPeer(other), std::nullopt);
}

TEST_F(Connected, aClosedEndIsNobodys)
{
    const int accepted = ::accept(m_listening, nullptr, nullptr);
    ::shutdown(m_peer, SHUT_RDWR);
    ::close(m_peer);
    EXPECT_EQ(server::uidOfPeer(m_connection), std::nullopt);
    ::close(accepted);
}

TEST(PeerTable, believesOnlyAnEstablishedConnectionThatAProcessHolds)
{
    struct Row
    {
        const char *line;
        std::optional<uid_t> uid;
    };
    // 127.0.0.1:4660 to 127.0.0.1:9847.
    const Row rows[]{
        {"   1: 0100007F:1234 0100007F:2677 01 00000000:00000000 00:00000000 00000000  1000        0 4711 1 "
         "0",
         1000},
        {"   1: 0100007F:1234 0100007F:2677 06 00000000:00000000 00:00000000 00000000     0        0 0 1 0",
         {}},
        {"   1: 0100007F:1234 0100007F:2677 01 00000000:00000000 00:00000000 00000000     0        0 0 1 0",
         {}},
        {"   1: 0100007F:2677 0100007F:1234 01 00000000:00000000 00:00000000 00000000  1000        0 4711 1 "
         "0",
         {}},
        {"   1: 0100007F:1234 0100007F:2678 01 00000000:00000000 00:00000000 00000000  1000        0 4711 1 "
         "0",
         {}},
        {"   1: 0100007F:1234 0100007F:2677 01", {}},
        {"", {}},
    };
    for (const Row &row : rows) {
        const testkit::TemporaryFolder proc;
        std::filesystem::create_directories(proc.path() / "net");
        std::ofstream(proc.path() / "net" / "tcp") << "  sl  local_address rem_address   st tx_queue "
                                                      "rx_queue tr tm->when retrnsmt   uid  timeout inode\n"
                                                   << row.line << '\n';
        EXPECT_EQ(server::uidOfPeerFromTable({loopback, 4660, loopback, 9847}, proc.path()), row.uid)
            << row.line;
    }
}
