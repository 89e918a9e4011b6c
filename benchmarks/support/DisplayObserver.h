#pragma once

#include "support/desktop/XTestInput.h"

#include <chrono>
#include <functional>

/// Watches the top-level windows of a display, and moves its pointer, on one connection.
class DisplayObserver : public XTestInput {
public:
    using Clock = std::chrono::steady_clock;

    /// Sees everything that happens to top-level windows from here on.
    explicit DisplayObserver(const QString& displayName);

    /// Waits for the next window to be mapped and returns it. Throws std::runtime_error when none
    /// is for ten seconds.
    xcb_window_t waitForMap();
    /// Waits until windows have been mapped that many times. Throws as above.
    void waitForMaps(int count);
    /// Presses a key and returns how long it takes until windows have been unmapped that many
    /// times. Throws as above.
    Clock::duration timeUntilUnmapped(std::uint8_t keycode, int count);
    /// Sends a motion of the pointer and returns how long it takes until the window has moved.
    /// Throws std::runtime_error when it does not within ten seconds.
    Clock::duration timeUntilMoved(xcb_window_t window, QPoint pointer);
    /// Makes requests and returns how long it takes until the window has been moved, resized or
    /// restacked. Throws as above.
    Clock::duration timeUntilConfigured(xcb_window_t window, const std::function<void()>& requests);
    /// What happened so far is not waited for.
    void forgetEvents();

private:
    template <typename Event>
    Event waitFor(std::uint8_t type, xcb_window_t window);
};
