#include "services/PasteFlow.h"

#include "platform/KeyVocabulary.h"

#include <algorithm>
#include <iterator>

namespace stavelin::services {

namespace {

namespace keys = platform::keys;
using platform::TapVerdict;

bool hasAll(std::uint64_t flags, std::uint64_t wanted)
{
    return (flags & wanted) == wanted;
}

/// Control is held and Command is not; Shift and Option do not matter.
bool isControlWithoutCommand(std::uint64_t flags)
{
    return (flags & (keys::control | keys::command)) == keys::control;
}

/// The action that these keys start whether or not a digit is awaited.
GestureAction gestureOf(std::int64_t keyCode, std::uint64_t flags)
{
    switch (keyCode) {
    case keys::v:
        if (isControlWithoutCommand(flags) || hasAll(flags, keys::command | keys::shift))
            return GestureAction::startPasteFlow;
        break;
    case keys::c:
        if (isControlWithoutCommand(flags))
            return GestureAction::autoSaveClipboardToSlot;
        break;
    case keys::s:
        if (hasAll(flags, keys::command | keys::option))
            return GestureAction::togglePanel;
        break;
    default:
        break;
    }
    return GestureAction::none;
}

} // namespace

GestureDecision decide(const platform::TapEvent &event, bool waiting)
{
    if (event.type != keys::keyDown)
        return {};

    // Gestures come before the awaited digit, so that one can follow another without an end in between.
    const GestureAction gesture = gestureOf(event.keyCode, event.flags);
    if (gesture == GestureAction::startPasteFlow)
        return {.verdict = TapVerdict::swallow, .waiting = true, .action = gesture};
    if (gesture != GestureAction::none)
        return {.verdict = TapVerdict::swallow, .action = gesture};

    if (!waiting)
        return {};
    const std::optional<int> digit = digitForKeyCode(event.keyCode);
    if (!digit)
        return {.waiting = false, .action = GestureAction::resetPasteFlow};
    return {.verdict = TapVerdict::swallow,
            .waiting = false,
            .action = GestureAction::pasteFromSlot,
            .slotIndex = *digit};
}

std::optional<int> digitForKeyCode(std::int64_t keyCode)
{
    const auto *found = std::ranges::find(keys::digits, keyCode);
    if (found == std::end(keys::digits))
        return std::nullopt;
    return static_cast<int>(found - std::begin(keys::digits)) + 1;
}

} // namespace stavelin::services
