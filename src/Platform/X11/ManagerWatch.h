#pragma once

#include "Platform/SystemLog.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Subscription.h"

#include <functional>

/// Watches the window manager and the compositor of the display come and go.
class ManagerWatch {
public:
    /// `connection` must outlive the watch; a missing extension is told in the log.
    ManagerWatch(XcbConnection& connection, SystemLog& log);

    /// Called after the burst of events in which a window manager or compositor took over, or
    /// `isCompositing` changed. Windows that were mapped before may be painted below others by a
    /// new one, whatever their order.
    std::function<void()> onReplaced;

    /// Whether a compositor shows what lies below transparent pixels.
    bool isCompositing() const { return m_isCompositing; }
    /// Whether the window manager paints override-redirect windows in the order in which they were
    /// mapped, whatever their stacking order.
    bool isOrderedByMapping() const { return m_isOrderedByMapping; }

private:
    void handleEvent(const xcb_generic_event_t& event);
    void finishBurst();
    void watchSelections(SystemLog& log);
    void readManagerName();
    bool readIsCompositing() const;

    XcbConnection& m_connection;
    uint8_t m_selectionEvent = 0;
    bool m_isCompositing = false;
    bool m_isOrderedByMapping = false;
    bool m_hasNewOwner = false;
    bool m_hasChange = false;
    SubscriptionBag m_subscriptions;
};
