#include "daemon/link/WebSocketCompletions.h"

namespace stavelin::daemon {

std::uint64_t WebSocketCompletions::addSend(WebSocketTask::SendCompletion completion)
{
    m_sends.emplace(++m_lastNumber, std::move(completion));
    return m_lastNumber;
}

void WebSocketCompletions::armReceive(WebSocketTask::ReceiveCompletion completion)
{
    m_receive = std::move(completion);
}

void WebSocketCompletions::finishSend(std::uint64_t number, std::expected<void, TransportError> outcome)
{
    const auto entry = m_sends.extract(number);
    if (entry)
        entry.mapped()(std::move(outcome));
}

void WebSocketCompletions::finishReceive(std::expected<ReceivedFrame, TransportError> received)
{
    auto completion = std::exchange(m_receive, nullptr);
    if (!completion)
        return;
    if (m_cancellation && received)
        received = std::unexpected(*m_cancellation);
    completion(std::move(received));
}

void WebSocketCompletions::forget()
{
    const auto sends = std::exchange(m_sends, {});
    const auto receive = std::exchange(m_receive, nullptr);
}

} // namespace stavelin::daemon
