#pragma once

#include "Models/AppearanceWishes.h"
#include "Platform/X11/SelectionOwner.h"

#include <QByteArray>

/// The settings that a desktop tells its programs through the X server, in the format of the
/// freedesktop.org XSETTINGS specification 0.5.
class XSettings {
public:
    /// `connection` must outlive the object.
    explicit XSettings(XcbConnection& connection);

    /// What the settings ask for: nothing where no program manages them.
    const Published<AppearanceWishes>& wishes() const { return m_wishes; }

    /// What a document of settings asks for. What cannot be read of it asks for nothing.
    static AppearanceWishes wishesIn(const QByteArray& document);

private:
    void followManager(xcb_window_t manager);
    void read();
    void handleEvent(const xcb_generic_event_t& event);

    XcbConnection& m_connection;
    xcb_window_t m_manager = XCB_NONE;
    Published<AppearanceWishes> m_wishes;
    SelectionOwner m_owner;
    SubscriptionBag m_subscriptions;
};
