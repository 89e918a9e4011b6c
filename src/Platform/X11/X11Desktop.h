#pragma once

#include "Platform/MainLoop.h"
#include "Platform/SurfaceAccessibility.h"
#include "Platform/SystemLog.h"
#include "Platform/X11/Keyboard/X11HotKeyCenter.h"
#include "Platform/X11/Overlays/X11OverlaySurfaces.h"
#include "Platform/X11/SelectionOwner.h"
#include "Platform/X11/X11PointerPresses.h"
#include "Platform/X11/X11Screens.h"
#include "Platform/X11/X11WindowManagement.h"
#include "Platform/X11/X11Workspace.h"
#include "Platform/X11/XSettings.h"
#include "Platform/X11/XcbConnection.h"

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

/// The X11 back end: one connection with the screens and overlay surfaces on it. A QGuiApplication
/// on the same display must exist, for the scale factors and to tell its own windows.
class X11Desktop final : public QObject {
public:
    /// Everything must outlive the desktop.
    struct Surroundings {
        Scheduler& scheduler;
        SystemLog& log;
        /// Null when nobody wants to hear of the surfaces.
        SurfaceAccessibility* accessibility = nullptr;
        /// Whether the desktop says that the screen is locked; null when nobody asks it.
        const Published<bool>* isSessionLocked = nullptr;
    };

    /// Null when there is no display; `error` then says why.
    static std::unique_ptr<X11Desktop> open(const Surroundings& surroundings, QString* error);

    XcbConnection& connection() { return *m_connection; }
    X11Screens& screens() { return m_screens; }
    X11OverlaySurfaces& overlaySurfaces() { return m_overlaySurfaces; }
    X11HotKeyCenter& hotKeyCenter() { return m_hotKeyCenter; }
    X11WindowManagement& windowManagement() { return m_windowManagement; }
    const XSettings& settings() const { return m_settings; }
    /// The tray of the older kind, whose icons are windows.
    const SelectionOwner& trayOwner() const { return m_trayOwner; }
    X11PointerPresses& pointerPresses() { return m_pointerPresses; }
    /// Looks at all programs when it is first asked for.
    X11Workspace& workspace();

private:
    X11Desktop(std::unique_ptr<XcbConnection> connection, const Surroundings& surroundings);
    void followToolkitScreens();

    std::unique_ptr<XcbConnection> m_connection;
    X11Screens m_screens;
    X11OverlaySurfaces m_overlaySurfaces;
    X11HotKeyCenter m_hotKeyCenter;
    X11WindowManagement m_windowManagement;
    XSettings m_settings;
    X11PointerPresses m_pointerPresses;
    SelectionOwner m_trayOwner;
    Scheduler& m_scheduler;
    std::unique_ptr<X11Workspace> m_workspace;
};
