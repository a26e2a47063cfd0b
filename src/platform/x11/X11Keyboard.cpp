#include "platform/x11/X11Keyboard.h"

#include "platform/KeyVocabulary.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/XkbProtocol.h"

#include <algorithm>
#include <initializer_list>
#include <memory>

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

namespace stavelin::platform::x11 {

namespace {

struct FreeKeymap
{
    void operator()(xkb_context *context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap *keymap) const { xkb_keymap_unref(keymap); }
};
using ContextPointer = std::unique_ptr<xkb_context, FreeKeymap>;
using KeymapPointer = std::unique_ptr<xkb_keymap, FreeKeymap>;

bool types(xkb_keymap *keymap, xkb_keycode_t keycode, xkb_layout_index_t layout, xkb_keysym_t keysym)
{
    const xkb_keysym_t *keysyms = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap, keycode, layout, 0, &keysyms);
    return count == 1 && keysyms[0] == keysym;
}

std::optional<std::uint8_t> keyInLayout(xkb_keymap *keymap, xkb_layout_index_t layout, xkb_keysym_t keysym)
{
    const xkb_keycode_t last = std::min<xkb_keycode_t>(xkb_keymap_max_keycode(keymap), 255);
    for (xkb_keycode_t keycode = xkb_keymap_min_keycode(keymap); keycode <= last; ++keycode) {
        if (types(keymap, keycode, layout, keysym))
            return static_cast<std::uint8_t>(keycode);
    }
    return std::nullopt;
}

std::uint8_t keyFor(xkb_keymap *keymap, xkb_layout_index_t current, xkb_keysym_t keysym,
                    std::uint8_t position)
{
    if (const auto keycode = keyInLayout(keymap, current, keysym))
        return *keycode;
    for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts(keymap); ++layout) {
        if (const auto keycode = keyInLayout(keymap, layout, keysym))
            return *keycode;
    }
    return position;
}

/// The first of the five free modifiers that one of these keys is bound to, as a mask.
std::uint16_t modifierOf(xkb_keymap *keymap, const X11Keyboard &keyboard,
                         std::initializer_list<xkb_keysym_t> keysyms)
{
    constexpr std::size_t firstFree = 3; // after Shift, Lock and Control
    for (std::size_t modifier = firstFree; modifier < keyboard.keysOfModifier.size(); ++modifier) {
        for (std::size_t keycode = 8; keycode < 256; ++keycode) {
            if (keyboard.keysOfModifier[modifier][keycode] &&
                std::ranges::any_of(keysyms, [&](xkb_keysym_t keysym) {
                    return types(keymap, static_cast<xkb_keycode_t>(keycode), 0, keysym);
                }))
                return static_cast<std::uint16_t>(1U << modifier);
        }
    }
    return 0;
}

} // namespace

void X11Keyboard::watch(X11Connection &connection)
{
    const auto asked = xcb_xkb_per_client_flags(connection.get(), XCB_XKB_ID_USE_CORE_KBD,
                                                XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                                XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0);
    xcb_discard_reply(connection.get(), asked.sequence);
    constexpr std::uint16_t notices = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                      XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    constexpr std::uint16_t wholeMap = 0xFF;
    // Of the state only the layout in use: modifiers change with every shifted letter.
    xcb_xkb_select_events_details_t details{};
    details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
    details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(connection.get(), XCB_XKB_ID_USE_CORE_KBD, notices, 0,
                              XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY,
                              wholeMap, wholeMap, &details);
    connection.flush();
}

bool X11Keyboard::mayHaveChanged(const X11Connection &connection, const xcb_generic_event_t &event)
{
    const auto type = event.response_type & 0x7F;
    return type == XCB_MAPPING_NOTIFY || type == connection.xkbEventCode();
}

std::optional<X11Keyboard> X11Keyboard::read(X11Connection &connection)
{
    xcb_connection_t *server = connection.get();
    const auto stateAsked = xcb_xkb_get_state(server, XCB_XKB_ID_USE_CORE_KBD);
    const auto modifiersAsked = xcb_get_modifier_mapping(server);
    const ReplyPointer<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(server, stateAsked, nullptr));
    const ReplyPointer<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(server, modifiersAsked, nullptr));
    if (!state || !modifiers)
        return std::nullopt;
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(server);
    const ContextPointer context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    const KeymapPointer keymap(
        context && device >= 0
            ? xkb_x11_keymap_new_from_device(context.get(), server, device, XKB_KEYMAP_COMPILE_NO_FLAGS)
            : nullptr);
    if (!keymap)
        return std::nullopt;

    X11Keyboard keyboard;
    const xcb_keycode_t *keycodes = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const std::size_t perModifier = modifiers->keycodes_per_modifier;
    for (std::size_t i = 0; i < keyboard.keysOfModifier.size() * perModifier; ++i) {
        if (keycodes[i] != 0)
            keyboard.keysOfModifier[i / perModifier].set(keycodes[i]);
    }
    keyboard.numLock = modifierOf(keymap.get(), keyboard, {XKB_KEY_Num_Lock});
    keyboard.scrollLock = modifierOf(keymap.get(), keyboard, {XKB_KEY_Scroll_Lock});
    keyboard.alt = modifierOf(keymap.get(), keyboard, {XKB_KEY_Alt_L, XKB_KEY_Alt_R});
    keyboard.super = modifierOf(keymap.get(), keyboard, {XKB_KEY_Super_L, XKB_KEY_Super_R});

    const xkb_layout_index_t current = state->group;
    keyboard.keyC = keyFor(keymap.get(), current, XKB_KEY_c, keyboard.keyC);
    keyboard.keyV = keyFor(keymap.get(), current, XKB_KEY_v, keyboard.keyV);
    keyboard.keyS = keyFor(keymap.get(), current, XKB_KEY_s, keyboard.keyS);
    keyboard.keyInsert = keyFor(keymap.get(), current, XKB_KEY_Insert, keyboard.keyInsert);
    return keyboard;
}

std::vector<std::uint16_t> X11Keyboard::lockVariants() const
{
    std::vector<std::uint16_t> variants{0};
    for (const std::uint16_t modifier : {lock, numLock, scrollLock}) {
        if (modifier == 0)
            continue;
        for (std::size_t i = 0, count = variants.size(); i < count; ++i)
            variants.push_back(static_cast<std::uint16_t>(variants[i] | modifier));
    }
    return variants;
}

X11Keyboard::Keycodes X11Keyboard::keysOf(std::uint16_t modifiers) const
{
    Keycodes keycodes;
    for (std::size_t modifier = 0; modifier < keysOfModifier.size(); ++modifier) {
        if ((modifiers >> modifier & 1) != 0)
            keycodes |= keysOfModifier[modifier];
    }
    return keycodes;
}

TapEvent X11Keyboard::keyDown(std::uint8_t keycode, std::uint16_t modifiers, ModifierRoles roles) const
{
    TapEvent event{.type = keys::keyDown, .keyCode = keys::other};
    if (keycode == keyV)
        event.keyCode = keys::v;
    else if (keycode == keyC)
        event.keyCode = keys::c;
    else if (keycode == keyS)
        event.keyCode = keys::s;
    else if (isDigitKey(keycode))
        event.keyCode = keys::digits[keycode - 10];

    const bool isLiteral = roles == ModifierRoles::literal;
    if ((modifiers & shift) != 0)
        event.flags |= keys::shift;
    if ((modifiers & control) != 0)
        event.flags |= isLiteral ? keys::control : keys::command;
    if ((modifiers & super) != 0)
        event.flags |= isLiteral ? keys::command : keys::control;
    if ((modifiers & alt) != 0)
        event.flags |= keys::option;
    return event;
}

} // namespace stavelin::platform::x11
