#include "Platform/X11/Keyboard/ModifierMap.h"

#include "Models/HotkeyBinding.h"

#include <X11/keysym.h>
#include <algorithm>
#include <initializer_list>
#include <span>

namespace {

/// The modifiers of the server, each with the keys that set it and what is written on those.
class HeldKeysyms {
public:
    explicit HeldKeysyms(XcbConnection& connection)
        : m_firstKeycode(xcb_get_setup(connection)->min_keycode) {
        const auto keycodeCount =
            static_cast<uint8_t>(xcb_get_setup(connection)->max_keycode - m_firstKeycode + 1);
        const auto modifiers = xcb_get_modifier_mapping(connection);
        const auto keysyms = xcb_get_keyboard_mapping(connection, m_firstKeycode, keycodeCount);
        m_modifiers = xcbReply(xcb_get_modifier_mapping_reply, connection.get(), modifiers);
        m_keysyms = xcbReply(xcb_get_keyboard_mapping_reply, connection.get(), keysyms);
    }

    /// The first of Mod1 to Mod5 that a key with one of the keysyms sets; zero when none does.
    uint16_t maskWith(std::initializer_list<xcb_keysym_t> wanted) const {
        if (!m_modifiers || !m_keysyms) return 0;
        for (int index = XCB_MAP_INDEX_1; index <= XCB_MAP_INDEX_5; ++index)
            for (const xcb_keycode_t keycode : keycodesOf(index))
                for (const xcb_keysym_t keysym : keysymsOf(keycode))
                    if (std::find(wanted.begin(), wanted.end(), keysym) != wanted.end())
                        return static_cast<uint16_t>(1 << index);
        return 0;
    }

private:
    std::span<const xcb_keycode_t> keycodesOf(int modifierIndex) const {
        const std::size_t width = m_modifiers->keycodes_per_modifier;
        return {xcb_get_modifier_mapping_keycodes(m_modifiers.get()) +
                    static_cast<std::size_t>(modifierIndex) * width,
                width};
    }

    /// Empty for a keycode that means none.
    std::span<const xcb_keysym_t> keysymsOf(xcb_keycode_t keycode) const {
        const auto count =
            static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(m_keysyms.get()));
        const std::size_t width = m_keysyms->keysyms_per_keycode;
        if (keycode < m_firstKeycode) return {};
        const std::size_t first = std::size_t(keycode - m_firstKeycode) * width;
        if (first + width > count) return {};
        return {xcb_get_keyboard_mapping_keysyms(m_keysyms.get()) + first, width};
    }

    xcb_keycode_t m_firstKeycode;
    XcbReply<xcb_get_modifier_mapping_reply_t> m_modifiers;
    XcbReply<xcb_get_keyboard_mapping_reply_t> m_keysyms;
};

}  // namespace

ModifierMap ModifierMap::read(XcbConnection& connection) {
    const HeldKeysyms held(connection);
    ModifierMap map;
    if (const uint16_t alt = held.maskWith({XK_Alt_L, XK_Alt_R})) map.alt = alt;
    if (const uint16_t super = held.maskWith({XK_Super_L, XK_Super_R})) map.super = super;
    map.numLock = held.maskWith({XK_Num_Lock});
    map.scrollLock = held.maskWith({XK_Scroll_Lock});
    return map;
}

uint16_t ModifierMap::maskOf(quint32 bindingModifiers) const {
    unsigned mask = 0;
    if ((bindingModifiers & HotkeyBinding::controlModifier) != 0) mask |= XCB_MOD_MASK_CONTROL;
    if ((bindingModifiers & HotkeyBinding::optionModifier) != 0) mask |= alt;
    if ((bindingModifiers & HotkeyBinding::shiftModifier) != 0) mask |= XCB_MOD_MASK_SHIFT;
    if ((bindingModifiers & HotkeyBinding::commandModifier) != 0) mask |= super;
    return static_cast<uint16_t>(mask);
}

uint16_t ModifierMap::locks() const {
    // A modifier that also holds Alt or Super is one that is pressed.
    return static_cast<uint16_t>((XCB_MOD_MASK_LOCK | numLock | scrollLock) & ~(alt | super));
}

std::vector<uint16_t> ModifierMap::withLocks(uint16_t mask) const {
    std::vector<uint16_t> masks{mask};
    for (unsigned bit = 1; bit <= XCB_MOD_MASK_5; bit <<= 1U) {
        if ((locks() & bit) == 0) continue;
        const std::size_t count = masks.size();
        for (std::size_t i = 0; i < count; ++i)
            masks.push_back(static_cast<uint16_t>(masks[i] | bit));
    }
    return masks;
}
