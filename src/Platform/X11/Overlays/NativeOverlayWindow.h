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
    const OverlayVisual& visual() const { return m_visual; }
    /// Where the window is, or will be with the next `present`.
    const QRect& rect() const { return m_rect; }
    bool isMapped() const { return m_isMapped; }
    /// The newest picture that the window was given; XCB_NONE before the first.
    xcb_pixmap_t picture() const { return m_picture; }

    struct Part {
        QPoint position;
        QImage image;
    };
    /// These take effect with the next `present`.
    void setRect(const QRect& rect);
    /// Gives the window a new picture of the given size, painted part by part: each image lies at
    /// the position beside it. A window of another size must be given that size as well.
    void setPicture(QSize size, const QList<Part>& parts);
    /// The same with a pixmap of the window's depth, which the window owns from now on.
    void setPicture(xcb_pixmap_t pixmap);
    /// Shows the picture and the place that were set. What takes time has been done before.
    void present();
    /// Shows what has been drawn on the picture there.
    void showPictureAgain(const QRegion& region);

    /// Makes the window stand for another mask.
    void setMaskID(const std::optional<QUuid>& maskID);
    /// Takes the window away outside these rectangles; no list restores it whole.
    void setBoundingAreas(const std::optional<QList<QRect>>& areas);
    /// Lets the mouse through to what lies below.
    void setInputPassThrough(bool isPassThrough);
    void setCursor(xcb_cursor_t cursor);
    void map();
    void unmap();
    /// Puts the window on top of all others.
    void raise();
    /// Puts the window right below another child of the root.
    void stackBelow(xcb_window_t sibling);

    // What other programs do to the window.
    /// Whether the server had carried out our last request to map or unmap the window when it made
    /// the event. If so, a state in it that is not ours was made by another program.
    bool knowsMapping(const xcb_generic_event_t& event) const;
    /// The same for the window's place.
    bool knowsPlace(const xcb_generic_event_t& event) const;
    void noteForeignMapping(bool isMapped) { m_isMapped = isMapped; }
    /// Puts the window back to its place.
    void restoreRect() { m_isPlaced = false; }
    /// Gives the window its own shapes again.
    void restoreShapes();
    bool hasBoundingAreas() const { return m_boundingAreas.has_value(); }
    bool isInputPassThrough() const { return m_isPassThrough; }

private:
    void setProperties(const QString& title, const std::optional<QUuid>& maskID);
    void applyInputShape();

    XcbConnection& m_connection;
    const OverlayVisual& m_visual;
    xcb_window_t m_id;
    QRect m_rect;
    // The size that the server knows.
    QSize m_presentedSize;
    bool m_isPlaced = true;
    bool m_isMapped = false;
    bool m_isPassThrough = false;
    std::optional<QList<QRect>> m_boundingAreas;
    xcb_pixmap_t m_picture = XCB_NONE;
    // What is on screen while there is a newer picture.
    std::optional<xcb_pixmap_t> m_formerPicture;
    uint32_t m_mapSequence = 0;
    uint32_t m_placeSequence = 0;
};
