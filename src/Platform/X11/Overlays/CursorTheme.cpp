#include "Platform/X11/Overlays/CursorTheme.h"

#include <initializer_list>
#include <xcb/xcb_cursor.h>

namespace {

// The names that themes use for a shape, the usual one first, the server's cursor font last.
std::initializer_list<const char*> themeNames(CursorShape shape) {
    static constexpr std::initializer_list<const char*> arrow{"default", "left_ptr"};
    static constexpr std::initializer_list<const char*> openHand{"grab", "openhand", "hand1",
                                                                 "fleur"};
    static constexpr std::initializer_list<const char*> upDown{"ns-resize", "size_ver",
                                                               "sb_v_double_arrow"};
    static constexpr std::initializer_list<const char*> leftRight{"ew-resize", "size_hor",
                                                                  "sb_h_double_arrow"};
    static constexpr std::initializer_list<const char*> crosshair{"crosshair", "cross"};
    switch (shape) {
        case CursorShape::arrow:
            return arrow;
        case CursorShape::openHand:
            return openHand;
        case CursorShape::resizeUpDown:
            return upDown;
        case CursorShape::resizeLeftRight:
            return leftRight;
        case CursorShape::crosshair:
            return crosshair;
    }
    return arrow;
}

}  // namespace

CursorTheme::~CursorTheme() {
    for (const auto& [shape, cursor] : m_cursors)
        if (cursor != XCB_NONE) xcb_free_cursor(m_connection, cursor);
    if (m_context) xcb_cursor_context_free(m_context);
}

xcb_cursor_t CursorTheme::cursor(CursorShape shape) {
    const auto known = m_cursors.find(shape);
    if (known != m_cursors.end()) return known->second;

    if (!m_context) {
        auto screen = m_connection.screen();
        if (xcb_cursor_context_new(m_connection, &screen, &m_context) < 0) return XCB_NONE;
    }
    xcb_cursor_t cursor = XCB_NONE;
    for (const char* name : themeNames(shape)) {
        cursor = xcb_cursor_load_cursor(m_context, name);
        if (cursor != XCB_NONE) break;
    }
    m_cursors.emplace(shape, cursor);
    return cursor;
}
