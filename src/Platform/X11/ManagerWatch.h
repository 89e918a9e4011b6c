#pragma once

#include "Platform/SystemLog.h"
#include "Platform/X11/SelectionOwner.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Subscription.h"

#include <functional>
#include <optional>

/// How a window manager that composes the screen orders override-redirect windows.
enum class PaintOrder {
    /// As they are stacked on the server.
    stacked,
    /// As they were mapped, the last on top, whatever their stacking.
    mapped,
    /// As they are stacked, but one that is mapped lies on top of all until the server tells of a
    /// change of the stacking. Raising what is on top already changes nothing.
    stackedUntilMapped
};

/// Watches the window manager and the compositor of the display come and go.
class ManagerWatch {
public:
    /// `connection` must outlive the watch; a missing extension is told in the log.
    ManagerWatch(XcbConnection& connection, SystemLog& log);

    /// Called after the burst of events in which the compositor came, went or was replaced. Windows
    /// that were mapped before may be painted below others by a new one, whatever their order.
    std::function<void()> onCompositorReplaced;

    /// Whether a compositor shows what lies below transparent pixels.
    bool isCompositing() const { return m_compositor.owner().newest() != XCB_NONE; }
    PaintOrder paintOrder() const { return m_paintOrder.value_or(PaintOrder::stacked); }
    /// Asks the server again as long as the manager has not told what it is.
    void learnPaintOrder() {
        if (!m_paintOrder) m_paintOrder = readPaintOrder();
    }

private:
    std::optional<PaintOrder> readPaintOrder() const;
    QByteArray managerName() const;
    bool hasGuardWindowOfMutter() const;

    XcbConnection& m_connection;
    SelectionOwner m_manager;
    SelectionOwner m_compositor;
    // Nothing while it is not known.
    std::optional<PaintOrder> m_paintOrder;
    SubscriptionBag m_subscriptions;
};
