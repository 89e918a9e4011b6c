#pragma once

#include "Platform/X11/XcbConnection.h"
#include "Reactive/Subscription.h"

#include <QColor>
#include <QImage>
#include <QRect>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>
#include <xcb/damage.h>
#include <xcb/render.h>

/// Pictures of what lies below a window. While it is active the server keeps every top-level window
/// of others in a pixmap of its own, and tells when one changes. A plain colour that somebody draws
/// on the root is seen with the next other change. All rectangles are in pixels of the root.
class BackdropSource {
public:
    /// `connection` must outlive the source.
    explicit BackdropSource(XcbConnection& connection);
    ~BackdropSource();
    BackdropSource(const BackdropSource&) = delete;
    BackdropSource& operator=(const BackdropSource&) = delete;

    /// Called for each rectangle of the screen whose picture may have changed. Changes of windows
    /// of this connection are not told.
    std::function<void(const QRect& rect)> onChanged;
    /// Asked for the picture that a window of this connection shows; XCB_NONE when it has none.
    std::function<xcb_pixmap_t(xcb_window_t window)> pictureOf;

    /// Whether the server has the extensions that this takes.
    bool isAvailable() const { return m_isAvailable; }
    void setActive(bool isActive);
    /// Whether windows are seen through their alpha, as a compositor shows them, and not opaque, as
    /// the server does without one.
    void setBlending(bool isBlending) { m_isBlending = isBlending; }
    bool isActive() const { return m_isActive; }
    /// Lets the server draw a window of this connection straight to the screen, which is faster.
    /// To be called for each while the source is active, best before the window is mapped.
    void leaveOut(xcb_window_t ownWindow);

    /// The top-level windows that can be seen, bottom to top, as of now.
    struct Layer {
        xcb_window_t window = XCB_NONE;
        xcb_visualid_t visual = XCB_NONE;
        /// With the border.
        QRect rect;
        int border = 0;
    };
    std::vector<Layer> readLayers();

    /// The picture of `rect` made of the layers that lie below `window`; nothing when it cannot be
    /// had, or when the window is not among the layers.
    std::optional<QImage> capture(const QRect& rect, xcb_window_t window,
                                  const std::vector<Layer>& layers);

private:
    void handleEvent(const xcb_generic_event_t& event);
    void handleTopLevelEvent(const xcb_generic_event_t& event);
    void watch(const Layer& layer);
    void drawRoot(xcb_render_picture_t target, const QRect& rect, const std::vector<Layer>& layers);
    void learnRootColor(const std::vector<Layer>& layers);
    void drawLayer(xcb_render_picture_t target, const QRect& rect, const Layer& layer);
    xcb_render_pictformat_t formatOf(xcb_visualid_t visual) const;
    void tell(const QRect& rect) const;

    XcbConnection& m_connection;
    bool m_isAvailable = false;
    bool m_isActive = false;
    bool m_isBlending = false;
    uint8_t m_damageEvent = 0;
    std::unordered_map<xcb_visualid_t, xcb_render_pictformat_t> m_formats;
    // What the root shows where it has no wallpaper, as far as it could be seen.
    QColor m_rootColor = Qt::black;
    struct Watched {
        xcb_damage_damage_t damage = XCB_NONE;
        QRect rect;
        bool isDamaged = false;
    };
    std::unordered_map<xcb_window_t, Watched> m_watched;
    Subscription m_events;
};
