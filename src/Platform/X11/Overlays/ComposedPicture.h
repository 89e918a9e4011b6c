#pragma once

#include "Platform/X11/Overlays/NativeOverlayWindow.h"
#include "Platform/X11/Overlays/RenderKit.h"
#include "Reactive/Lifetime.h"

#include <QImage>
#include <QPoint>
#include <QRegion>
#include <functional>
#include <memory>
#include <vector>

/// The picture of an overlay window that shows what lies below, sharp or blurred. It is put
/// together on the server out of the ground, which is what lies below, the glass, which is a blur
/// of that, and the ink, which is what the surface itself paints. The pixels of the ground come
/// here only for the blur, and at a sixteenth of their number. The window never shows a picture
/// that is not complete. Regions are in pixels of the window.
class ComposedPicture {
public:
    /// Draws what lies below the window on the target, whose origin lies at `origin` in the window,
    /// within `area` at least.
    using DrawGround =
        std::function<void(ServerPicture& target, QPoint origin, const QRegion& area)>;

    struct Look {
        /// What is painted, with alpha.
        QImage ink;
        /// Where the ground is blurred, as alpha alone, and how strongly, as a standard deviation
        /// in pixels. Null where nothing is.
        QImage glass{};
        double deviation = 0;
        /// Whether the ground is part of the picture where there is no glass. If not, the picture
        /// is transparent there.
        bool hasGround = true;
    };

    /// All references must outlive the object. A ground that is null is black.
    ComposedPicture(RenderKit& kit, ScratchPictures& scratch, NativeOverlayWindow& window);

    NativeOverlayWindow& window() const { return m_window; }

    /// Takes over another look, which is seen where `compose` comes. With another size `renew`
    /// is due. What was blurred stays; `move` tells how much further left and up the window has
    /// come to begin, so that it stays in its place.
    void setLook(Look look, QPoint move);
    /// Gives the window a new picture of the size of its look.
    void renew(const DrawGround& ground);
    /// Forgets what was seen below, which may be what another mask is there to hide.
    void forgetGlass();

    /// Where what lies below is seen at all, sharp or blurred.
    QRegion seeThrough() const { return m_seeThrough; }
    /// Where the picture changes when what lies below does so there.
    QRegion spread(const QRegion& area) const;
    bool needsCapture() const { return !m_look.glass.isNull(); }

    /// Reads what lies below for the blur and calls back when that is here; `compose` shows it.
    void capture(const QRegion& area, const DrawGround& ground, const std::function<void()>& done);
    /// Blurs what has been read as far as it reaches into the area. To be called before `compose`.
    void blur(const QRegion& area);
    /// Brings the picture up to date there.
    void compose(const QRegion& area, const DrawGround& ground);
    /// Hides at once what the picture shows of the ground there.
    void blacken(const QRegion& area, const DrawGround& ground);

    /// What has to be captured, and what has to be composed, kept for whoever does it in portions.
    QRegion uncaptured;
    QRegion uncomposed;
    /// Where the window was when that was last done to its end.
    QPoint settledAt;

private:
    void composeInto(xcb_pixmap_t pixmap, const QRegion& area, const DrawGround& ground);
    void drawGlass(ServerPicture& target, const QRect& bounds);
    void takeCaptured(const xcb_get_image_reply_t* reply, const QRect& part, int number);
    QSize smallSize() const;
    QRect smallPart(const QRect& part) const;
    QRect wholeRect() const { return {QPoint(0, 0), m_look.ink.size()}; }
    xcb_render_pictformat_t windowFormat() const;

    RenderKit& m_kit;
    ScratchPictures& m_scratch;
    NativeOverlayWindow& m_window;
    Look m_look;
    QRegion m_seeThrough;
    /// Where the ground itself is seen.
    QRegion m_sharp;
    std::unique_ptr<ServerPicture> m_ink;
    std::unique_ptr<ServerPicture> m_glass;
    /// What lies below, made smaller; null before it was read. And the same blurred.
    QImage m_below;
    /// What was asked for before this changed may show what must not be seen any more.
    int m_captureNumber = 0;
    std::unique_ptr<ServerPicture> m_blurred;
    Lifetime m_lifetime;
};
