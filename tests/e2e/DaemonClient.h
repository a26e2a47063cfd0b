#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace stavelin::e2e {

/// A second client of the daemon, through which a test sees the slots. It shares no code with the application
/// and the daemon, so that a fault that they have in common cannot hide. One thread.
class DaemonClient
{
public:
    using Slots = std::array<std::string, 9>;

    static constexpr std::uint16_t port = 9847;

    /// Connects to 127.0.0.1; throws Unmet when no daemon is there.
    DaemonClient();
    ~DaemonClient();
    DaemonClient(const DaemonClient &) = delete;
    DaemonClient &operator=(const DaemonClient &) = delete;

    /// Reads what comes until the slots are as wanted; false when they are not within `deadline`.
    bool waitForSlots(const std::function<bool(const Slots &)> &wanted, std::chrono::milliseconds deadline);

    /// The texts of the newest state that came, slot 1 first; throws Unmet when none comes.
    [[nodiscard]] Slots slots();

    /// Each asks and awaits the answer; throws Unmet when it is an error or missing.
    void setSlot(int index, const std::string &text);
    void pasteSlot(int index);

private:
    void request(const std::string &method, const std::string &payload);
    [[nodiscard]] bool readFrame(std::chrono::steady_clock::time_point end);
    [[nodiscard]] bool readMore(std::chrono::steady_clock::time_point end);
    [[nodiscard]] bool takeFrame();
    void handleText(const std::string &text);
    void sendFrame(std::uint8_t opcode, const std::string &payload);
    void shakeHands();

    int m_socket = -1;
    std::string m_received;
    std::string m_message; ///< the fragments of a message that is not complete yet
    std::optional<Slots> m_slots;
    std::string m_answer; ///< the last response, as JSON
    int m_requests = 0;
};

} // namespace stavelin::e2e
