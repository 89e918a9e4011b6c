#pragma once

#include "Platform/X11/XcbConnection.h"

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QRect>
#include <QRegion>
#include <QString>
#include <QUuid>
#include <optional>

/// How overlay windows store their pixels.
class OverlayVisual {
public:
    enum class Alpha {
        /// With an alpha channel where the server has it, for a compositor to look at.
        wanted,
        /// As the root does, where that can be had: the server then shows a window with less work.
        useless
    };
    OverlayVisual(XcbConnection& connection, Alpha alpha);
    ~OverlayVisual();
    OverlayVisual(const OverlayVisual&) = delete;
    OverlayVisual& operator=(const OverlayVisual&) = delete;

    uint8_t depth() const { return m_depth; }
    xcb_visualid_t visual() const { return m_visual; }
    xcb_colormap_t colormap() const { return m_colormap; }
    /// A graphics context for pixmaps of this depth.
    xcb_gcontext_t graphicsContext() const { return m_graphicsContext; }
    bool hasAlpha() const { return m_depth == 32; }

private:
    XcbConnection& m_connection;
    uint8_t m_depth;
    xcb_visualid_t m_visual;
    xcb_colormap_t m_colormap = XCB_NONE;
    xcb_gcontext_t m_graphicsContext = XCB_NONE;
};

/// One override-redirect window of the X server, which keeps its picture itself as background and
/// repaints it without the help of this program. Geometry in pixels of the root. Destroying the
/// object destroys the window.
class NativeOverlayWindow {
public:
    /// Makes an unmapped window. `connection` and `visual` must outlive it.
    NativeOverlayWindow(XcbConnection& connection, const OverlayVisual& visual, const QRect& rect,
                        const QString& title, const std::optional<QUuid>& maskID);
    ~NativeOverlayWindow();
    NativeOverlayWindow(const NativeOverlayWindow&) = delete;
    NativeOverlayWindow& operator=(const NativeOverlayWindow&) = delete;

    xcb_window_t id() const { return m_id; }
    const QRect& rect() const { return m_rect; }
    bool isMapped() const { return m_isMapped; }
    /// The picture that the window shows; XCB_NONE before the first.
    xcb_pixmap_t picture() const { return m_picture; }
    const OverlayVisual& visual() const { return m_visual; }

    void setRect(const QRect& rect);
    /// Gives the window a new picture of the given size, painted part by part: each image lies at
    /// the position beside it. A window of another size must be resized right after.
    struct Part {
        QPoint position;
        QImage image;
    };
    void setPicture(QSize size, const QList<Part>& parts);
    /// The same with a pixmap of the window's depth, which the window owns from now on.
    void setPicture(QSize size, xcb_pixmap_t pixmap);
    /// Shows what has been drawn on the picture there.
    void showPictureAgain(const QRegion& region);
    /// Takes the window away outside these rectangles; no list restores it whole.
    void setBoundingAreas(const std::optional<QList<QRect>>& areas);
    /// Lets the mouse through to what lies below.
    void setInputPassThrough(bool isPassThrough);
    void setCursor(xcb_cursor_t cursor);
    void map();
    void unmap();
    void raise();

    /// Whether the server had carried out our last request for this window when it made the event.
    /// If so, a state in it that is not ours was made by another program.
    bool isUpToDate(const xcb_generic_event_t& event) const;
    /// Takes note of what another program did to the window.
    void noteForeignRect(const QRect& rect) { m_rect = rect; }
    void noteForeignUnmap() { m_isMapped = false; }
    void noteForeignDestruction() { m_id = XCB_NONE; }

private:
    void setProperties(const QString& title, const std::optional<QUuid>& maskID);

    XcbConnection& m_connection;
    const OverlayVisual& m_visual;
    xcb_window_t m_id;
    QRect m_rect;
    bool m_isMapped = false;
    xcb_pixmap_t m_picture = XCB_NONE;
    uint32_t m_lastSequence = 0;
};
