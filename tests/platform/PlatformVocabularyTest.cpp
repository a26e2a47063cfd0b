#include "platform/PlatformVocabulary.h"

#include <gtest/gtest.h>

namespace stavelin::platform {

TEST(PlatformVocabulary, theShortcutsAreNamedByTheKeysOfEachMapping)
{
    struct Row
    {
        ModifierRoles roles;
        ShortcutWords words;
    };
    const Row table[] = {
        {ModifierRoles::byUse, {"Super + C", "Super + V", "Ctrl + Alt + S"}},
        {ModifierRoles::literal, {"Ctrl + C", "Ctrl + V", "Alt + Super + S"}},
    };
    for (const Row &row : table) {
        const ShortcutWords &words = shortcutWords(row.roles);
        EXPECT_EQ(words.saveToSlot, row.words.saveToSlot);
        EXPECT_EQ(words.pasteFromSlot, row.words.pasteFromSlot);
        EXPECT_EQ(words.togglePanel, row.words.togglePanel);
    }
}

} // namespace stavelin::platform
