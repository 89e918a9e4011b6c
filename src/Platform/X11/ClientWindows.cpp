#include "Platform/X11/ClientWindows.h"

#include <QSysInfo>
#include <xcb/res.h>

namespace {

xcb_res_query_client_ids_cookie_t requestProcess(const XcbConnection& connection,
                                                 xcb_window_t resource) {
    const xcb_res_client_id_spec_t question{resource, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(connection, 1, &question);
}

std::optional<pid_t> takeProcess(const XcbConnection& connection,
                                 xcb_res_query_client_ids_cookie_t request) {
    const auto reply = xcbReply(xcb_res_query_client_ids_reply, connection.get(), request);
    if (!reply) return std::nullopt;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        const bool hasProcess =
            (ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(ids.data) > 0;
        const uint32_t process = hasProcess ? *xcb_res_client_id_value_value(ids.data) : 0;
        if (process > 0) return static_cast<pid_t>(process);
    }
    return std::nullopt;
}

// The two texts of WM_CLASS, each with a zero behind it.
void readClass(const QByteArray& both, WindowFacts& facts) {
    const qsizetype end = both.indexOf('\0');
    if (end < 0) {
        facts.className = QString::fromUtf8(both);
        return;
    }
    facts.classInstance = QString::fromUtf8(both.left(end));
    const QByteArray rest = both.mid(end + 1);
    facts.className = QString::fromUtf8(rest.left(rest.indexOf('\0')));
}

}  // namespace

struct ClientWindows::Request {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_res_query_client_ids_cookie_t process;
    xcb_get_property_cookie_t windowClass, gtkApplicationID, desktopFile, claimedProcess, machine;
};

ClientWindows::ClientWindows(const XcbConnection& connection)
    : m_connection(connection), m_hostName(QSysInfo::machineHostName().toUtf8()) {
    if (!connection.hasExtension(xcb_res_id)) return;
    const auto version = xcbReply(xcb_res_query_version_reply, connection.get(),
                                  xcb_res_query_version(connection, 1, 2));
    m_canAskForProcesses = version && (version->server_major > 1 || version->server_minor >= 2);
}

ClientWindows::Request ClientWindows::request(xcb_window_t window) const {
    const X11Atoms& atoms = m_connection.atoms();
    return {window,
            xcb_get_window_attributes(m_connection, window),
            m_canAskForProcesses ? requestProcess(m_connection, window)
                                 : xcb_res_query_client_ids_cookie_t{},
            m_connection.requestProperty(window, XCB_ATOM_WM_CLASS),
            m_connection.requestProperty(window, atoms.gtkApplicationID),
            m_connection.requestProperty(window, atoms.kdeDesktopFile),
            m_connection.requestProperty(window, atoms.netWmPid),
            m_connection.requestProperty(window, XCB_ATOM_WM_CLIENT_MACHINE)};
}

std::optional<ClientWindow> ClientWindows::take(const Request& request) const {
    const auto attributes =
        xcbReply(xcb_get_window_attributes_reply, m_connection.get(), request.attributes);
    ClientWindow window{.id = request.window, .process = {}, .facts = {}};
    if (m_canAskForProcesses) window.process = takeProcess(m_connection, request.process);
    readClass(m_connection.takeProperty8(request.windowClass), window.facts);
    window.facts.gtkApplicationId =
        QString::fromUtf8(m_connection.takeProperty8(request.gtkApplicationID));
    window.facts.desktopFile = QString::fromUtf8(m_connection.takeProperty8(request.desktopFile));
    const auto claimed = m_connection.takeProperty32(request.claimedProcess);
    const QByteArray machine = m_connection.takeProperty8(request.machine);
    // The number that a window claims is one of its own machine, or of its sandbox.
    if (!window.process && !claimed.empty() && machine == m_hostName)
        window.process = static_cast<pid_t>(claimed.front());
    return attributes ? std::optional(window) : std::nullopt;
}

std::vector<ClientWindow> ClientWindows::read(const std::vector<xcb_window_t>& windows) const {
    std::vector<Request> requests;
    requests.reserve(windows.size());
    for (const xcb_window_t window : windows)
        requests.push_back(request(window));
    std::vector<ClientWindow> found;
    for (const Request& each : requests)
        if (auto window = take(each)) found.push_back(*std::move(window));
    return found;
}

std::vector<pid_t> ClientWindows::processesOf(const std::vector<xcb_window_t>& resources) const {
    if (!m_canAskForProcesses) return {};
    std::vector<xcb_res_query_client_ids_cookie_t> requests;
    requests.reserve(resources.size());
    for (const xcb_window_t resource : resources)
        requests.push_back(requestProcess(m_connection, resource));
    std::vector<pid_t> processes;
    for (const auto& request : requests)
        if (const auto process = takeProcess(m_connection, request)) processes.push_back(*process);
    return processes;
}
