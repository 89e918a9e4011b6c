#pragma once

#include "Models/MaskFrame.h"
#include "Platform/OverlaySurfaces.h"
#include "Platform/Screens.h"
#include "Services/GuideLine.h"
#include "Services/GuideOverlayWindow.h"
#include "Services/OverlayMaskView.h"

#include <QList>
#include <QUuid>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

class OverlayWindow;

/// Is told of every frame change of an overlay window, whoever made it.
class OverlayWindowDelegate {
public:
    virtual ~OverlayWindowDelegate() = default;
    virtual void windowDidMove(OverlayWindow& window) = 0;
    virtual void windowDidResize(OverlayWindow& window) = 0;
};

/// The part of an overlay window that the pointer is over; no region means a move.
enum class ResizeRegion { top, bottom, left, right, topLeft, topRight, bottomLeft, bottomRight };

/// A proposed frame after snapping, and the guides that tell what it snapped to: at most one
/// vertical, then at most one horizontal, in the global desktop space.
struct SnappedFrame {
    Rect frame;
    QList<GuideLine> guides;
};

/// The window that shows one mask and lets the user move and resize it with the mouse. It reports
/// nothing about frames itself: every change reaches the delegate through the surface.
class OverlayWindow final : private SurfaceDelegate {
public:
    /// Widths in points of the corner zones and of the edge bands that start a resize.
    static constexpr double resizeHandleSize = 30;
    static constexpr double resizeEdgeInset = 10;
    /// The greatest distance, in points, at which a moved frame snaps.
    static constexpr double snapThreshold = 8;

    /// Makes a hidden window. All references must outlive it.
    OverlayWindow(const QUuid& maskID, const MaskFrame& frame, OverlaySurfaces& surfaces,
                  const Screens& screens, OverlayWindowDelegate& delegate);

    const QUuid& maskID() const { return m_maskID; }

    /// Called at every press in the window, before anything else.
    std::function<void()> onMaskSelected;

    Rect frame() const;
    void setFrame(const Rect& frame);
    const std::optional<OverlayMaskView>& contentView() const { return m_contentView; }
    void setContentView(const OverlayMaskView& view);
    void setIgnoresMouseEvents(bool ignores);
    void orderFront();
    void orderOut();
    bool isVisible() const { return m_isVisible; }

    /// Which edges a press at that position moves. The position is in the window, in points from
    /// its bottom-left corner, y upward.
    std::optional<ResizeRegion> resizeRegion(Point inWindow) const;
    /// Snaps a proposed frame to the edges and centre lines of its screen's visible frame.
    SnappedFrame snappedFrame(const Rect& proposed) const;
    /// The visible frame of the screen that a frame belongs to; the frame itself when there is no
    /// screen.
    Rect screenVisibleFrame(const Rect& frame) const;

    /// Tells the delegate what it is still to be told.
    void catchUp() { m_surface->catchUp(); }
    /// Lets a running move or resize go on from where window and pointer are now, after the
    /// screens changed under it.
    void restartGesture();

private:
    struct Move {
        Rect startFrame;
        Point startPointer;
        std::unique_ptr<GuideOverlayWindow> guideWindow;
    };
    struct Resize {
        Rect startFrame;
        Point startPointer;
        ResizeRegion region;
    };

    static SnappedFrame snappedFrame(const Rect& proposed, const QList<Rect>& screens);

    void surfaceDidMove() override;
    void surfaceDidResize() override;
    void mouseDown(Point inSurface, Point global) override;
    void mouseDragged(Point global) override;
    void mouseUp() override;
    void mouseMoved(Point inSurface) override;
    void mouseExited() override;

    void performMove(Move& move, Point pointer);
    void performResize(const Resize& resize, Point pointer);
    void updateCursor(Point inWindow);

    QUuid m_maskID;
    OverlaySurfaces& m_surfaces;
    const Screens& m_screens;
    OverlayWindowDelegate& m_delegate;
    std::optional<OverlayMaskView> m_contentView;
    std::variant<std::monostate, Move, Resize> m_gesture;
    bool m_isVisible = false;
    std::unique_ptr<OverlaySurface> m_surface;
};
