#include "Platform/X11/Keyboard/KeyboardWatch.h"

#include <utility>

// The header of the extension has a field of this name.
#define explicit isExplicit
#include <xcb/xkb.h>
#undef explicit

KeyboardWatch::KeyboardWatch(XcbConnection& connection) : m_connection(connection) {
    if (m_connection.hasExtension(xcb_xkb_id)) useXkb();
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] {
        if (std::exchange(m_hasChange, false) && onMappingChanged) onMappingChanged();
    }));
}

void KeyboardWatch::useXkb() {
    const auto use =
        xcb_xkb_use_extension(m_connection, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
    const auto used = xcbReply(xcb_xkb_use_extension_reply, m_connection.get(), use);
    if (!used || used->supported == 0) return;
    m_xkbEvent = xcb_get_extension_data(m_connection, &xcb_xkb_id)->first_event;

    constexpr uint32_t repeats = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto flags = xcbReply(
        xcb_xkb_per_client_flags_reply, m_connection.get(),
        xcb_xkb_per_client_flags(m_connection, XCB_XKB_ID_USE_CORE_KBD, repeats, repeats, 0, 0, 0));
    m_areRepeatsWithoutRelease = flags && (flags->value & repeats) != 0;

    constexpr uint16_t events =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr uint16_t parts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events(m_connection, XCB_XKB_ID_USE_CORE_KBD, events, 0, events, parts, parts,
                          nullptr);
}

void KeyboardWatch::handleEvent(const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    // The server sends MappingNotify to those who have not asked for the event of the extension.
    m_hasChange |= type == XCB_MAPPING_NOTIFY || (m_xkbEvent != 0 && type == m_xkbEvent);
}
