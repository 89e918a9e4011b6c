#pragma once

#include "App/AppState.h"
#include "Platform/PointerPresses.h"
#include "Platform/TrayIcon.h"
#include "Reactive/Lifetime.h"

#include <QRect>
#include <functional>
#include <memory>

class MenuBarPanel;

/// The program's icon in the tray and the panel that it opens.
class MenuBarExtra {
public:
    struct Actions {
        /// Brings the program forward and opens its settings; empty where there are none to open.
        std::function<void()> openSettings;
        std::function<void()> quit;
    };

    /// Puts the icon into the tray in a later turn, so that nothing waits for it. The references
    /// must outlive the object.
    MenuBarExtra(AppState& state, Scheduler& scheduler, TrayIcon& trayIcon, PointerPresses& presses,
                 Actions actions);
    ~MenuBarExtra();
    MenuBarExtra(const MenuBarExtra&) = delete;
    MenuBarExtra& operator=(const MenuBarExtra&) = delete;

    /// Opens the panel beside a rectangle of the desktop, in the toolkit's points, or closes it.
    void togglePanel(const QRect& anchor);
    /// Closes the panel; it is made anew when it is opened again.
    void closePanel();
    /// Where it is not, the panel must be offered elsewhere.
    const Published<bool>& isInTray() const { return m_trayIcon.isInTray(); }

private:
    void showIcon();

    AppState& m_state;
    Scheduler& m_scheduler;
    TrayIcon& m_trayIcon;
    PointerPresses& m_presses;
    Actions m_actions;
    // Made when it is first wanted.
    std::unique_ptr<MenuBarPanel> m_panel;
    Lifetime m_lifetime;
};
