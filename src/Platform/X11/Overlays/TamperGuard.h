#pragma once

#include "Platform/SystemLog.h"
#include "Platform/X11/Overlays/Contests.h"
#include "Platform/X11/Overlays/NativeOverlayWindow.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <unordered_set>

/// Undoes what other programs do to the overlay windows themselves: one that was shown, hidden,
/// destroyed, put into another window, moved, resized, given a border, cut or made transparent is
/// as it was at the end of the
/// burst of events that told of it. Against a program that insists it keeps on at a bearable rate,
/// and says so in the log once.
class TamperGuard {
public:
    /// Whose windows they are.
    class Client {
    public:
        virtual ~Client() = default;
        /// Null for a window that is none of the guarded ones.
        virtual NativeOverlayWindow* guardedWindow(xcb_window_t window) = 0;
        /// The window has no hold on the pointer any more, and is not mapped.
        virtual void windowWasHidden(xcb_window_t window) = 0;
        /// Whether a compositor paints the windows by what it hears of them.
        virtual bool isCompositing() const = 0;
        /// Puts a new window in the place of one that is lost.
        virtual void replaceLostWindow(xcb_window_t window) = 0;
        /// Shows again what was hidden, replaced or put back.
        virtual void showMendedWindows() = 0;
    };

    /// All references must outlive the guard.
    TamperGuard(XcbConnection& connection, Scheduler& scheduler, SystemLog& log, Client& client);

private:
    void handleEvent(const xcb_generic_event_t& event);
    void noteForgery(const xcb_generic_event_t& event);
    void noteConfigure(const xcb_configure_notify_event_t& event);
    void noteReshape(const xcb_generic_event_t& event);
    void noteProperty(const xcb_property_notify_event_t& event);
    bool isAnythingToMend() const;
    void mendWhenDue();
    void mend();

    XcbConnection& m_connection;
    Scheduler& m_scheduler;
    SystemLog& m_log;
    Client& m_client;
    uint8_t m_shapeEvent;
    Contests m_contests;
    // What is to be mended.
    bool m_areSomeShownOrHidden = false;
    std::unordered_set<xcb_window_t> m_lost;
    std::unordered_set<xcb_window_t> m_displaced;
    std::unordered_set<xcb_window_t> m_reshaped;
    std::unordered_set<xcb_window_t> m_faded;
    Subscription m_delayedMending;
    SubscriptionBag m_subscriptions;
};
