#include "Platform/X11/ManagerWatch.h"

#include <utility>
#include <xcb/xfixes.h>

ManagerWatch::ManagerWatch(XcbConnection& connection, SystemLog& log) : m_connection(connection) {
    m_connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    watchSelections(log);
    readManagerName();
    m_isCompositing = readIsCompositing();
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] { finishBurst(); }));
}

void ManagerWatch::watchSelections(SystemLog& log) {
    if (!m_connection.hasExtension(xcb_xfixes_id)) {
        log.write(QStringLiteral(
            "Veyla cannot see window managers come and go: the X server lacks XFIXES"));
        return;
    }
    const auto version = xcbReply(xcb_xfixes_query_version_reply, m_connection.get(),
                                  xcb_xfixes_query_version(m_connection, 5, 0));
    m_selectionEvent =
        static_cast<uint8_t>(xcb_get_extension_data(m_connection, &xcb_xfixes_id)->first_event +
                             XCB_XFIXES_SELECTION_NOTIFY);
    const X11Atoms& atoms = m_connection.atoms();
    for (const xcb_atom_t selection : {atoms.wmSelection, atoms.compositorSelection})
        xcb_xfixes_select_selection_input(
            m_connection, m_connection.root(), selection,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

void ManagerWatch::readManagerName() {
    const X11Atoms& atoms = m_connection.atoms();
    const auto check = m_connection.property32(m_connection.root(), atoms.netSupportingWmCheck);
    const QByteArray name =
        check.empty() ? QByteArray() : m_connection.property8(check.front(), atoms.netWmName);
    m_isOrderedByMapping = name.contains("Mutter") || name.contains("GNOME Shell");
}

bool ManagerWatch::readIsCompositing() const {
    const auto reply =
        xcbReply(xcb_get_selection_owner_reply, m_connection.get(),
                 xcb_get_selection_owner(m_connection, m_connection.atoms().compositorSelection));
    return reply && reply->owner != XCB_NONE;
}

void ManagerWatch::handleEvent(const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    if (m_selectionEvent != 0 && type == m_selectionEvent) {
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        const X11Atoms& atoms = m_connection.atoms();
        // Others on this connection watch other selections.
        if (change.selection != atoms.wmSelection && change.selection != atoms.compositorSelection)
            return;
        m_hasChange = true;
        m_hasNewOwner |= change.owner != XCB_NONE;
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.window == m_connection.root() &&
            property.atom == m_connection.atoms().netSupportingWmCheck)
            readManagerName();
    }
}

void ManagerWatch::finishBurst() {
    if (!std::exchange(m_hasChange, false)) return;
    const bool wasCompositing = std::exchange(m_isCompositing, readIsCompositing());
    const bool hasNewOwner = std::exchange(m_hasNewOwner, false);
    if ((hasNewOwner || wasCompositing != m_isCompositing) && onReplaced) onReplaced();
}
