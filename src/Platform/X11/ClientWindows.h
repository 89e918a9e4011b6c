#pragma once

#include "Platform/Qt/Applications/ApplicationResolver.h"
#include "Platform/X11/XcbConnection.h"

#include <QByteArray>
#include <optional>
#include <sys/types.h>
#include <vector>

/// What the server and the window's owner tell of a window.
struct ClientWindow {
    xcb_window_t id = XCB_NONE;
    /// On this machine; nothing when it is not known, as for a window that came over the network.
    std::optional<pid_t> process;
    WindowFacts facts;
};

/// Asks about windows of other programs, any number at the price of one wait.
class ClientWindows {
public:
    /// `connection` must outlive the object.
    explicit ClientWindows(const XcbConnection& connection);

    /// In the order of `windows`, without those that are gone.
    std::vector<ClientWindow> read(const std::vector<xcb_window_t>& windows) const;
    /// The processes of the clients that have, or had, these resources. Clients that are gone, or
    /// on other machines, are left out; so are all where the server lacks X-Resource 1.2.
    std::vector<pid_t> processesOf(const std::vector<xcb_window_t>& resources) const;

private:
    struct Request;

    Request request(xcb_window_t window) const;
    std::optional<ClientWindow> take(const Request& request) const;

    const XcbConnection& m_connection;
    bool m_canAskForProcesses = false;
    QByteArray m_hostName;
};
