#include "testkit/FakeConnection.h"

namespace stavelin::testkit {

void FakeConnection::failReceive(std::string description)
{
    deliver(std::unexpected(daemon::TransportError{.description = std::move(description)}));
}

void FakeConnection::completeSends()
{
    finishSends({});
}

void FakeConnection::failSends(std::string description)
{
    finishSends(std::unexpected(daemon::TransportError{.description = std::move(description)}));
}

void FakeConnection::deliver(std::expected<daemon::ReceivedFrame, daemon::TransportError> received)
{
    // The completion may arm the next receive or destroy the task.
    if (auto completion = std::exchange(m_receive, nullptr))
        completion(std::move(received));
}

void FakeConnection::finishSends(const std::expected<void, daemon::TransportError> &outcome)
{
    while (!m_sends.empty()) {
        auto completion = std::move(m_sends.front());
        m_sends.pop_front();
        completion(outcome);
    }
}

} // namespace stavelin::testkit
