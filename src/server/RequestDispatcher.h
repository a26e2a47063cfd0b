#pragma once

#include "daemon/ProtocolMessage.h"
#include "server/Pasteboard.h"
#include "server/store/SlotStore.h"

#include <expected>
#include <functional>
#include <string>
#include <string_view>

namespace stavelin::server {

/// Carries out requests: "clipboard.set_slot", "clipboard.clear_slot", "clipboard.paste_slot". One thread.
class RequestDispatcher
{
public:
    using Answer = std::move_only_function<void(daemon::ProtocolMessage)>;
    using IsSensitive = std::function<bool(std::string_view)>;
    using StateChanged = std::function<void()>;

    /// `stateChanged` runs after each change that is stored, before the request that made it is answered.
    /// `isSensitive` says which texts are offered as secrets when they are pasted.
    RequestDispatcher(SlotStore &store, Pasteboard &pasteboard, IsSensitive isSensitive,
                      StateChanged stateChanged);

    /// Answers a request exactly once, most inside this call, a paste when the pasteboard has the text. An
    /// answer without error means done and durable. Errors: invalid_request, unknown_method, invalid_slot,
    /// slot_empty, content_too_large, pasteboard_unavailable, store_failed.
    void dispatch(daemon::ProtocolMessage request, Answer answer);

private:
    using Result = std::expected<void, daemon::ErrorPayload>;

    [[nodiscard]] Result setSlot(daemon::AnyCodable::Object &arguments);
    [[nodiscard]] Result clearSlot(const daemon::AnyCodable::Object &arguments);
    void pasteSlot(std::string id, const daemon::AnyCodable::Object &arguments, Answer answer);
    [[nodiscard]] Result store(std::int64_t slotIndex, std::string content);
    [[nodiscard]] bool stateWouldFit(std::int64_t slotIndex, std::string_view content) const;

    SlotStore &m_store;
    Pasteboard &m_pasteboard;
    IsSensitive m_isSensitive;
    StateChanged m_stateChanged;
};

} // namespace stavelin::server
