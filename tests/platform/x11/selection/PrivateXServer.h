#pragma once

#include <memory>
#include <string>

#include <sys/types.h>

namespace stavelin::testkit {

/// An Xvfb of the test's own, without a window manager. It ends with this object.
class PrivateXServer
{
public:
    /// Starts it on a free display and waits until it is ready; null when it does not get there.
    [[nodiscard]] static std::unique_ptr<PrivateXServer> start();
    ~PrivateXServer();
    PrivateXServer(const PrivateXServer &) = delete;
    PrivateXServer &operator=(const PrivateXServer &) = delete;

    [[nodiscard]] const std::string &display() const { return m_display; } ///< ":40"

    void freeze() const; ///< It answers nobody until thaw().
    void thaw() const;
    void end(); ///< It is gone when this returns.
    /// Starts another on the same display.
    [[nodiscard]] bool startAgain();

private:
    explicit PrivateXServer(std::string display) : m_display(std::move(display)) {}
    [[nodiscard]] bool launch();

    std::string m_display;
    pid_t m_process = -1;
};

} // namespace stavelin::testkit
