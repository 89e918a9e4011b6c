#pragma once

#include "Platform/X11/XcbConnection.h"

/// Keeps the server to this connection while it lives: nobody sees a state in between of what is
/// asked meanwhile, and no compositor paints one. To be held only for what takes no time.
class [[nodiscard]] ServerGrab {
public:
    explicit ServerGrab(XcbConnection& connection) : m_connection(connection) {
        xcb_grab_server(m_connection);
    }
    ~ServerGrab() { xcb_ungrab_server(m_connection); }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    XcbConnection& m_connection;
};
