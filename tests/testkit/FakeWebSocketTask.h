#pragma once

#include "testkit/FakeConnection.h"

#include <memory>

namespace stavelin::testkit {

/// A connection that goes nowhere: the test plays the daemon and the network through the FakeConnection.
class FakeWebSocketTask final : public daemon::WebSocketTask
{
public:
    explicit FakeWebSocketTask(std::shared_ptr<FakeConnection> connection)
        : m_connection(std::move(connection))
    {}
    ~FakeWebSocketTask() override;
    FakeWebSocketTask(const FakeWebSocketTask &) = delete;
    FakeWebSocketTask &operator=(const FakeWebSocketTask &) = delete;

    void resume() override;
    void send(std::string text, SendCompletion completion) override;
    void receive(ReceiveCompletion completion) override;
    void cancel(int closeCode) override;

private:
    std::shared_ptr<FakeConnection> m_connection;
};

/// Keeps every connection that was asked for.
class FakeWebSocketTaskFactory final : public daemon::WebSocketTaskFactory
{
public:
    explicit FakeWebSocketTaskFactory(const support::Clock &clock) : m_clock(clock) {}

    std::vector<std::shared_ptr<FakeConnection>> connections;

    [[nodiscard]] std::unique_ptr<daemon::WebSocketTask> makeTask(const std::string &url) override;
    [[nodiscard]] FakeConnection &last() { return *connections.at(connections.size() - 1); }

private:
    const support::Clock &m_clock;
};

} // namespace stavelin::testkit
