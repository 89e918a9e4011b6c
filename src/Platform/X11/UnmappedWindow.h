#pragma once

#include "Platform/X11/XcbConnection.h"

/// A window that is never shown, for requests that need one.
class UnmappedWindow {
public:
    explicit UnmappedWindow(XcbConnection& connection);
    ~UnmappedWindow() { xcb_destroy_window(m_connection, m_id); }
    UnmappedWindow(const UnmappedWindow&) = delete;
    UnmappedWindow& operator=(const UnmappedWindow&) = delete;

    /// Makes the server tell that the order of windows has changed.
    void stirStacking();
    /// Whether another client holds the keyboard. Asking does not take it from anybody.
    bool isKeyboardHeldByAnother() const;

private:
    XcbConnection& m_connection;
    xcb_window_t m_id;
};
