#include "platform/PlatformVocabulary.h"

namespace stavelin::platform {

const ShortcutWords &shortcutWords(ModifierRoles roles)
{
    static constexpr ShortcutWords byUse{"Super + C", "Super + V", "Ctrl + Alt + S"};
    static constexpr ShortcutWords literal{"Ctrl + C", "Ctrl + V", "Alt + Super + S"};
    return roles == ModifierRoles::literal ? literal : byUse;
}

} // namespace stavelin::platform
