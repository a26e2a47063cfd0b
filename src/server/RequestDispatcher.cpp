#include "server/RequestDispatcher.h"

#include "server/Limits.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace stavelin::server {

using daemon::AnyCodable;
using daemon::ErrorPayload;
using daemon::MessageType;
using daemon::ProtocolMessage;

namespace {

ProtocolMessage success(std::string id, std::optional<AnyCodable> payload = {})
{
    ProtocolMessage message;
    message.id = std::move(id);
    message.type = MessageType::response;
    message.payload = std::move(payload);
    return message;
}

ProtocolMessage failure(std::string id, ErrorPayload error)
{
    ProtocolMessage message;
    message.id = std::move(id);
    message.type = MessageType::response;
    message.error = std::move(error);
    return message;
}

std::unexpected<ErrorPayload> refused(std::string code, std::string message)
{
    return std::unexpected(ErrorPayload{std::move(code), std::move(message)});
}

std::expected<std::int64_t, ErrorPayload> slotIndexIn(const AnyCodable::Object &arguments)
{
    const auto member = arguments.find("slot_index");
    const auto *slotIndex =
        member == arguments.end() ? nullptr : std::get_if<std::int64_t>(&member->second.value);
    if (slotIndex == nullptr)
        return refused("invalid_request", "slot_index must be an integer");
    if (*slotIndex < SlotStore::firstSlot || *slotIndex > SlotStore::lastSlot)
        return refused("invalid_slot",
                       "There is no slot " + std::to_string(*slotIndex) + "; slots are 1 to 9");
    return *slotIndex;
}

/// How many bytes the text takes in a JSON frame, at most.
std::size_t jsonSize(std::string_view text)
{
    const auto controls = static_cast<std::size_t>(
        std::ranges::count_if(text, [](unsigned char c) { return c < 0x20 || c == 0x7F; }));
    const auto escaped =
        static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return c == '"' || c == '\\'; }));
    return text.size() + 5 * controls + escaped;
}

} // namespace

RequestDispatcher::RequestDispatcher(SlotStore &store, Pasteboard &pasteboard, IsSensitive isSensitive,
                                     StateChanged stateChanged)
    : m_store(store), m_pasteboard(pasteboard), m_isSensitive(std::move(isSensitive)),
      m_stateChanged(std::move(stateChanged))
{}

void RequestDispatcher::dispatch(ProtocolMessage request, Answer answer)
{
    if (!request.method) {
        answer(failure(std::move(request.id), {"invalid_request", "A request needs a method"}));
        return;
    }
    const std::string &method = *request.method;
    const bool isKnown = method == "clipboard.set_slot" || method == "clipboard.clear_slot" ||
                         method == "clipboard.paste_slot";
    if (!isKnown) {
        answer(failure(std::move(request.id), {"unknown_method", "There is no such method"}));
        return;
    }
    auto *arguments = request.payload ? std::get_if<AnyCodable::Object>(&request.payload->value) : nullptr;
    if (arguments == nullptr) {
        answer(failure(std::move(request.id), {"invalid_request", "The payload must be an object"}));
        return;
    }
    if (method == "clipboard.paste_slot") {
        pasteSlot(std::move(request.id), *arguments, std::move(answer));
        return;
    }
    auto result = method == "clipboard.set_slot" ? setSlot(*arguments) : clearSlot(*arguments);
    if (result)
        answer(success(std::move(request.id)));
    else
        answer(failure(std::move(request.id), std::move(result.error())));
}

RequestDispatcher::Result RequestDispatcher::setSlot(AnyCodable::Object &arguments)
{
    const auto slotIndex = slotIndexIn(arguments);
    if (!slotIndex)
        return std::unexpected(slotIndex.error());
    const auto member = arguments.find("content");
    auto *content = member == arguments.end() ? nullptr : std::get_if<std::string>(&member->second.value);
    if (content == nullptr)
        return refused("invalid_request", "content must be a string");
    if (content->size() > Limits::slotText)
        return refused("content_too_large", "A slot holds at most 64 MiB");
    if (!stateWouldFit(*slotIndex, *content))
        return refused("content_too_large", "The nine slots together would be too large");
    return store(*slotIndex, std::move(*content));
}

RequestDispatcher::Result RequestDispatcher::clearSlot(const AnyCodable::Object &arguments)
{
    const auto slotIndex = slotIndexIn(arguments);
    if (!slotIndex)
        return std::unexpected(slotIndex.error());
    return store(*slotIndex, {});
}

void RequestDispatcher::pasteSlot(std::string id, const AnyCodable::Object &arguments, Answer answer)
{
    auto slotIndex = slotIndexIn(arguments);
    if (!slotIndex) {
        answer(failure(std::move(id), std::move(slotIndex.error())));
        return;
    }
    const std::string &content = m_store.slot(*slotIndex).content;
    if (content.empty()) {
        answer(failure(std::move(id), {"slot_empty", "Slot " + std::to_string(*slotIndex) + " is empty"}));
        return;
    }
    // The slot may be given another text before the pasteboard has this one: what is answered is what was put
    // there.
    auto put = [id = std::move(id), content = std::string(content),
                answer = std::move(answer)](std::expected<void, PasteboardError> result) mutable {
        if (!result) {
            answer(failure(std::move(id), {"pasteboard_unavailable", std::move(result.error().description)}));
            return;
        }
        AnyCodable::Object payload;
        payload.emplace("content", AnyCodable{std::move(content)});
        answer(success(std::move(id), AnyCodable{std::move(payload)}));
    };
    m_pasteboard.put(content, m_isSensitive(content), std::move(put));
}

RequestDispatcher::Result RequestDispatcher::store(std::int64_t slotIndex, std::string content)
{
    if (const auto stored = m_store.set(slotIndex, std::move(content)); !stored)
        return refused("store_failed", "The slot could not be stored: " + stored.error().description);
    m_stateChanged();
    return {};
}

bool RequestDispatcher::stateWouldFit(std::int64_t slotIndex, std::string_view content) const
{
    // No character takes more than six bytes in JSON, so that only very large slots are looked through.
    constexpr std::size_t frameWithoutTexts = 64 * 1024;
    constexpr std::size_t room = Limits::frame - frameWithoutTexts;
    const auto total = [&](auto sizeOf) {
        std::size_t sum = sizeOf(content);
        for (const daemon::ClipboardSlotData &slot : m_store.slots()) {
            if (slot.slot_index != slotIndex)
                sum += sizeOf(std::string_view(slot.content));
        }
        return sum;
    };
    return 6 * total([](std::string_view text) { return text.size(); }) <= room || total(jsonSize) <= room;
}

} // namespace stavelin::server
