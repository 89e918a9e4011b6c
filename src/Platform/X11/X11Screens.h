#pragma once

#include "Platform/Screens.h"
#include "Platform/X11/DesktopSpace.h"
#include "Platform/X11/PanelStruts.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Notifier.h"

#include <functional>

/// The monitors of the X server, less the panels on each, and the pointer. Everything is read
/// again when an event says that something changed, and only then.
class X11Screens final : public Screens {
public:
    /// Tells how many pixels the toolkit makes of a point on the monitor of that name.
    using ScaleFactor = std::function<double(const QString& monitorName)>;

    /// `connection` must outlive the screens.
    X11Screens(XcbConnection& connection, ScaleFactor scaleFactor);

    QList<ScreenInfo> screens() const override { return m_space.screens(); }
    std::optional<ScreenInfo> mainScreen() const override;
    Point pointerLocation() const override;
    Subscription onScreensChanged(std::function<void()> callback) override;

    /// The conversion between pixels and points for the screens as they are now.
    const DesktopSpace& space() const { return m_space; }

    /// Reads the screens again, for when the toolkit tells of a change that the server does not.
    void refresh();

private:
    /// A window that is a panel, or may become one.
    struct PanelHints {
        xcb_window_t window;
        /// The numbers of either strut hint; fewer than four when it has none.
        std::vector<uint32_t> strut;
    };

    void handleEvent(const xcb_generic_event_t& event);
    QList<NativeScreen> readMonitors() const;
    QList<PanelStrut> readPanels(QSize root);
    QList<QRect> readWorkAreas(qsizetype monitorCount) const;
    std::vector<PanelHints> readPanelHints() const;
    QSize rootSize() const;

    XcbConnection& m_connection;
    ScaleFactor m_scaleFactor;
    bool m_hasMonitors = false;
    uint8_t m_firstRandrEvent = 0;
    bool m_needsRefresh = false;
    std::vector<xcb_window_t> m_panelWindows;
    DesktopSpace m_space;
    Notifier m_changed;
    SubscriptionBag m_subscriptions;
};
