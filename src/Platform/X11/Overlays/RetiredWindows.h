#pragma once

#include "Platform/OverlaySurfaces.h"
#include "Platform/X11/Overlays/NativeOverlayWindow.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <QList>
#include <QRect>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

/// Overlay windows that nothing needs any more. They stay on screen until what takes their place
/// can be seen, so that nothing shows in between.
class RetiredWindows {
public:
    /// How long a compositor may take until it shows a newly mapped window in full: KWin paints it
    /// after about 50 ms, a picom that fades windows in needs 360 ms with its usual steps.
    static constexpr std::chrono::milliseconds longestAppearance{500};

    /// `scheduler` must outlive the object.
    explicit RetiredWindows(Scheduler& scheduler) : m_scheduler(scheduler) {}

    /// `content` is what the window shows.
    void add(std::unique_ptr<NativeOverlayWindow> window,
             std::shared_ptr<const SurfaceContent> content);
    bool hasNew() const { return !m_new.empty(); }
    /// Gives back a window that was added since the last `settle`, is mapped, lies at `rect` and
    /// shows what `content` would; null when there is none.
    std::unique_ptr<NativeOverlayWindow> take(const QRect& rect, const SurfaceContent& content,
                                              const OverlayVisual& visual);
    /// To be called when what takes the place of the windows added since the last call has been
    /// mapped above them, in `successors`. With a compositor, which shows windows when it gets to
    /// it, what they have in common stays for a while and lets the mouse through.
    void settle(const QList<QRect>& successors, bool isCompositing);
    /// Takes all of them off the screen now.
    void clear();

private:
    struct Entry {
        std::unique_ptr<NativeOverlayWindow> window;
        std::shared_ptr<const SurfaceContent> content;
    };
    struct Lingering {
        std::vector<std::unique_ptr<NativeOverlayWindow>> windows;
        Subscription end;
    };

    Scheduler& m_scheduler;
    std::vector<Entry> m_new;
    std::vector<std::unique_ptr<Lingering>> m_lingering;
};
