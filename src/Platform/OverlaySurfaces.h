#pragma once

#include "Models/Geometry.h"

#include <QList>
#include <QPainterPath>
#include <QRect>
#include <QString>
#include <QUuid>
#include <memory>
#include <optional>

class QPainter;

enum class CursorShape { arrow, openHand, resizeUpDown, resizeLeftRight, crosshair };

/// What a surface shows. A value that never changes: to show something else, give the surface
/// another one.
class SurfaceContent {
public:
    virtual ~SurfaceContent() = default;

    /// Paints onto a transparent ground of `size` points. The painter's origin is the top-left
    /// corner, y downward, one unit a point; the device pixels behind it depend on the screen.
    virtual void paint(QPainter& painter, Size size) const = 0;

    /// Whether `other` paints the same, at every size. Better safe: false where that is not known.
    virtual bool looksLike(const SurfaceContent& /*other*/) const { return false; }

    /// The only device pixels that are painted, counted from the top-left corner, where a point is
    /// `scale` pixels. The surface is absent elsewhere, even on a screen that cannot show
    /// transparency. Nothing means the whole surface.
    virtual std::optional<QList<QRect>> paintedPixels(Size /*size*/, double /*scale*/) const {
        return std::nullopt;
    }

    /// How strongly what lies below is blurred, as a standard deviation in points; 0 leaves it
    /// sharp. A content that names its painted pixels blurs nothing.
    virtual double backdropBlur() const { return 0; }
    /// Where it is blurred, in the pixels of `paintedPixels`. What is painted comes to lie upon it.
    /// Nothing below is ever sharp there: where a blurred picture cannot be had, there is black.
    virtual QPainterPath blurredShape(Size /*size*/, double /*scale*/) const { return {}; }
};

/// What assistive technology is told of a surface.
struct AccessibleDescription {
    QString label;
    QString identifier;
    bool isSelected = false;

    bool operator==(const AccessibleDescription&) const = default;
};

/// Receives what happens to a surface. Positions in the surface count in points from its
/// bottom-left corner, y upward; global positions are in the global desktop space.
class SurfaceDelegate {
public:
    virtual ~SurfaceDelegate() = default;

    /// The frame changed, by `setFrame` or from outside; called inside `setFrame`, or some time
    /// after `setFinalFrame`.
    virtual void surfaceDidMove() = 0;
    virtual void surfaceDidResize() = 0;

    /// The left button went down in the surface. `mouseDragged` and one `mouseUp` follow; nothing
    /// else is delivered until then.
    virtual void mouseDown(Point inSurface, Point global) = 0;
    /// The pointer moved with the left button down. Movements that came in one burst are told as
    /// the last of them.
    virtual void mouseDragged(Point global) = 0;
    /// The left button came up, or no further event can be had: the surface was hidden, or the
    /// server took the pointer away.
    virtual void mouseUp() = 0;
    /// The pointer moved over the surface with no button down.
    virtual void mouseMoved(Point inSurface) = 0;
    virtual void mouseExited() = 0;
};

/// A borderless, transparent window above all others, on every workspace. It never activates and
/// never takes the keyboard. Destroying it takes it off the screen, together with the other changes
/// of the same batch: what is shown in its place comes first.
class OverlaySurface {
public:
    virtual ~OverlaySurface() = default;

    /// The frame as the delegate knows it: as last set. When screens change, the surface stays on
    /// its screen, and the frame is where that is in the new global space.
    virtual Rect frame() const = 0;
    /// Moves and resizes the surface and tells the delegate what changed, before it returns.
    virtual void setFrame(const Rect& frame) = 0;
    /// The same for a frame that will not be changed again in answer to it. The surface may be seen
    /// there before the batch ends and before the delegate is told, which may take some
    /// milliseconds; of frames that follow each other faster only the last is told, but always
    /// before the surface's gesture ends. `frame` changes when the delegate is told.
    virtual void setFinalFrame(const Rect& frame) { setFrame(frame); }
    /// Tells the delegate now what it is still to be told of final frames.
    virtual void catchUp() {}
    /// Shows `content` from now on.
    virtual void setContent(std::shared_ptr<const SurfaceContent> content) = 0;
    virtual void setAccessibleDescription(const AccessibleDescription& description) = 0;
    /// When true, the mouse reaches what lies below. A gesture that is running goes on.
    virtual void setIgnoresMouseEvents(bool ignores) = 0;
    virtual void setCursor(CursorShape shape) = 0;
    /// Shows the surface above all other surfaces, without activating the application.
    virtual void orderFront() = 0;
    /// Hides the surface and keeps it.
    virtual void orderOut() = 0;
};

struct SurfaceDescription {
    /// The title that desktop tools show for the window.
    QString title;
    /// The mask that the surface shows, absent for a guide surface.
    std::optional<QUuid> maskID;
    Rect frame;
};

/// Makes overlay surfaces. Must outlive them.
class OverlaySurfaces {
public:
    virtual ~OverlaySurfaces() = default;

    /// Makes a hidden surface. `delegate` may be null and must outlive the surface.
    virtual std::unique_ptr<OverlaySurface> createSurface(const SurfaceDescription& description,
                                                          SurfaceDelegate* delegate) = 0;

    /// Between these two calls, which may nest, what is asked of surfaces is collected; the end of
    /// the outermost pair carries out what really changes, at once. Use SurfaceBatch.
    virtual void beginBatch() = 0;
    virtual void endBatch() = 0;
};

/// Collects the changes made during its life into one visible step.
class [[nodiscard]] SurfaceBatch {
public:
    explicit SurfaceBatch(OverlaySurfaces& surfaces) : m_surfaces(surfaces) {
        m_surfaces.beginBatch();
    }
    SurfaceBatch(const SurfaceBatch&) = delete;
    SurfaceBatch& operator=(const SurfaceBatch&) = delete;
    ~SurfaceBatch() { m_surfaces.endBatch(); }

private:
    OverlaySurfaces& m_surfaces;
};
