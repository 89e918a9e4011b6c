#include "Platform/X11/XcbConnection.h"

#include <QAbstractEventDispatcher>
#include <QSocketNotifier>
#include <array>
#include <utility>
#include <xcb/xcbext.h>

namespace {

xcb_screen_t* screenNumbered(xcb_connection_t* connection, int number) {
    auto iterator = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < number && iterator.rem > 1; ++i)
        xcb_screen_next(&iterator);
    return iterator.data;
}

QString connectionErrorText(int error, const QString& display) {
    if (display.isEmpty()) return QStringLiteral("no X display: DISPLAY is not set");
    if (error == XCB_CONN_CLOSED_PARSE_ERR)
        return QStringLiteral("\"%1\" is not the name of an X display").arg(display);
    if (error == XCB_CONN_CLOSED_INVALID_SCREEN)
        return QStringLiteral("X display \"%1\" has no such screen").arg(display);
    return QStringLiteral("cannot open X display \"%1\"").arg(display);
}

// Any program can send any event to any window; the server marks it.
bool isForged(const xcb_generic_event_t& event) {
    constexpr uint8_t sentByProgram = 0x80;
    return (event.response_type & sentByProgram) != 0;
}

bool isOfPointer(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    // They are numbered one after the other.
    return type >= XCB_BUTTON_PRESS && type <= XCB_LEAVE_NOTIFY;
}

auto forAnEvent(XcbConnection::EventHandler handler) {
    return [handler = std::move(handler)](const xcb_generic_event_t* event) {
        if (event) handler(*event);
    };
}

}  // namespace

std::unique_ptr<XcbConnection> XcbConnection::open(QString* error) {
    int screenNumber = 0;
    xcb_connection_t* const connection = xcb_connect(nullptr, &screenNumber);
    if (const int status = xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        *error = connectionErrorText(status, qEnvironmentVariable("DISPLAY"));
        return nullptr;
    }
    return std::unique_ptr<XcbConnection>(new XcbConnection(connection, screenNumber));
}

XcbConnection::XcbConnection(xcb_connection_t* connection, int screenNumber)
    : m_connection(connection), m_screen(screenNumbered(connection, screenNumber)) {
    internAtoms(screenNumber);

    m_socketNotifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection),
                                                         QSocketNotifier::Read);
    connect(m_socketNotifier.get(), &QSocketNotifier::activated, this, [this] { processEvents(); });
    // Waiting for a reply can take events off the socket, and nothing would then tell of them. One
    // of these comes before every wait of the loop, and before a turn that does not wait.
    if (auto* const dispatcher = QAbstractEventDispatcher::instance()) {
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this,
                &XcbConnection::processQueuedEvents);
        connect(dispatcher, &QAbstractEventDispatcher::awake, this,
                &XcbConnection::processQueuedEvents);
    }
}

XcbConnection::~XcbConnection() {
    m_socketNotifier.reset();
    // The server drops requests that it has not read when it cannot deliver an event to a closed
    // connection; one of them may be what takes the windows off the screen.
    xcbReply(xcb_get_input_focus_reply, m_connection, xcb_get_input_focus(m_connection));
    xcb_disconnect(m_connection);
}

void XcbConnection::internAtoms(int screenNumber) {
    const QByteArray number = QByteArray::number(screenNumber);
    const std::array<std::pair<QByteArray, xcb_atom_t*>, 26> names{{
        {"_VEYLA_MASK_ID", &m_atoms.veylaMaskID},
        {"UTF8_STRING", &m_atoms.utf8String},
        {"_NET_WM_NAME", &m_atoms.netWmName},
        {"_NET_WM_PID", &m_atoms.netWmPid},
        {"_NET_WM_WINDOW_OPACITY", &m_atoms.netWmWindowOpacity},
        {"WM_STATE", &m_atoms.wmState},
        {"_NET_WM_STATE", &m_atoms.netWmState},
        {"_NET_WM_STATE_SKIP_TASKBAR", &m_atoms.netWmStateSkipTaskbar},
        {"_NET_WM_STATE_SKIP_PAGER", &m_atoms.netWmStateSkipPager},
        {"_NET_WM_WINDOW_TYPE", &m_atoms.netWmWindowType},
        {"_NET_WM_WINDOW_TYPE_DOCK", &m_atoms.netWmWindowTypeDock},
        {"_NET_CLIENT_LIST", &m_atoms.netClientList},
        {"_NET_ACTIVE_WINDOW", &m_atoms.netActiveWindow},
        {"_GTK_APPLICATION_ID", &m_atoms.gtkApplicationID},
        {"_KDE_NET_WM_DESKTOP_FILE", &m_atoms.kdeDesktopFile},
        {"_NET_WORKAREA", &m_atoms.netWorkarea},
        {"_NET_CURRENT_DESKTOP", &m_atoms.netCurrentDesktop},
        {"_NET_WM_STRUT", &m_atoms.netWmStrut},
        {"_NET_WM_STRUT_PARTIAL", &m_atoms.netWmStrutPartial},
        {"_NET_SUPPORTING_WM_CHECK", &m_atoms.netSupportingWmCheck},
        {"WM_S" + number, &m_atoms.wmSelection},
        {"_NET_WM_CM_S" + number, &m_atoms.compositorSelection},
        {"_NET_SYSTEM_TRAY_S" + number, &m_atoms.traySelection},
        {"_XROOTPMAP_ID", &m_atoms.rootPixmap},
        {"_XSETTINGS_S" + number, &m_atoms.settingsSelection},
        {"_XSETTINGS_SETTINGS", &m_atoms.settings},
    }};
    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(names.size());
    for (const auto& [name, atom] : names)
        cookies.push_back(
            xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(name.size()), name.constData()));
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto reply = xcbReply(xcb_intern_atom_reply, m_connection, cookies[i]);
        if (reply) *names[i].second = reply->atom;
    }
}

void XcbConnection::selectRootEvents(uint32_t eventMask) {
    if ((m_rootEventMask | eventMask) == m_rootEventMask) return;
    m_rootEventMask |= eventMask;
    xcb_change_window_attributes(m_connection, root(), XCB_CW_EVENT_MASK, &m_rootEventMask);
}

void XcbConnection::makeUnheard(const std::function<void()>& requests) {
    const uint32_t deaf = m_rootEventMask & ~uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_grab_server(m_connection);
    xcb_change_window_attributes(m_connection, root(), XCB_CW_EVENT_MASK, &deaf);
    requests();
    xcb_change_window_attributes(m_connection, root(), XCB_CW_EVENT_MASK, &m_rootEventMask);
    xcb_ungrab_server(m_connection);
}

Subscription XcbConnection::onEvent(EventHandler handler) {
    return m_event.subscribe(forAnEvent(std::move(handler)));
}

Subscription XcbConnection::onPointerEvent(EventHandler handler) {
    return m_pointerEvent.subscribe(forAnEvent(std::move(handler)));
}

Subscription XcbConnection::onForgedEvent(EventHandler handler) {
    return m_forgedEvent.subscribe(forAnEvent(std::move(handler)));
}

Subscription XcbConnection::onBurstEnd(std::function<void()> callback) {
    return m_burstEnd.subscribe(std::move(callback));
}

Subscription XcbConnection::onConnectionLost(std::function<void()> callback) {
    return m_connectionLost.subscribe(std::move(callback));
}

void XcbConnection::processQueuedEvents() {
    if (m_isDispatching) return;
    dispatchQueued();
    flush();
}

void XcbConnection::processEvents() {
    if (m_isDispatching) return;
    // One reading of the socket: should it hold more, the notifier tells again.
    dispatchBurst(xcb_poll_for_event(m_connection));
    // What the handlers wait for may bring further events with it.
    dispatchQueued();
    flush();
    if (xcb_connection_has_error(m_connection)) {
        m_socketNotifier->setEnabled(false);
        m_connectionLost.notify();
    }
}

void XcbConnection::dispatchQueued() {
    // Until nothing is left: what is handled may wait for the server, which brings further events
    // and replies, and nothing else tells of those.
    do {
        while (auto* const first = xcb_poll_for_queued_event(m_connection))
            dispatchBurst(first);
    } while (takeReply());
}

bool XcbConnection::takeReply() {
    if (m_awaitedReplies.empty()) return false;
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(m_connection, m_awaitedReplies.front().sequence, &reply, &error) == 0)
        return false;
    const XcbReply<xcb_generic_error_t> discarded(error);
    const auto take = std::move(m_awaitedReplies.front().take);
    m_awaitedReplies.pop_front();
    take(reply);
    flush();
    dispatchBurst(xcb_poll_for_event(m_connection));
    return true;
}

void XcbConnection::dispatchBurst(xcb_generic_event_t* first) {
    if (!first) return;
    m_isDispatching = true;
    XcbReply<xcb_generic_event_t> event(first);
    Published<const xcb_generic_event_t*>* told = nullptr;
    while (event) {
        auto& field = isForged(*event)      ? m_forgedEvent
                      : isOfPointer(*event) ? m_pointerEvent
                                            : m_event;
        // What the other one holds has gone.
        if (told && told != &field) told->set(nullptr);
        told = &field;
        const bool isError = event->response_type == 0;
        if (!isError) field.set(event.get());
        event.reset(xcb_poll_for_queued_event(m_connection));
    }
    told->set(nullptr);
    m_burstEnd.notify();
    m_isDispatching = false;
}

xcb_get_property_cookie_t XcbConnection::requestProperty(xcb_window_t window,
                                                         xcb_atom_t property) const {
    constexpr uint32_t longestRead = 1 << 16;
    return xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                            longestRead);
}

std::vector<uint32_t> XcbConnection::property32(xcb_window_t window, xcb_atom_t property) const {
    return takeProperty32(requestProperty(window, property));
}

std::vector<uint32_t> XcbConnection::takeProperty32(xcb_get_property_cookie_t request) const {
    const auto reply = xcbReply(xcb_get_property_reply, m_connection, request);
    if (!reply || reply->format != 32) return {};
    const auto* const items = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return {items, items + reply->value_len};
}

QByteArray XcbConnection::property8(xcb_window_t window, xcb_atom_t property) const {
    return takeProperty8(requestProperty(window, property));
}

QByteArray XcbConnection::takeProperty8(xcb_get_property_cookie_t request) const {
    const auto reply = xcbReply(xcb_get_property_reply, m_connection, request);
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

xcb_atom_t XcbConnection::atom(const QByteArray& name) const {
    constexpr uint8_t onlyIfExists = 1;
    const auto reply =
        xcbReply(xcb_intern_atom_reply, m_connection,
                 xcb_intern_atom(m_connection, onlyIfExists, static_cast<uint16_t>(name.size()),
                                 name.constData()));
    return reply ? reply->atom : xcb_atom_t{XCB_NONE};
}

std::vector<xcb_window_t> XcbConnection::children(xcb_window_t window) const {
    const auto tree =
        xcbReply(xcb_query_tree_reply, m_connection, xcb_query_tree(m_connection, window));
    if (!tree) return {};
    const xcb_window_t* const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

bool XcbConnection::hasExtension(xcb_extension_t& extension) const {
    const auto* const data = xcb_get_extension_data(m_connection, &extension);
    return data && data->present;
}
