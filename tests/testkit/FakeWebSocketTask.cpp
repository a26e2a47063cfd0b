#include "testkit/FakeWebSocketTask.h"

#include <cstdio>
#include <cstdlib>

namespace stavelin::testkit {

namespace {

/// Using a task against its contract is a bug in the code under test that no expectation would show.
void require(bool holds, const char *rule)
{
    if (holds)
        return;
    std::fprintf(stderr, "FakeWebSocketTask: %s\n", rule);
    std::abort();
}

} // namespace

FakeWebSocketTask::~FakeWebSocketTask()
{
    m_connection->isDestroyed = true;
    m_connection->m_receive = nullptr;
    const auto sends = std::exchange(m_connection->m_sends, {});
}

void FakeWebSocketTask::resume()
{
    require(!m_connection->isResumed, "a task is resumed once");
    m_connection->isResumed = true;
}

void FakeWebSocketTask::send(std::string text, SendCompletion completion)
{
    m_connection->sent.push_back(std::move(text));
    m_connection->m_sends.push_back(std::move(completion));
}

void FakeWebSocketTask::receive(ReceiveCompletion completion)
{
    require(!m_connection->isReceiveArmed(), "one receive is armed at a time");
    m_connection->m_receive = std::move(completion);
}

void FakeWebSocketTask::cancel(int closeCode)
{
    m_connection->closeCode = closeCode;
}

std::unique_ptr<daemon::WebSocketTask> FakeWebSocketTaskFactory::makeTask(const std::string &url)
{
    connections.push_back(std::make_shared<FakeConnection>(url, m_clock));
    return std::make_unique<FakeWebSocketTask>(connections.back());
}

} // namespace stavelin::testkit
