#pragma once

#include "Platform/SystemLog.h"
#include "Platform/X11/ManagerWatch.h"
#include "Platform/X11/Overlays/Contests.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <QRect>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// Sees to it that no window of another program lies above a mask, the window of a screen locker
/// excepted. It looks when the server tells that some top-level window was mapped, moved or
/// restacked, never at intervals. Against another program that insists as well it keeps on, but at
/// a bearable rate, and says so in the log once.
class StackingGuard {
public:
    /// A window of another program that can be seen.
    struct Neighbour {
        xcb_window_t window = XCB_NONE;
        /// With the border, in pixels of the root.
        QRect rect;
        /// Hides all that lies below it.
        bool isOpaque = false;
        bool isOverrideRedirect = false;
    };

    /// What the guard guards.
    class Client {
    public:
        virtual ~Client() = default;
        /// The shown overlay windows in their wanted order, bottom to top.
        virtual std::vector<xcb_window_t> shownWindows() const = 0;
        /// Whether a window belongs to this program and may stay where it is.
        virtual bool isOwnWindow(xcb_window_t window) const = 0;
        /// Whether a window that lies above the masks is there to hide everything.
        virtual bool isScreenLocker(const Neighbour& neighbour) const = 0;
        /// Raises all shown windows, in their order: above all others or, if it is given, right
        /// below `ceiling`.
        virtual void raiseShownWindows(std::optional<xcb_window_t> ceiling) = 0;
    };

    /// All references must outlive the guard.
    StackingGuard(XcbConnection& connection, Scheduler& scheduler, SystemLog& log,
                  ManagerWatch& managers, Client& client);

    /// Looks at the order of windows now and mends it.
    void audit();
    /// Whether a mask that moves may come to lie below something. The guard must then hear of it
    /// from the server.
    bool needsToHearOfMoves() const { return m_isSomethingAbove || !m_newlyMapped.empty(); }

    /// The lowest window that may stay above the masks, as far as is known.
    std::optional<xcb_window_t> ceiling() const { return m_ceiling; }

private:
    void handleEvent(const xcb_generic_event_t& event);
    void forgetUnmapped(xcb_window_t window);
    bool canChangeOrder(const xcb_configure_notify_event_t& event);
    /// The windows that cover masks, and XCB_NONE where the masks themselves are in another order
    /// than they should be.
    std::vector<xcb_window_t> findIntruders();
    std::vector<xcb_window_t> windowsToLookAt(const std::vector<xcb_window_t>& windows,
                                              const std::vector<xcb_window_t>& masks);
    void raiseAgainst(const std::vector<xcb_window_t>& intruders);
    void logContest(xcb_window_t intruder);

    XcbConnection& m_connection;
    Scheduler& m_scheduler;
    SystemLog& m_log;
    ManagerWatch& m_managers;
    Client& m_client;
    Contests m_contests;
    bool m_needsAudit = false;
    // What each of our windows was last told to lie right above.
    std::unordered_map<xcb_window_t, xcb_window_t> m_siblings;
    // Those of others that were mapped since the masks were last raised. Some managers paint them
    // on top, wherever they are stacked.
    std::unordered_set<xcb_window_t> m_newlyMapped;
    std::optional<xcb_window_t> m_ceiling;
    // Whether the last audit found any foreign window higher than the lowest mask, even one that
    // covers none.
    bool m_isSomethingAbove = true;
    Subscription m_delayedAudit;
    SubscriptionBag m_subscriptions;
};
