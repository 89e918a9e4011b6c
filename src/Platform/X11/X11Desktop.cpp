#include "Platform/X11/X11Desktop.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

namespace {

double toolkitScaleFactor(const QString& monitorName) {
    const auto screens = QGuiApplication::screens();
    for (const QScreen* screen : screens)
        if (screen->name() == monitorName) return screen->devicePixelRatio();
    const QScreen* const primary = QGuiApplication::primaryScreen();
    return primary ? primary->devicePixelRatio() : 1;
}

// The server gives every client its own range of resource ids.
X11OverlaySurfaces::IsOwnWindow toolkitWindowTest() {
    auto* const application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    auto* const connection = application ? application->connection() : nullptr;
    if (!connection) return [](xcb_window_t) { return false; };
    const auto* const setup = xcb_get_setup(connection);
    return [base = setup->resource_id_base, mask = setup->resource_id_mask](xcb_window_t window) {
        return (window & ~mask) == base;
    };
}

}  // namespace

std::unique_ptr<X11Desktop> X11Desktop::open(const Surroundings& surroundings, QString* error) {
    auto connection = XcbConnection::open(error);
    if (!connection) return nullptr;
    return std::unique_ptr<X11Desktop>(new X11Desktop(std::move(connection), surroundings));
}

X11Desktop::X11Desktop(std::unique_ptr<XcbConnection> connection, const Surroundings& surroundings)
    : m_connection(std::move(connection)),
      m_screens(*m_connection, toolkitScaleFactor),
      m_overlaySurfaces({*m_connection, m_screens, surroundings.scheduler, surroundings.log,
                         surroundings.accessibility, toolkitWindowTest(),
                         surroundings.isSessionLocked}),
      m_hotKeyCenter(*m_connection, surroundings.log),
      m_windowManagement(*m_connection),
      m_settings(*m_connection),
      m_pointerPresses(*m_connection),
      m_trayOwner(*m_connection, m_connection->atoms().traySelection),
      m_scheduler(surroundings.scheduler) {
    followToolkitScreens();
}

X11Workspace& X11Desktop::workspace() {
    if (!m_workspace)
        m_workspace = std::make_unique<X11Workspace>(
            *m_connection, m_scheduler,
            ApplicationResolver(DesktopEntries(), ApplicationIdentities::builtIn()));
    return *m_workspace;
}

void X11Desktop::followToolkitScreens() {
    // The toolkit may learn of a screen, and with it of its scale factor, after we do.
    const auto follow = [this](QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, [this] { m_screens.refresh(); });
        connect(screen, &QScreen::physicalDotsPerInchChanged, this,
                [this] { m_screens.refresh(); });
    };
    const auto screens = QGuiApplication::screens();
    for (QScreen* screen : screens)
        follow(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this, follow](QScreen* screen) {
        follow(screen);
        m_screens.refresh();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { m_screens.refresh(); });
}
