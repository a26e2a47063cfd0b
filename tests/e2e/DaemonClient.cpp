#include "e2e/DaemonClient.h"

#include "e2e/Unmet.h"
#include "e2e/Wait.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace stavelin::e2e {

namespace {

constexpr std::uint8_t finalFragment = 0x80;
constexpr std::uint8_t masked = 0x80;
enum Opcode : std::uint8_t { continuation = 0, text = 1, close = 8, ping = 9, pong = 10 };

using TimePoint = std::chrono::steady_clock::time_point;

TimePoint after(std::chrono::milliseconds deadline)
{
    return std::chrono::steady_clock::now() + deadline;
}

int connectedSocket()
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(DaemonClient::port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

std::uint64_t bigEndian(const std::string &bytes, std::size_t from, std::size_t count)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        value = value << 8 | static_cast<std::uint8_t>(bytes[from + i]);
    }
    return value;
}

void writeAll(int descriptor, const std::string &bytes)
{
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count =
            ::send(descriptor, bytes.data() + written, bytes.size() - written, MSG_NOSIGNAL);
        if (count <= 0) {
            throw Unmet(std::string("the daemon takes nothing more: ") + std::strerror(errno));
        }
        written += static_cast<std::size_t>(count);
    }
}

} // namespace

DaemonClient::DaemonClient() : m_socket(connectedSocket())
{
    if (m_socket < 0) {
        throw Unmet("no daemon listens on port " + std::to_string(port));
    }
    try {
        shakeHands();
    } catch (...) {
        ::close(m_socket);
        throw;
    }
}

DaemonClient::~DaemonClient()
{
    ::close(m_socket);
}

void DaemonClient::shakeHands()
{
    writeAll(m_socket, "GET / HTTP/1.1\r\n"
                       "Host: 127.0.0.1:9847\r\n"
                       "Upgrade: websocket\r\n"
                       "Connection: Upgrade\r\n"
                       "Sec-WebSocket-Key: c3RhdmVsaW4tZGVza3RvcA==\r\n"
                       "Sec-WebSocket-Version: 13\r\n\r\n");
    const TimePoint end = after(patience);
    std::size_t headEnd = std::string::npos;
    while ((headEnd = m_received.find("\r\n\r\n")) == std::string::npos) {
        if (!readMore(end)) {
            throw Unmet("the daemon did not answer the handshake");
        }
    }
    if (m_received.compare(0, 12, "HTTP/1.1 101") != 0) {
        throw Unmet("the daemon refused the handshake: " + m_received.substr(0, m_received.find('\r')));
    }
    m_received.erase(0, headEnd + 4);
}

bool DaemonClient::readMore(TimePoint end)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    pollfd waiting{m_socket, POLLIN, 0};
    if (::poll(&waiting, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0) <= 0) {
        return false;
    }
    std::array<char, 65536> buffer;
    const ssize_t count = ::recv(m_socket, buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        throw Unmet("the daemon ended the connection");
    }
    m_received.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

bool DaemonClient::takeFrame()
{
    if (m_received.size() < 2) {
        return false;
    }
    const auto first = static_cast<std::uint8_t>(m_received[0]);
    std::uint64_t length = static_cast<std::uint8_t>(m_received[1]);
    std::size_t head = 2;
    if (length == 126 || length == 127) {
        const std::size_t extra = length == 126 ? 2 : 8;
        if (m_received.size() < head + extra) {
            return false;
        }
        length = bigEndian(m_received, head, extra);
        head += extra;
    }
    if (m_received.size() - head < length) {
        return false;
    }
    std::string payload = m_received.substr(head, length);
    m_received.erase(0, head + length);

    switch (first & 0x0F) {
    case Opcode::ping:
        sendFrame(Opcode::pong, payload);
        break;
    case Opcode::close:
        throw Unmet("the daemon closed the connection with code " +
                    std::to_string(payload.size() < 2 ? 0 : bigEndian(payload, 0, 2)));
    case Opcode::text:
    case Opcode::continuation:
        m_message += payload;
        if ((first & finalFragment) != 0) {
            handleText(std::exchange(m_message, {}));
        }
        break;
    default:
        break;
    }
    return true;
}

bool DaemonClient::readFrame(TimePoint end)
{
    while (!takeFrame()) {
        if (!readMore(end)) {
            return false;
        }
    }
    return true;
}

void DaemonClient::handleText(const std::string &text)
{
    const nlohmann::json message = nlohmann::json::parse(text);
    if (message.at("type") == "response") {
        m_answer = text;
    }
    if (message.at("type") != "event" || message.at("method") != "state.updated") {
        return;
    }
    Slots texts;
    for (const auto &slot : message.at("payload").at("clipboard_slots")) {
        texts.at(slot.at("slot_index").get<std::size_t>() - 1) = slot.at("content").get<std::string>();
    }
    m_slots = texts;
}

bool DaemonClient::waitForSlots(const std::function<bool(const Slots &)> &wanted,
                                std::chrono::milliseconds deadline)
{
    const TimePoint end = after(deadline);
    while (!m_slots || !wanted(*m_slots)) {
        if (!readFrame(end)) {
            return false;
        }
    }
    return true;
}

DaemonClient::Slots DaemonClient::slots()
{
    while (readFrame(std::chrono::steady_clock::now())) {
    }
    if (!waitForSlots([](const Slots &) { return true; }, patience)) {
        throw Unmet("the daemon sent no state");
    }
    return *m_slots;
}

void DaemonClient::setSlot(int index, const std::string &text)
{
    request("clipboard.set_slot", nlohmann::json{{"slot_index", index}, {"content", text}}.dump());
}

void DaemonClient::pasteSlot(int index)
{
    request("clipboard.paste_slot", nlohmann::json{{"slot_index", index}}.dump());
}

void DaemonClient::request(const std::string &method, const std::string &payload)
{
    const std::string id = "desktop-" + std::to_string(++m_requests);
    const nlohmann::json message = {
        {"id", id}, {"type", "request"}, {"method", method}, {"payload", nlohmann::json::parse(payload)}};
    m_answer.clear();
    sendFrame(Opcode::text, message.dump());
    const TimePoint end = after(patience);
    while (m_answer.empty()) {
        if (!readFrame(end)) {
            throw Unmet("the daemon did not answer " + method);
        }
    }
    const nlohmann::json answer = nlohmann::json::parse(m_answer);
    if (answer.at("id") != id || (answer.contains("error") && !answer.at("error").is_null())) {
        throw Unmet("the daemon did not do " + method + ": " + m_answer);
    }
}

void DaemonClient::sendFrame(std::uint8_t opcode, const std::string &payload)
{
    std::string frame;
    frame += static_cast<char>(finalFragment | opcode);
    // The length stands in as few bytes as it fits in: 7 bits, or a mark and two or eight bytes.
    if (payload.size() < 126) {
        frame += static_cast<char>(masked | payload.size());
    } else {
        const bool isShort = payload.size() <= 0xFFFF;
        frame += static_cast<char>(masked | (isShort ? 126U : 127U));
        for (int shift = isShort ? 8 : 56; shift >= 0; shift -= 8) {
            frame += static_cast<char>(payload.size() >> shift & 0xFF);
        }
    }
    const std::array<std::uint8_t, 4> mask{0x5A, 0x17, 0xC3, 0x88};
    for (const std::uint8_t byte : mask) {
        frame += static_cast<char>(byte);
    }
    for (std::size_t i = 0; i < payload.size(); ++i) {
        frame += static_cast<char>(static_cast<std::uint8_t>(payload[i]) ^ mask[i % mask.size()]);
    }
    writeAll(m_socket, frame);
}

} // namespace stavelin::e2e
