#pragma once

#include "Platform/X11/Overlays/BackdropSource.h"
#include "Platform/X11/Overlays/ComposedPicture.h"
#include "Platform/X11/Overlays/RenderKit.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// Keeps the pictures of masks that show what lies below in step with it: only where it changed,
/// at most once a frame, and in portions between which the server and this program attend to
/// whatever else is there. Order never waits for pictures: a mask whose picture is not there yet
/// is shown on black, or with what was rightly seen below it before.
class BackdropPainter {
public:
    /// A mask that is shown, or is to be.
    struct Mask {
        NativeOverlayWindow* window = nullptr;
        /// Null for one that does not show what lies below by itself.
        ComposedPicture* picture = nullptr;
    };
    /// The shown masks in the wanted order, bottom to top.
    using ShownMasks = std::function<std::vector<Mask>()>;

    /// All must outlive the painter.
    BackdropPainter(XcbConnection& connection, Scheduler& scheduler, ShownMasks shownMasks,
                    BackdropSource::IsOwnWindow isOwnWindow);

    /// Whether the server can compose pictures.
    bool isAvailable() const { return m_source.isAvailable(); }
    std::unique_ptr<ComposedPicture> makePicture(NativeOverlayWindow& window);
    /// Whether a compositor blends the windows. Then it is asked for blurred pictures only.
    void setBlending(bool isBlending) { m_source.setBlending(isBlending); }
    /// Follows what lies below the masks as long as that is needed, which costs the server
    /// something. Whether it has begun with this call.
    bool follow(bool isNeeded);
    /// To be called for each new window, best before it is mapped.
    void leaveOut(const NativeOverlayWindow& window) { m_source.leaveOut(window.id()); }

    /// Something changed there on the root, and the pictures of what lies above follow soon.
    void noteChange(const QRegion& region);
    /// Gives a window that is on screen a picture of another size, at once.
    void renew(ComposedPicture& picture);
    /// To be called before windows are mapped or raised into a new order, with the one before. No
    /// mask then shows what one that comes to lie below it hides.
    void prepareOrder(const std::vector<Mask>& wanted, const std::vector<xcb_window_t>& before);

private:
    ComposedPicture::DrawGround groundOf(const std::vector<Mask>& masks, std::size_t index);
    QRegion interest() const;
    bool isChangeBelowMask() const;
    void schedule();
    void begin();
    void distribute();
    void work();
    bool bringUpToDate(const std::vector<Mask>& masks, std::size_t index, int& budget);
    void awaitServer();

    XcbConnection& m_connection;
    Scheduler& m_scheduler;
    ShownMasks m_shownMasks;
    RenderKit m_kit;
    ScratchPictures m_scratch;
    BackdropSource m_source;
    /// On the root, since the last refresh began.
    std::vector<QRegion> m_changes;
    bool m_isRefreshing = false;
    std::chrono::steady_clock::time_point m_lastRefresh;
    Subscription m_pendingRefresh;
    /// For the answers to come, made anew whenever the source becomes active.
    std::optional<Lifetime> m_lifetime;
};
