#pragma once

#include "platform/EventTap.h"

#include <cstdint>
#include <optional>

/// The gestures as a pure machine over key codes and flag words (platform/KeyVocabulary.h).
namespace stavelin::services {

/// What a key event starts.
enum class GestureAction {
    none,
    startPasteFlow,
    autoSaveClipboardToSlot,
    togglePanel,
    resetPasteFlow,
    pasteFromSlot
};

struct GestureDecision
{
    platform::TapVerdict verdict = platform::TapVerdict::passThrough;
    /// Whether a digit is awaited from now on; nothing when that stays as it is.
    std::optional<bool> waiting{};
    GestureAction action = GestureAction::none;
    int slotIndex = 0; ///< 1 to 9 with pasteFromSlot, else 0

    friend bool operator==(const GestureDecision &, const GestureDecision &) = default;
};

/// Decides about one event; `waiting` says whether a digit is awaited. Any thread.
[[nodiscard]] GestureDecision decide(const platform::TapEvent &event, bool waiting);

/// The digit 1 to 9 that a key of the digit row stands for; nothing for 0, the keypad and every other key.
[[nodiscard]] std::optional<int> digitForKeyCode(std::int64_t keyCode);

/// The slot after this one, in the cycle 1 to 9.
[[nodiscard]] constexpr int slotIndexAfter(int slotIndex)
{
    return slotIndex % 9 + 1;
}

} // namespace stavelin::services
