#pragma once

#include "Platform/X11/XcbConnection.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Subscription.h"

#include <QRect>
#include <QRegion>
#include <functional>
#include <optional>
#include <vector>

/// The children of the root in their order, kept in step by what the server tells, so that nobody
/// has to wait for an answer to know it. Windows of this connection are in it for their place only.
/// Rectangles are in pixels of the root.
class TopLevelWindows {
public:
    struct Entry {
        xcb_window_t window = XCB_NONE;
        /// With the border.
        QRect rect;
        int border = 0;
        bool isMapped = false;
        /// XCB_NONE while it is not known, and for a window that shows nothing.
        xcb_visualid_t visual = XCB_NONE;

        bool isVisible() const { return isMapped && visual != XCB_NONE; }

        /// Told by an event, which is at least as new as the answer to an earlier question.
        bool isPlaceTold = false;
        bool isMappingTold = false;
    };

    /// `connection` must outlive the object.
    explicit TopLevelWindows(XcbConnection& connection) : m_connection(connection) {}
    TopLevelWindows(const TopLevelWindows&) = delete;
    TopLevelWindows& operator=(const TopLevelWindows&) = delete;

    /// Where other windows are seen than before.
    std::function<void(const QRegion& region)> onChanged;
    /// A window keeps its pixels in another pixmap than before, or is visible for the first time.
    std::function<void(const Entry& entry)> onNewPixmap;
    /// A window is no child of the root any more.
    std::function<void(xcb_window_t window)> onGone;

    /// Begins to follow the windows; some time later they are known.
    void start();
    void stop();
    bool isKnown() const { return m_isKnown; }
    /// Bottom to top; empty before they are known.
    const std::vector<Entry>& bottomToTop() const { return m_entries; }
    const Entry* find(xcb_window_t window) const;

private:
    void askForTree();
    void takeTree(const xcb_query_tree_reply_t* tree);
    void askAbout(xcb_window_t window);
    void learn(xcb_window_t window, const xcb_get_window_attributes_reply_t* attributes,
               const xcb_get_geometry_reply_t* geometry);
    void handleEvent(const xcb_generic_event_t& event);
    void handleConfigure(const xcb_configure_notify_event_t& event);
    void add(xcb_window_t window, const QRect& rect, int border);
    void remove(xcb_window_t window);
    void setMapped(xcb_window_t window, bool isMapped);
    void tellChange(const QRegion& region) const;
    std::optional<std::size_t> indexOf(xcb_window_t window) const;
    /// Puts the window right above the sibling, or at the bottom of all for XCB_NONE. Whether it
    /// was elsewhere.
    bool placeAbove(std::size_t index, xcb_window_t sibling);

    XcbConnection& m_connection;
    std::vector<Entry> m_entries;
    bool m_isKnown = false;
    bool m_isTreeAwaited = false;
    bool m_isTreeOutdated = false;
    int m_awaitedAnswers = 0;
    Subscription m_events;
    /// For the answers to come, made anew at each start.
    std::optional<Lifetime> m_lifetime;
};
