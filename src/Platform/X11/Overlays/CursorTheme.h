#pragma once

#include "Platform/OverlaySurfaces.h"
#include "Platform/X11/XcbConnection.h"

#include <map>

struct xcb_cursor_context_t;

/// The pointer shapes of the user's cursor theme, loaded when they are first asked for.
class CursorTheme {
public:
    /// `connection` must outlive the theme.
    explicit CursorTheme(XcbConnection& connection) : m_connection(connection) {}
    ~CursorTheme();
    CursorTheme(const CursorTheme&) = delete;
    CursorTheme& operator=(const CursorTheme&) = delete;

    /// The cursor of a shape; XCB_NONE, which shows that of the window below, when neither the
    /// theme nor the server's cursor font has it.
    xcb_cursor_t cursor(CursorShape shape);

private:
    XcbConnection& m_connection;
    xcb_cursor_context_t* m_context = nullptr;
    std::map<CursorShape, xcb_cursor_t> m_cursors;
};
