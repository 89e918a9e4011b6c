#pragma once

#include "Platform/X11/Overlays/StackingGuard.h"
#include "Platform/X11/UnmappedWindow.h"
#include "Platform/X11/X11Screens.h"
#include "Reactive/Published.h"

/// Knows the windows of programs that lock the screen. Nothing can be seen through them, so that
/// masks hide nothing there, and whoever locks a screen must be able to show it.
class ScreenLockers {
public:
    /// All must outlive the object. `isSessionLocked` may be null.
    ScreenLockers(const X11Screens& screens, const UnmappedWindow& probe,
                  const Published<bool>* isSessionLocked);

    /// Whether a window that is no window manager's business covers a whole monitor with opaque
    /// pixels, while somebody holds the keyboard, as all lockers do, or the session is said to be
    /// locked.
    bool isLocker(const StackingGuard::Neighbour& neighbour, bool isCompositing) const;

private:
    const X11Screens& m_screens;
    const UnmappedWindow& m_probe;
    const Published<bool>* m_isSessionLocked;
};
