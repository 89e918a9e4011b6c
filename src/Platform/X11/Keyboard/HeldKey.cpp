#include "Platform/X11/Keyboard/HeldKey.h"

bool HeldKey::press(const xcb_key_press_event_t& event) {
    // The server may take the time twice for one repetition; nobody is as fast as that.
    const bool isPaired =
        !m_areRepeatsWithoutRelease && m_released == event.detail && event.time - m_releasedAt <= 1;
    const bool wasDown = m_down == event.detail || isPaired;
    m_down = event.detail;
    if (!m_grabbing) m_grabbing = event.detail;
    return !wasDown;
}

std::optional<xcb_keycode_t> HeldKey::release(const xcb_key_release_event_t& event) {
    const bool isLast = m_grabbing == event.detail;
    if (m_down == event.detail) m_down.reset();
    if (isLast) m_grabbing.reset();
    m_released = event.detail;
    m_releasedAt = event.time;
    return isLast ? m_down : std::nullopt;
}

void HeldKey::releasedElsewhere(xcb_keycode_t key) {
    if (m_down == key) m_down.reset();
}
