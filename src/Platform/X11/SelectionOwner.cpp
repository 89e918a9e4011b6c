#include "Platform/X11/SelectionOwner.h"

#include <utility>
#include <xcb/xfixes.h>

SelectionOwner::SelectionOwner(XcbConnection& connection, xcb_atom_t selection)
    : m_connection(connection), m_selection(selection) {
    watch();
    m_owner.set(readOwner());
}

void SelectionOwner::watch() {
    if (!m_connection.hasExtension(xcb_xfixes_id)) return;
    xcbReply(xcb_xfixes_query_version_reply, m_connection.get(),
             xcb_xfixes_query_version(m_connection, 5, 0));
    m_selectionEvent =
        static_cast<uint8_t>(xcb_get_extension_data(m_connection, &xcb_xfixes_id)->first_event +
                             XCB_XFIXES_SELECTION_NOTIFY);
    xcb_xfixes_select_selection_input(m_connection, m_connection.root(), m_selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] {
        if (!std::exchange(m_isStale, false)) return;
        const xcb_window_t owner = readOwner();
        if (owner != m_owner.value()) m_owner.set(owner);
    }));
}

void SelectionOwner::handleEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != m_selectionEvent) return;
    const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    m_isStale |= change.selection == m_selection;
}

xcb_window_t SelectionOwner::readOwner() const {
    const auto reply = xcbReply(xcb_get_selection_owner_reply, m_connection.get(),
                                xcb_get_selection_owner(m_connection, m_selection));
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
}
