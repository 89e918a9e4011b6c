#pragma once

#include "Platform/X11/XcbConnection.h"
#include "Reactive/Published.h"

/// Who holds a selection of the display, such as the one that stands for its tray.
class SelectionOwner {
public:
    /// `connection` must outlive the object. Where the server does not tell of changes, the owner
    /// of now is taken to stay.
    SelectionOwner(XcbConnection& connection, xcb_atom_t selection);

    /// The window that holds it, XCB_NONE while none does.
    const Published<xcb_window_t>& owner() const { return m_owner; }

private:
    xcb_window_t readOwner() const;
    void watch();
    void handleEvent(const xcb_generic_event_t& event);

    XcbConnection& m_connection;
    xcb_atom_t m_selection;
    Published<xcb_window_t> m_owner{XCB_NONE};
    uint8_t m_selectionEvent = 0;
    bool m_isStale = false;
    SubscriptionBag m_subscriptions;
};
