#pragma once

#include "Platform/WindowManagement.h"
#include "Platform/X11/XcbConnection.h"

#include <array>

/// Talks to the window manager by its EWMH messages. The connection must outlive it.
class X11WindowManagement final : public WindowManagement {
public:
    explicit X11WindowManagement(XcbConnection& connection) : m_connection(connection) {}

    void setIsListed(quint64 window, bool isListed) override;
    void activate(quint64 window) override;

private:
    void send(xcb_window_t window, xcb_atom_t type, const std::array<uint32_t, 5>& data);
    void writeState(xcb_window_t window, bool isListed);

    XcbConnection& m_connection;
};
