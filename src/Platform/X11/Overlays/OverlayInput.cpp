#include "Platform/X11/Overlays/OverlayInput.h"

#include "Platform/X11/Overlays/X11OverlaySurfaces.h"

#include <utility>

namespace {

constexpr uint8_t leftButton = XCB_BUTTON_INDEX_1;

// From pixels counted from the window's top-left corner.
Point positionIn(const X11OverlaySurface& surface, int x, int y) {
    const double scaleFactor = surface.scaleFactor();
    return {x / scaleFactor, (surface.window().rect().height() - y) / scaleFactor};
}

}  // namespace

void OverlayInput::handleEvent(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
        case XCB_MOTION_NOTIFY:
            m_heldMotion = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
            break;
        case XCB_BUTTON_PRESS:
            press(reinterpret_cast<const xcb_button_press_event_t&>(event));
            break;
        case XCB_BUTTON_RELEASE:
            release(reinterpret_cast<const xcb_button_release_event_t&>(event));
            break;
        case XCB_LEAVE_NOTIFY:
            leave(reinterpret_cast<const xcb_leave_notify_event_t&>(event));
            break;
        default:
            break;
    }
}

void OverlayInput::flushMotion() {
    if (!m_heldMotion) return;
    const auto motion = *std::exchange(m_heldMotion, std::nullopt);
    const SurfaceBatch batch(m_surfaces);
    // The release went elsewhere: the window was unmapped by force, and with it went the pointer.
    const bool isButtonDown = (motion.state & XCB_BUTTON_MASK_1) != 0;
    if (!isButtonDown) endGesture();
    if (m_pressed) {
        const DesktopSpace& space = m_surfaces.m_services.screens.space();
        m_pressed->delegate()->mouseDragged(space.toGlobal(QPoint(motion.root_x, motion.root_y)));
    } else if (const auto* surface = m_surfaces.surfaceOf(motion.event);
               surface && surface->delegate()) {
        surface->delegate()->mouseMoved(positionIn(*surface, motion.event_x, motion.event_y));
    }
}

void OverlayInput::press(const xcb_button_press_event_t& event) {
    flushMotion();
    auto* const surface = m_surfaces.surfaceOf(event.event);
    if (event.detail != leftButton || m_pressed || !surface || !surface->delegate()) return;
    const SurfaceBatch batch(m_surfaces);
    m_pressed = surface;
    const DesktopSpace& space = m_surfaces.m_services.screens.space();
    surface->delegate()->mouseDown(positionIn(*surface, event.event_x, event.event_y),
                                   space.toGlobal(QPoint(event.root_x, event.root_y)));
}

void OverlayInput::release(const xcb_button_release_event_t& event) {
    flushMotion();
    if (event.detail == leftButton) endGesture();
}

void OverlayInput::leave(const xcb_leave_notify_event_t& event) {
    flushMotion();
    const auto* const surface = m_surfaces.surfaceOf(event.event);
    if (m_pressed || !surface || !surface->delegate()) return;
    const SurfaceBatch batch(m_surfaces);
    surface->delegate()->mouseExited();
}

void OverlayInput::endGestureOf(const X11OverlaySurface& surface) {
    if (m_pressed == &surface) endGesture();
}

void OverlayInput::endGesture() {
    if (!m_pressed) return;
    m_heldMotion.reset();
    const SurfaceBatch batch(m_surfaces);
    m_pressed->catchUp();
    // What is told may end the gesture, or the surface.
    if (!m_pressed) return;
    SurfaceDelegate* const delegate = std::exchange(m_pressed, nullptr)->delegate();
    if (delegate) delegate->mouseUp();
}

void OverlayInput::forget(const X11OverlaySurface& surface) {
    if (m_pressed == &surface) m_pressed = nullptr;
}
