#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace stavelin::testkit {

/// A stavelin-daemon that a test started. It is killed, if it still runs, and waited for when this object
/// goes.
class DaemonProcess
{
public:
    /// Starts it with exactly these arguments and environment, and reads what it writes.
    DaemonProcess(std::vector<std::string> arguments, std::vector<std::string> environment);
    ~DaemonProcess();
    DaemonProcess(const DaemonProcess &) = delete;
    DaemonProcess &operator=(const DaemonProcess &) = delete;

    [[nodiscard]] pid_t process() const { return m_process; }
    void signal(int number) const;

    /// Reads its output until this text has come; false when it ends before or does not come to that in time.
    [[nodiscard]] bool says(const std::string &text);
    /// Reads its output to the end and gives its exit status; nothing when it does not end in time or was
    /// killed.
    [[nodiscard]] std::optional<int> exitStatus();
    /// What it has written so far, standard output and error together.
    [[nodiscard]] const std::string &output() const { return m_output; }

private:
    [[nodiscard]] bool readMore(std::chrono::steady_clock::time_point deadline);

    pid_t m_process = -1;
    int m_descriptor = -1;
    std::string m_output;
};

} // namespace stavelin::testkit
