#pragma once

#include "Reactive/Published.h"

#include <QRect>
#include <QString>
#include <functional>
#include <vector>

/// The program's icon in the tray of the desktop, if it has one.
class TrayIcon {
public:
    struct MenuItem {
        QString title;
        std::function<void()> perform;
    };
    struct Actions {
        /// The icon was clicked. The rectangle is where it is, in the toolkit's points; of one
        /// point where the tray tells only the place of the click, and null where it tells nothing.
        std::function<void(const QRect& anchor)> onActivate;
        /// What the icon's context menu offers.
        std::vector<MenuItem> menu;
    };

    virtual ~TrayIcon() = default;

    /// Puts the icon into the tray that is there, and from now on into each that comes.
    virtual void show(const Actions& actions) = 0;
    /// Whether a tray has the icon. False before `show`.
    virtual const Published<bool>& isInTray() const = 0;
    /// Whether there is no tray to put the icon into. False until that is known, which may be
    /// some time after `show`.
    virtual const Published<bool>& isWithoutTray() const = 0;
};
