#include "e2e/KeyNames.h"

#include "e2e/Unmet.h"

#include <cctype>
#include <map>
#include <string>

#include <xkbcommon/xkbcommon.h>

namespace stavelin::e2e {

namespace {

xcb_keysym_t keyNamed(std::string name)
{
    static const std::map<std::string, std::string> modifiers{
        {"Ctrl", "Control_L"}, {"Shift", "Shift_L"}, {"Alt", "Alt_L"}, {"Super", "Super_L"}};
    if (const auto found = modifiers.find(name); found != modifiers.end()) {
        name = found->second;
    }
    if (name.size() == 1) {
        name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
    }
    const xcb_keysym_t symbol = xkb_keysym_from_name(name.c_str(), XKB_KEYSYM_NO_FLAGS);
    if (symbol == XKB_KEY_NoSymbol) {
        throw Unmet("no key is called " + name);
    }
    return symbol;
}

} // namespace

std::vector<xcb_keysym_t> keysOfChord(std::string_view chord)
{
    std::vector<xcb_keysym_t> keys;
    while (true) {
        const auto plus = chord.find('+');
        keys.push_back(keyNamed(std::string(chord.substr(0, plus))));
        if (plus == std::string_view::npos) {
            return keys;
        }
        chord.remove_prefix(plus + 1);
    }
}

} // namespace stavelin::e2e
