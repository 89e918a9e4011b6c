#include "Platform/X11/Overlays/LeftoverWindows.h"

#include "Platform/SystemLog.h"
#include "Platform/X11/XcbConnection.h"

#include <QFile>
#include <QSysInfo>
#include <set>
#include <vector>

namespace {

// A killed process stays in the table, as a zombie, until its parent takes note.
bool isRunningVeyla(uint32_t pid) {
    QFile status(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) return false;
    const QByteArray text = status.readAll();
    const qsizetype nameEnd = text.lastIndexOf(')');
    const QByteArray name = text.left(nameEnd).mid(text.indexOf('(') + 1);
    const char state = text.mid(nameEnd + 2, 1).append('X').front();
    return name == "veyla" && state != 'Z' && state != 'X';
}

// A window of somebody else's session, possibly on another host, is not ours to release. On a
// display of this host alone it is of this host, whatever that was called then.
bool isAlive(const XcbConnection& connection, xcb_window_t window) {
    const bool isLocalDisplay = qEnvironmentVariable("DISPLAY").startsWith(QLatin1Char(':'));
    const QByteArray host = connection.property8(window, XCB_ATOM_WM_CLIENT_MACHINE);
    if (!isLocalDisplay && host != QSysInfo::machineHostName().toUtf8()) return true;
    const auto pid = connection.property32(window, connection.atoms().netWmPid);
    return !pid.empty() && isRunningVeyla(pid.front());
}

}  // namespace

void killLeftoverWindows(XcbConnection& connection, SystemLog& log) {
    const auto* const setup = xcb_get_setup(connection);
    const uint32_t clientBits = ~setup->resource_id_mask;
    const std::vector<xcb_window_t> children = connection.children(connection.root());
    std::vector<xcb_get_property_cookie_t> cookies;
    cookies.reserve(children.size());
    for (const xcb_window_t child : children)
        cookies.push_back(xcb_get_property(connection, 0, child, connection.atoms().veylaMaskID,
                                           XCB_GET_PROPERTY_TYPE_ANY, 0, 0));
    // One window stands for everything that its connection left behind.
    std::set<uint32_t> seenClients;
    for (std::size_t i = 0; i < children.size(); ++i) {
        const auto property = xcbReply(xcb_get_property_reply, connection.get(), cookies[i]);
        const bool isMask = property && property->type != XCB_NONE;
        const uint32_t client = children[i] & clientBits;
        if (!isMask || client == setup->resource_id_base || seenClients.contains(client)) continue;
        seenClients.insert(client);
        if (isAlive(connection, children[i]))
            log.write(QStringLiteral("Veyla: masks of another running Veyla are on this display"));
        else
            xcb_kill_client(connection, children[i]);
    }
}
