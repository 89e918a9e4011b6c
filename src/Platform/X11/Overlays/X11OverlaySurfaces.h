#pragma once

#include "Platform/OverlaySurfaces.h"
#include "Platform/SurfaceAccessibility.h"
#include "Platform/X11/ManagerWatch.h"
#include "Platform/X11/Overlays/BackdropPainter.h"
#include "Platform/X11/Overlays/CursorTheme.h"
#include "Platform/X11/Overlays/NativeOverlayWindow.h"
#include "Platform/X11/Overlays/OverlayInput.h"
#include "Platform/X11/Overlays/RetiredWindows.h"
#include "Platform/X11/Overlays/ScreenLockers.h"
#include "Platform/X11/Overlays/StackingGuard.h"
#include "Platform/X11/Overlays/TamperGuard.h"
#include "Platform/X11/Overlays/X11OverlaySurface.h"
#include "Platform/X11/X11Screens.h"
#include "Platform/X11/XcbConnection.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

/// The overlay windows of this program on the X server: makes them, keeps them in their order and
/// above the windows of others, and hands them the mouse. While one is shown, the windows are
/// retained by the server even if this program is killed.
///
/// Without a compositor a window hides what lies below it, whatever its alpha. Then the pictures of
/// the surfaces are composed here on top of what lies below, again whenever that changes, but at
/// most once a frame. A surface that has no such picture yet is shown on black. So it is, with or
/// without a compositor, with surfaces that show what lies below blurred.
class X11OverlaySurfaces final : public OverlaySurfaces,
                                 private StackingGuard::Client,
                                 private TamperGuard::Client {
public:
    /// Tells whether a top-level window is another window of this program, such as a menu, which
    /// may lie above the masks.
    using IsOwnWindow = std::function<bool(xcb_window_t window)>;

    struct Services {
        XcbConnection& connection;
        X11Screens& screens;
        Scheduler& scheduler;
        SystemLog& log;
        /// Null when nobody wants to hear of the surfaces.
        SurfaceAccessibility* accessibility = nullptr;
        IsOwnWindow isOwnWindow;
        /// Whether the desktop says that the screen is locked; null when nobody asks it.
        const Published<bool>* isSessionLocked = nullptr;
    };

    /// All services must outlive the surfaces.
    explicit X11OverlaySurfaces(const Services& services);
    ~X11OverlaySurfaces() override;
    X11OverlaySurfaces(const X11OverlaySurfaces&) = delete;
    X11OverlaySurfaces& operator=(const X11OverlaySurfaces&) = delete;

    std::unique_ptr<OverlaySurface> createSurface(const SurfaceDescription& description,
                                                  SurfaceDelegate* delegate) override;
    void beginBatch() override { ++m_openBatches; }
    void endBatch() override;

    /// Releases the mask windows that an earlier, killed process left on the server. To be called
    /// once this program's own masks are shown, so that nothing is uncovered in between.
    void releaseLeftovers();

private:
    friend class X11OverlaySurface;
    friend class OverlayInput;

    /// How long a frame of a usual display lasts.
    static constexpr std::chrono::milliseconds displayFrame{16};

    // What a surface tells and asks of its owner.
    void forget(X11OverlaySurface& surface);
    void noteChange();
    void noteOrder();
    void describe(X11OverlaySurface& surface, const AccessibleDescription& description);
    void endGestureOf(X11OverlaySurface& surface);
    std::uint64_t nextRaiseNumber() { return ++m_lastRaise; }
    const DesktopSpace& space() const { return m_services.screens.space(); }
    /// Moves a window at once, if possible without being told of it by the server.
    void moveNow(NativeOverlayWindow& window, const QRect& rect);
    Subscription after(std::chrono::milliseconds delay, std::function<void()> task) {
        return m_services.scheduler.after(delay, std::move(task));
    }
    xcb_cursor_t cursor(CursorShape shape) { return m_cursors.cursor(shape); }
    QImage::Format imageFormat() const;
    const OverlayVisual& visual() const { return isCompositing() ? m_alphaVisual : m_plainVisual; }
    /// Whether a surface shows what lies below by itself, and not by a compositor.
    bool composesPicture(bool isFrosted) const;
    std::unique_ptr<ComposedPicture> makePicture(NativeOverlayWindow& window) {
        return m_painter.makePicture(window);
    }
    void renewPicture(ComposedPicture& picture) { m_painter.renew(picture); }
    /// Something changed there on the screen, and what is composed with it is out of date.
    /// To be told of with the next commit.
    void noteBackdropChange(const QRect& rect) { m_changedBackdrop += rect; }

    void commitUnlessBatched();
    void commit();
    void showChanges();
    void damageShown();
    void tellPlaces();
    /// Puts the shown surfaces from that index on above all others, or right below `ceiling`.
    void stack(const std::vector<X11OverlaySurface*>& shown, std::size_t first,
               std::optional<xcb_window_t> ceiling);
    QList<QRect> map(const std::vector<X11OverlaySurface*>& shown, std::size_t first);
    void mapAnew(const std::vector<X11OverlaySurface*>& shown);
    void unmapHidden();
    void updateCloseDownMode();
    void followScreens();
    void remakeWindows();
    void updateBackdrops();
    std::vector<BackdropPainter::Mask> shownMasks() const;
    std::unique_ptr<NativeOverlayWindow> makeWindow(const SurfaceDescription& description);
    X11OverlaySurface* surfaceOf(xcb_window_t window) const;
    std::vector<X11OverlaySurface*> shownInOrder() const;

    // StackingGuard::Client
    std::vector<xcb_window_t> shownWindows() const override;
    bool isOwnWindow(xcb_window_t window) const override;
    bool isScreenLocker(const StackingGuard::Neighbour& neighbour) const override;
    void raiseShownWindows(std::optional<xcb_window_t> ceiling) override;

    // TamperGuard::Client
    NativeOverlayWindow* guardedWindow(xcb_window_t window) override;
    bool isCompositing() const override { return m_managers.isCompositing(); }
    void windowWasHidden(xcb_window_t window) override;
    void replaceLostWindow(xcb_window_t window) override;
    void showMendedWindows() override;

    Services m_services;
    XcbConnection& m_connection;
    OverlayVisual m_alphaVisual;
    OverlayVisual m_plainVisual;
    CursorTheme m_cursors;
    OverlayInput m_input;
    std::vector<X11OverlaySurface*> m_surfaces;
    // Empty while it has to be made again.
    mutable std::unordered_map<xcb_window_t, X11OverlaySurface*> m_surfaceOfWindow;
    RetiredWindows m_retired;
    // The shown windows as last stacked, bottom to top.
    std::vector<xcb_window_t> m_stack;
    QList<ScreenInfo> m_knownScreens;
    int m_openBatches = 0;
    bool m_needsApply = false;
    bool m_needsOrder = false;
    bool m_isRetained = false;
    std::uint64_t m_lastRaise = 0;
    ManagerWatch m_managers;
    UnmappedWindow m_probe;
    ScreenLockers m_lockers;
    // What hides a mask is mended before anything looks at the order.
    TamperGuard m_tamperGuard;
    StackingGuard m_guard;
    BackdropPainter m_painter;
    QRegion m_changedBackdrop;
    Subscription m_leftoverRelease;
    Subscription m_secondLook;
    SubscriptionBag m_subscriptions;
};
