#pragma once

#include "Platform/X11/Overlays/RenderKit.h"
#include "Platform/X11/Overlays/TopLevelWindows.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Subscription.h"

#include <QColor>
#include <QPoint>
#include <QRegion>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>
#include <xcb/damage.h>

/// Draws what lies below the masks. While it is active the server keeps every top-level window of
/// others in a pixmap of its own, and tells when one changes. A plain colour that somebody draws
/// on the root is seen with the next window that comes, moves or goes. It never waits for an
/// answer. Regions and rectangles are in pixels of the root.
class BackdropSource {
public:
    /// Tells whether a window of another connection belongs to this program and may lie above
    /// masks.
    using IsOwnWindow = std::function<bool(xcb_window_t window)>;

    /// `kit` must outlive the source.
    BackdropSource(RenderKit& kit, IsOwnWindow isOwnWindow);
    ~BackdropSource();
    BackdropSource(const BackdropSource&) = delete;
    BackdropSource& operator=(const BackdropSource&) = delete;

    /// Windows of others are seen elsewhere than before, or another picture is below them.
    std::function<void(const QRegion& region)> onChanged;
    /// What is in a window has changed, for the first time since `takeDamage`.
    std::function<void()> onDamaged;
    /// Asked for where windows of this connection are on screen.
    std::function<QRegion()> ownRegion;

    /// Whether the server has the extensions that this takes.
    bool isAvailable() const { return m_isAvailable; }
    bool isActive() const { return m_isActive; }
    void setActive(bool isActive);
    /// Whether windows are seen through their alpha, as a compositor shows them, and not opaque, as
    /// the server does without one.
    void setBlending(bool isBlending) { m_isBlending = isBlending; }
    /// Whether it can draw: the windows are known some time after it became active.
    bool isKnown() const { return m_isActive && m_windows.isKnown(); }
    /// Lets the server draw a window of this connection straight to the screen, which is faster.
    /// To be called for each while the source is active, best before the window is mapped.
    void leaveOut(xcb_window_t ownWindow);

    /// A window of this connection as it is drawn.
    struct OwnLayer {
        xcb_window_t window = XCB_NONE;
        QRect rect;
        xcb_visualid_t visual = XCB_NONE;
        /// What it shows; as long as that is XCB_NONE, it is drawn black.
        xcb_pixmap_t picture = XCB_NONE;
    };

    /// Draws what lies below the window `above`, which `ownBelow` names the own part of, bottom to
    /// top, within `area`. Outside of it the target may be drawn on as well. `origin` is where the
    /// target lies on the root.
    void draw(ServerPicture& target, QPoint origin, const QRegion& area,
              const std::vector<OwnLayer>& ownBelow, xcb_window_t above);

    /// Whether anything has changed in a window that reaches into the region.
    bool isDamaged(const QRegion& interest) const;
    /// Tells, when the server has answered and all events before that have been handled, what has
    /// changed in the windows that reach into the region, and asks to be told of further changes.
    /// Windows elsewhere are left alone: those that have changed once cost nothing any more.
    void takeDamage(const QRegion& interest, std::function<void(const QRegion& changed)> take);

private:
    class NamedPicture;
    struct Watched {
        xcb_damage_damage_t damage = XCB_NONE;
        bool isDamaged = false;
        /// Made when it is first drawn.
        std::unique_ptr<NamedPicture> picture;
    };
    struct DamageAnswers;

    void handleEvent(const xcb_generic_event_t& event);
    void watch(const TopLevelWindows::Entry& entry);
    void readWallpaper();
    void readRootColor();
    void drawRoot(ServerPicture& target, QPoint origin, const QRegion& area);
    void drawForeign(ServerPicture& target, QPoint origin, const QRegion& area,
                     const TopLevelWindows::Entry& entry);
    void drawOwn(ServerPicture& target, QPoint origin, const QRegion& area, const OwnLayer& layer);
    struct Layer {
        xcb_window_t window;
        xcb_render_picture_t picture;
        QRect rect;
        int border;
    };
    void drawLayer(ServerPicture& target, QPoint origin, const QRegion& area, const Layer& layer);
    QRect screenRect() const;

    RenderKit& m_kit;
    XcbConnection& m_connection;
    IsOwnWindow m_isOwnWindow;
    bool m_isAvailable = false;
    bool m_isActive = false;
    bool m_isBlending = false;
    uint8_t m_damageEvent = 0;
    // The picture that desktops and wallpaper programs leave on the root, which may be gone.
    xcb_pixmap_t m_wallpaper = XCB_NONE;
    // What the root shows where it has no wallpaper, as far as it could be seen.
    QColor m_rootColor = Qt::black;
    bool m_isRootColorAwaited = false;
    TopLevelWindows m_windows;
    std::unordered_map<xcb_window_t, Watched> m_watched;
    Subscription m_events;
    /// For the answers to come, made anew whenever it becomes active.
    std::optional<Lifetime> m_lifetime;
};
