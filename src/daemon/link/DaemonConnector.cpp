#include "daemon/link/DaemonConnector.h"

#include "daemon/WireEncoder.h"
#include "daemon/link/WebSocketUrl.h"
#include "support/SharedInstance.h"

#include <QPointer>
#include <QUuid>

#include <algorithm>
#include <chrono>
#include <utility>

namespace stavelin::daemon {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view serverURL = "ws://127.0.0.1:9847";
static_assert(WebSocketUrl::parse(serverURL), "the daemon's address must be a valid one");

constexpr std::chrono::duration<double> firstReconnectDelay = 1.0s;
constexpr std::chrono::duration<double> maxReconnectDelay = 30.0s;
constexpr auto requestTimeout = 10s;
constexpr int goingAway = 1001;
constexpr std::int64_t slotCount = 9;

std::unexpected<LinkError> failure(DaemonError::Kind kind, std::string message = {})
{
    return std::unexpected<LinkError>(DaemonError{.kind = kind, .message = std::move(message)});
}

std::string makeRequestId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
}

AnyCodable integer(std::int64_t number)
{
    return AnyCodable{.value = number};
}

AnyCodable text(std::string content)
{
    return AnyCodable{.value = std::move(content)};
}

std::vector<model::ClipboardSlot> emptySlots(support::Timestamp now)
{
    std::vector<model::ClipboardSlot> slots;
    for (std::int64_t slotIndex = 1; slotIndex <= slotCount; ++slotIndex)
        slots.push_back({.slotIndex = slotIndex, .content = {}, .updatedAt = now});
    return slots;
}

} // namespace

DaemonConnector::DaemonConnector(WebSocketTaskFactory &sockets, support::Clock &clock, support::Log &log)
    : m_sockets(sockets), m_clock(clock), m_log(log), m_clipboardSlots(emptySlots(clock.now())),
      m_reconnectDelay(firstReconnectDelay)
{}

DaemonConnector::~DaemonConnector()
{
    m_reconnectTask.cancel();
    m_connectionState = ConnectionState::disconnected; // what resumes below can send nothing any more
    failOutstandingRequests();
}

DaemonConnector &DaemonConnector::shared()
{
    return support::SharedInstance<DaemonConnector>::get();
}

void DaemonConnector::connect()
{
    if (m_connectionState != ConnectionState::disconnected)
        return;
    setConnectionState(ConnectionState::connecting);
    m_webSocketTask = m_sockets.makeTask(std::string(serverURL));
    m_webSocketTask->resume();
    armReceive();
}

void DaemonConnector::disconnect()
{
    m_reconnectTask.cancel();
    m_reconnectTask = {};
    if (m_webSocketTask) {
        m_webSocketTask->cancel(goingAway);
        m_closingTasks.push_back(std::move(m_webSocketTask));
    }
    if (m_connectionState != ConnectionState::disconnected)
        setConnectionState(ConnectionState::disconnected);
}

void DaemonConnector::setConnectionState(ConnectionState state)
{
    m_connectionState = state;
    Q_EMIT connectionStateChanged();
}

void DaemonConnector::armReceive()
{
    const WebSocketTask *task = m_webSocketTask.get();
    m_webSocketTask->receive(
        [self = QPointer(this), task](std::expected<ReceivedFrame, TransportError> received) {
            if (self)
                self->handleReceived(task, std::move(received));
        });
}

void DaemonConnector::handleReceived(const WebSocketTask *task,
                                     std::expected<ReceivedFrame, TransportError> received)
{
    if (!received) {
        m_log.line("WebSocket error: " + received.error().description);
        forgetClosingTask(task);
        handleDisconnect();
        return;
    }

    if (m_connectionState != ConnectionState::connected) {
        setConnectionState(ConnectionState::connected);
        m_reconnectDelay = firstReconnectDelay;
    }

    const QPointer self(this); // the requests that a frame answers run on inside handleFrame()
    handleFrame(*std::move(received));
    if (!self)
        return;

    if (m_webSocketTask.get() == task)
        armReceive();
    else
        forgetClosingTask(
            task); // cancelled while its frame was handled: nothing is armed that could report its end
}

void DaemonConnector::handleFrame(ReceivedFrame frame)
{
    if (auto *state = std::get_if<ReceivedState>(&frame))
        apply(std::move(*state));
    else if (auto *message = std::get_if<ProtocolMessage>(&frame))
        handleMessage(std::move(*message));
    else if (const auto *error = std::get_if<DecodingError>(&frame))
        m_log.line("Failed to decode message: " + error->description);
}

void DaemonConnector::handleMessage(ProtocolMessage message)
{
    // Nobody sends this side requests, and the one event with a meaning arrives as a ReceivedState.
    if (message.type != MessageType::response)
        return;
    const std::string id = message.id;
    completeRequest(id, std::move(message));
}

void DaemonConnector::apply(ReceivedState state)
{
    if (!model::sameClipboardSlots(state.clipboardSlots, m_clipboardSlots)) {
        m_clipboardSlots = std::move(state.clipboardSlots);
        Q_EMIT clipboardSlotsChanged();
    }
    if (!model::sameFileReferences(state.fileReferences, m_fileReferences)) {
        m_fileReferences = std::move(state.fileReferences);
        Q_EMIT fileReferencesChanged();
    }
}

void DaemonConnector::handleDisconnect()
{
    m_webSocketTask.reset();
    if (m_connectionState != ConnectionState::disconnected)
        setConnectionState(ConnectionState::disconnected);

    const QPointer self(this);
    failOutstandingRequests();
    if (!self)
        return;

    m_reconnectTask.cancel();
    m_reconnectTask =
        m_clock.after(std::chrono::duration_cast<std::chrono::nanoseconds>(m_reconnectDelay), [self] {
            if (!self)
                return;
            self->m_reconnectDelay = std::min(2 * self->m_reconnectDelay, maxReconnectDelay);
            self->connect();
        });
}

void DaemonConnector::forgetClosingTask(const WebSocketTask *task)
{
    std::erase_if(m_closingTasks, [task](const auto &closing) { return closing.get() == task; });
}

void DaemonConnector::failOutstandingRequests()
{
    // Both are emptied first: what resumes may send again, or destroy this object.
    const auto pendingRequests = std::exchange(m_pendingRequests, {});
    const auto unfinishedSends = std::exchange(m_unfinishedSends, {});
    for (const auto &[id, waiter] : pendingRequests)
        waiter.complete(failure(DaemonError::Kind::disconnected));
    for (const auto &[id, sent] : unfinishedSends)
        sent.complete(failure(DaemonError::Kind::disconnected));
}

void DaemonConnector::completeRequest(const std::string &id, Result<ProtocolMessage> outcome)
{
    const auto entry = m_pendingRequests.extract(id);
    if (entry)
        entry.mapped().complete(std::move(outcome));
}

QCoro::Task<DaemonConnector::Result<ProtocolMessage>>
DaemonConnector::sendRequest(std::string method, std::optional<AnyCodable::Object> payload)
{
    if (m_connectionState != ConnectionState::connected || !m_webSocketTask)
        co_return failure(DaemonError::Kind::notConnected);

    const std::string id = makeRequestId();
    ProtocolMessage request{
        .id = id, .type = MessageType::request, .method = std::move(method), .payload = {}};
    if (payload)
        request.payload = AnyCodable{.value = std::move(*payload)};
    auto encoded = encode(request);
    if (!encoded)
        co_return std::unexpected<LinkError>(std::move(encoded).error());

    const QPointer self(this);
    const SendOutcome sent;
    m_unfinishedSends.emplace(id, sent);
    m_webSocketTask->send(*std::move(encoded), [sent](std::expected<void, TransportError> outcome) {
        if (outcome)
            sent.complete({});
        else
            sent.complete(std::unexpected<LinkError>(std::move(outcome).error()));
    });
    Result<> outcome = co_await sent;
    if (!self)
        co_return failure(DaemonError::Kind::disconnected);
    m_unfinishedSends.erase(id);
    if (!outcome)
        co_return std::unexpected(std::move(outcome).error());

    const Waiter waiter;
    m_pendingRequests.emplace(id, waiter);
    m_clock.after(requestTimeout, [self, id] {
        if (self)
            self->completeRequest(id, failure(DaemonError::Kind::timeout));
    });
    Result<ProtocolMessage> response = co_await waiter;
    co_return response;
}

QCoro::Task<DaemonConnector::Result<>> DaemonConnector::sendDiscardingResponse(std::string method,
                                                                               AnyCodable::Object payload)
{
    std::optional<AnyCodable::Object> arguments = std::move(payload);
    const Result<ProtocolMessage> response = co_await sendRequest(std::move(method), std::move(arguments));
    if (!response)
        co_return std::unexpected(response.error());
    co_return Result<>();
}

QCoro::Task<DaemonConnector::Result<>> DaemonConnector::setSlot(std::int64_t slotIndex, std::string content)
{
    AnyCodable::Object payload;
    payload.emplace("slot_index", integer(slotIndex));
    payload.emplace("content", text(std::move(content)));
    return sendDiscardingResponse("clipboard.set_slot", std::move(payload));
}

QCoro::Task<DaemonConnector::Result<>> DaemonConnector::clearSlot(std::int64_t slotIndex)
{
    AnyCodable::Object payload;
    payload.emplace("slot_index", integer(slotIndex));
    return sendDiscardingResponse("clipboard.clear_slot", std::move(payload));
}

QCoro::Task<DaemonConnector::Result<std::string>> DaemonConnector::pasteSlot(std::int64_t slotIndex)
{
    std::optional<AnyCodable::Object> payload(std::in_place);
    payload->emplace("slot_index", integer(slotIndex));
    Result<ProtocolMessage> response = co_await sendRequest("clipboard.paste_slot", std::move(payload));
    if (!response)
        co_return std::unexpected(std::move(response).error());
    if (response->error)
        co_return failure(DaemonError::Kind::serverError, std::move(response->error->message));

    if (response->payload) {
        if (auto *object = std::get_if<AnyCodable::Object>(&response->payload->value)) {
            const auto content = object->find("content");
            if (content != object->end()) {
                if (auto *slotText = std::get_if<std::string>(&content->second.value))
                    co_return std::move(*slotText);
            }
        }
    }
    co_return failure(DaemonError::Kind::invalidResponse);
}

QCoro::Task<DaemonConnector::Result<>> DaemonConnector::addFile(std::string filePath)
{
    AnyCodable::Object payload;
    payload.emplace("file_path", text(std::move(filePath)));
    return sendDiscardingResponse("files.add", std::move(payload));
}

QCoro::Task<DaemonConnector::Result<>> DaemonConnector::removeFile(std::string id)
{
    AnyCodable::Object payload;
    payload.emplace("id", text(std::move(id)));
    return sendDiscardingResponse("files.remove", std::move(payload));
}

QCoro::Task<DaemonConnector::Result<>> DaemonConnector::clearFiles()
{
    std::vector<std::string> ids;
    ids.reserve(m_fileReferences.size());
    for (const model::FileReference &file : m_fileReferences)
        ids.push_back(file.id);

    const QPointer self(this);
    for (const std::string &id : ids) {
        if (!self)
            co_return failure(DaemonError::Kind::disconnected);
        const Result<> removed = co_await removeFile(id);
        if (!removed)
            co_return removed;
    }
    co_return Result<>();
}

QCoro::Task<DaemonConnector::Result<>> DaemonConnector::reorderFile(std::int64_t fromIndex,
                                                                    std::int64_t toIndex)
{
    AnyCodable::Object payload;
    payload.emplace("from_index", integer(fromIndex));
    payload.emplace("to_index", integer(toIndex));
    return sendDiscardingResponse("files.reorder", std::move(payload));
}

} // namespace stavelin::daemon
