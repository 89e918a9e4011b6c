#pragma once

#include "Platform/SystemLog.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <chrono>
#include <deque>
#include <functional>
#include <unordered_map>
#include <vector>

/// Sees to it that no window of another program lies above a mask. It looks when the server tells
/// that some top-level window was mapped, moved or restacked, never at intervals. Against another
/// program that insists as well it keeps on, but at a bearable rate, and says so in the log once.
class StackingGuard {
public:
    /// What the guard guards.
    class Client {
    public:
        virtual ~Client() = default;
        /// The shown overlay windows in their wanted order, bottom to top.
        virtual std::vector<xcb_window_t> shownWindows() const = 0;
        /// Whether a window belongs to this program and may stay where it is.
        virtual bool isOwnWindow(xcb_window_t window) const = 0;
        /// Raises all shown windows, in their order.
        virtual void raiseShownWindows() = 0;
    };

    /// All references must outlive the guard.
    StackingGuard(XcbConnection& connection, Scheduler& scheduler, SystemLog& log, Client& client);

    /// Looks at the order of windows now and mends it.
    void audit();
    /// Whether a mask that moves may come to lie below something. The guard must then hear of it
    /// from the server.
    bool needsToHearOfMoves() const { return m_isSomethingAbove; }

private:
    using Clock = std::chrono::steady_clock;

    void handleEvent(const xcb_generic_event_t& event);
    bool canChangeOrder(const xcb_configure_notify_event_t& event);
    bool isCovered(const std::vector<xcb_window_t>& shown) const;
    std::vector<xcb_window_t> topLevelWindows() const;
    void raise();
    bool isContested();

    XcbConnection& m_connection;
    Scheduler& m_scheduler;
    SystemLog& m_log;
    Client& m_client;
    bool m_needsAudit = false;
    bool m_hasLoggedContest = false;
    std::deque<Clock::time_point> m_recentRaises;
    // What each of our windows was last told to lie right above.
    std::unordered_map<xcb_window_t, xcb_window_t> m_siblings;
    mutable xcb_window_t m_lastIntruder = XCB_NONE;
    // Whether the last audit found any foreign window higher than the lowest mask, even one that
    // covers none.
    mutable bool m_isSomethingAbove = true;
    Subscription m_delayedAudit;
    SubscriptionBag m_subscriptions;
};
