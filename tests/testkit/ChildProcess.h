#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace stavelin::testkit {

/// A program that a test starts and that ends with this object, or with the test's main thread.
class ChildProcess
{
public:
    /// `command` is the program, looked up in PATH, and its arguments; `environment` ("NAME=value") comes on
    /// top of this process's own. `descriptor`, when it is not -1, becomes the child's descriptor 3. The
    /// child's standard output and error go nowhere. Throws std::runtime_error when no process can be made.
    explicit ChildProcess(const std::vector<std::string> &command,
                          const std::vector<std::string> &environment = {}, int descriptor = -1);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    [[nodiscard]] pid_t id() const { return m_id; }
    void signal(int number) const;
    /// Waits for its end and returns its exit code, or -1 when it was killed.
    int wait();

private:
    pid_t m_id = -1;
};

} // namespace stavelin::testkit
