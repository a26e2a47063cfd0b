#include "e2e/SocketTable.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string>

#include <arpa/inet.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace stavelin::e2e {

namespace {

class Descriptor
{
public:
    explicit Descriptor(long number) : m_number(static_cast<int>(number)) {}
    ~Descriptor()
    {
        if (m_number >= 0) {
            ::close(m_number);
        }
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    [[nodiscard]] int number() const { return m_number; }

private:
    int m_number;
};

bool isConnectedTo(int socket, std::uint16_t port)
{
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    return ::getpeername(socket, reinterpret_cast<sockaddr *>(&peer), &size) == 0 &&
           peer.sin_family == AF_INET && peer.sin_addr.s_addr == htonl(INADDR_LOOPBACK) &&
           peer.sin_port == htons(port);
}

std::uint64_t bytesReadFrom(int socket)
{
    tcp_info info{};
    socklen_t size = sizeof info;
    int waiting = 0;
    const bool isKnown = ::getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) == 0 &&
                         ::ioctl(socket, FIONREAD, &waiting) == 0;
    return isKnown && waiting == 0 ? info.tcpi_bytes_received : 0;
}

std::string addressAndPort(const char *address, std::uint16_t port)
{
    std::ostringstream text;
    text << address << ':' << std::uppercase << std::hex << std::setw(4) << std::setfill('0') << port;
    return text.str();
}

} // namespace

bool isListenedOn(std::uint16_t port)
{
    const std::array addresses{addressAndPort("0100007F", port), addressAndPort("00000000", port)};
    const std::string listening = "0A";
    std::ifstream table("/proc/net/tcp");
    for (std::string line; std::getline(table, line);) {
        std::istringstream columns(line);
        std::string number;
        std::string local;
        std::string remote;
        std::string state;
        columns >> number >> local >> remote >> state;
        if (state == listening && std::ranges::find(addresses, local) != addresses.end()) {
            return true;
        }
    }
    return false;
}

std::uint64_t bytesReadFromLoopbackPort(pid_t process, std::uint16_t port)
{
    const Descriptor handle(::syscall(SYS_pidfd_open, process, 0));
    std::error_code fault;
    const std::filesystem::path folder = "/proc/" + std::to_string(process) + "/fd";
    for (const auto &entry : std::filesystem::directory_iterator(folder, fault)) {
        if (!std::filesystem::read_symlink(entry.path(), fault).string().starts_with("socket:")) {
            continue;
        }
        const Descriptor socket(
            ::syscall(SYS_pidfd_getfd, handle.number(), std::stoi(entry.path().filename()), 0));
        if (socket.number() >= 0 && isConnectedTo(socket.number(), port)) {
            return bytesReadFrom(socket.number());
        }
    }
    return 0;
}

} // namespace stavelin::e2e
