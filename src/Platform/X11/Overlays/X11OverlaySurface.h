#pragma once

#include "Platform/OverlaySurfaces.h"
#include "Platform/X11/DesktopSpace.h"
#include "Platform/X11/Overlays/ComposedPicture.h"
#include "Platform/X11/Overlays/NativeOverlayWindow.h"
#include "Platform/X11/Overlays/RetiredWindows.h"

#include <cstdint>
#include <memory>
#include <optional>

class X11OverlaySurfaces;

/// An overlay surface as a window of the X server. It keeps what is wanted; `prepare` and
/// `present` bring the window in step with it, so that many changes become one visible step.
class X11OverlaySurface final : public OverlaySurface {
public:
    X11OverlaySurface(X11OverlaySurfaces& owner, SurfaceDescription description,
                      SurfaceDelegate* delegate, std::unique_ptr<NativeOverlayWindow> window);
    ~X11OverlaySurface() override;

    Rect frame() const override { return m_description.frame; }
    void setFrame(const Rect& frame) override;
    void setFinalFrame(const Rect& frame) override;
    void catchUp() override;
    void setContent(std::shared_ptr<const SurfaceContent> content) override;
    void setAccessibleDescription(const AccessibleDescription& description) override;
    void setIgnoresMouseEvents(bool ignores) override;
    void setCursor(CursorShape shape) override;
    void orderFront() override;
    void orderOut() override;

    const SurfaceDescription& description() const { return m_description; }
    SurfaceDelegate* delegate() const { return m_delegate; }
    NativeOverlayWindow& window() { return *m_window; }
    const NativeOverlayWindow& window() const { return *m_window; }
    bool isShown() const { return m_isShown; }
    /// The later a surface was last ordered to the front, the higher it lies.
    std::uint64_t raiseNumber() const { return m_raiseNumber; }
    /// Device pixels per point where the surface is.
    double scaleFactor() const { return m_scaleFactor; }

    /// Whether it shows what lies below blurred, which no compositor does by itself.
    bool isFrosted() const { return m_content && m_content->backdropBlur() > 0; }

    /// Null while it does not show what lies below by itself.
    ComposedPicture* composedPicture() const { return m_composed.get(); }

    /// Paints what differs from the wanted state. The rest is sent with the next call of `present`,
    /// mapping and stacking excepted.
    void prepare(const DesktopSpace& space);
    void present();
    /// Whether `prepare`, `present`, or unmapping has something to do.
    bool needsPresenting() const { return m_needsApplying || (!m_isShown && m_window->isMapped()); }
    /// When it is to be shown for the first time, and a window in its place already shows the same:
    /// takes that for its own.
    void reuse(RetiredWindows& retired, const DesktopSpace& space);
    /// Leaves its window, and what that shows.
    void giveUpWindow(RetiredWindows& retired);
    /// Whether the surface is elsewhere, or shown otherwise, than at the last call.
    bool isPlacedAnew();
    /// Takes over where the window is after the screens changed; the delegate is not told.
    void followScreens(const QList<ScreenInfo>& oldScreens, const DesktopSpace& space);
    /// Puts a new window in the place of the old one, which is returned still as it was.
    std::unique_ptr<NativeOverlayWindow> replaceWindow(std::unique_ptr<NativeOverlayWindow> window);

private:
    void noteChange();
    bool canMoveNow(const Rect& frame) const;
    /// Ends being ahead; returns where the window is if it was.
    std::optional<Rect> takeFrameAhead();
    /// Where the window is to be.
    const Rect& wantedFrame() const { return m_frameAhead ? *m_frameAhead : m_description.frame; }
    void paint(const QRect& rect);
    /// Paints a picture that is put together with what lies below on the server.
    void paintToCompose(const QRect& rect, Size points);
    QImage paintPart(const QRect& part, Size points, QImage::Format format) const;
    void tellDelegate(const Rect& previous);

    X11OverlaySurfaces& m_owner;
    SurfaceDescription m_description;
    /// Where the window is already, while the delegate has not been told.
    std::optional<Rect> m_frameAhead;
    /// All that it has covered since the delegate was told.
    QRect m_passedRect;
    Subscription m_pendingCatchUp;
    SurfaceDelegate* m_delegate;
    std::unique_ptr<NativeOverlayWindow> m_window;
    /// Null while the window does not show what lies below by itself.
    std::unique_ptr<ComposedPicture> m_composed;
    std::shared_ptr<const SurfaceContent> m_content;
    AccessibleDescription m_accessible;
    CursorShape m_cursor = CursorShape::arrow;
    std::optional<CursorShape> m_appliedCursor;
    bool m_ignoresMouseEvents = false;
    bool m_isShown = false;
    QRect m_toldRect;
    bool m_hasToldShown = false;
    bool m_needsApplying = true;
    bool m_needsPainting = true;
    double m_scaleFactor = 1;
    std::uint64_t m_raiseNumber = 0;
};
