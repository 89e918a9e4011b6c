#pragma once

#include "Platform/X11/XcbConnection.h"

#include <optional>

class X11OverlaySurface;
class X11OverlaySurfaces;

/// Turns the pointer events of the overlay windows into what their delegates are told. While the
/// left button is down, only its movement and its release count; movements of one burst are told
/// as the last of them.
class OverlayInput {
public:
    explicit OverlayInput(X11OverlaySurfaces& surfaces) : m_surfaces(surfaces) {}

    void handleEvent(const xcb_generic_event_t& event);
    /// Tells the movement that is still held back, at the end of a burst.
    void flushMotion();
    /// Ends the running gesture, if there is one.
    void endGesture();
    /// Ends the gesture of a surface that can have no further events.
    void endGestureOf(const X11OverlaySurface& surface);
    void forget(const X11OverlaySurface& surface);

private:
    void press(const xcb_button_press_event_t& event);
    void release(const xcb_button_release_event_t& event);
    void leave(const xcb_leave_notify_event_t& event);

    X11OverlaySurfaces& m_surfaces;
    X11OverlaySurface* m_pressed = nullptr;
    std::optional<xcb_motion_notify_event_t> m_heldMotion;
};
