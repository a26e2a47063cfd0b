#include "server/PeerUid.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include <arpa/inet.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace stavelin::server {

namespace {

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    [[nodiscard]] int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

struct DiagnosisRequest
{
    nlmsghdr head;
    inet_diag_req_v2 body;
};

/// What the kernel said of the one socket, or nothing when it said nothing.
std::optional<inet_diag_msg> diagnose(const PeerConnection &connection)
{
    const Descriptor descriptor(::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
    if (descriptor.get() < 0)
        return std::nullopt;
    const timeval limit{1, 0};
    ::setsockopt(descriptor.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);

    DiagnosisRequest request{};
    request.head.nlmsg_len = sizeof request;
    request.head.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    request.head.nlmsg_flags = NLM_F_REQUEST;
    request.body.sdiag_family = AF_INET;
    request.body.sdiag_protocol = IPPROTO_TCP;
    request.body.idiag_states = 1U << TCP_ESTABLISHED;
    request.body.id.idiag_sport = htons(connection.peerPort);
    request.body.id.idiag_dport = htons(connection.ownPort);
    request.body.id.idiag_src[0] = htonl(connection.peerAddress);
    request.body.id.idiag_dst[0] = htonl(connection.ownAddress);
    request.body.id.idiag_cookie[0] = INET_DIAG_NOCOOKIE;
    request.body.id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
    if (::send(descriptor.get(), &request, sizeof request, 0) != sizeof request)
        return std::nullopt;

    std::array<char, 8192> answer;
    ssize_t size = 0;
    do
        size = ::recv(descriptor.get(), answer.data(), answer.size(), 0);
    while (size < 0 && errno == EINTR);
    nlmsghdr head{};
    inet_diag_msg socket{};
    if (size < static_cast<ssize_t>(NLMSG_HDRLEN + sizeof socket))
        return std::nullopt;
    std::memcpy(&head, answer.data(), sizeof head);
    if (head.nlmsg_type != SOCK_DIAG_BY_FAMILY)
        return std::nullopt;
    std::memcpy(&socket, answer.data() + NLMSG_HDRLEN, sizeof socket);
    // A listening socket is what the kernel answers with when it finds no connection.
    const bool isTheOne = socket.id.idiag_sport == htons(connection.peerPort) &&
                          socket.id.idiag_dport == htons(connection.ownPort) &&
                          socket.id.idiag_src[0] == htonl(connection.peerAddress) &&
                          socket.id.idiag_dst[0] == htonl(connection.ownAddress);
    return isTheOne ? std::optional(socket) : std::nullopt;
}

/// "0100007F:2677" of the kernel's table: the address as the machine holds it in memory, the port as a
/// number.
std::string tableAddress(std::uint32_t address, std::uint16_t port)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%08X:%04X", htonl(address), port);
    return text.data();
}

} // namespace

std::optional<uid_t> uidOfPeer(const PeerConnection &connection, const std::filesystem::path &procRoot)
{
    const auto socket = diagnose(connection);
    if (!socket)
        return uidOfPeerFromTable(connection, procRoot);
    if (socket->idiag_state != TCP_ESTABLISHED || socket->idiag_inode == 0)
        return std::nullopt;
    return socket->idiag_uid;
}

std::optional<uid_t> uidOfPeerFromTable(const PeerConnection &connection,
                                        const std::filesystem::path &procRoot)
{
    const std::string peer = tableAddress(connection.peerAddress, connection.peerPort);
    const std::string own = tableAddress(connection.ownAddress, connection.ownPort);
    std::ifstream table(procRoot / "net" / "tcp");
    std::string line;
    while (std::getline(table, line)) {
        // Columns: number, local address, remote address, state, queues, timer, retransmits, uid, timeout,
        // inode.
        std::istringstream columns(line);
        std::string number, local, remote, state, queues, timer, retransmits, timeout;
        uid_t uid = 0;
        std::uint64_t inode = 0;
        if (!(columns >> number >> local >> remote >> state >> queues >> timer >> retransmits >> uid >>
              timeout >> inode))
            continue;
        if (local == peer && remote == own)
            return state == "01" && inode != 0 ? std::optional(uid) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace stavelin::server
