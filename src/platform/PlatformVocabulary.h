#pragma once

#include "platform/ModifierRoles.h"

#include <string_view>

namespace stavelin::platform {

/// The shortcuts as people read them: the names that stand on the keys which really work.
struct ShortcutWords
{
    std::string_view saveToSlot;    ///< "Super + C"
    std::string_view pasteFromSlot; ///< "Super + V"; a digit follows
    std::string_view togglePanel;   ///< "Ctrl + Alt + S"
};

[[nodiscard]] const ShortcutWords &shortcutWords(ModifierRoles roles);

} // namespace stavelin::platform
