#pragma once

#include <QtGlobal>

/// What the program asks of the desktop's window manager for its ordinary windows. Windows are
/// named by the number that the display server knows them by. Does nothing for a window that is
/// gone, or without a window manager.
class WindowManagement {
public:
    virtual ~WindowManagement() = default;

    /// Whether the window has an entry in task bar and pager. For a window that is not on screen
    /// it holds once it is shown.
    virtual void setIsListed(quint64 window, bool isListed) = 0;
    /// Brings the window to the front and gives it the keyboard, also when the user was busy in
    /// another program. The window must have been shown.
    virtual void activate(quint64 window) = 0;
};
