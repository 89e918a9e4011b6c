#pragma once

#include <optional>
#include <xcb/xcb.h>

/// Tells when a key goes down from the repetitions of one that is held. Sees the keys of a passive
/// grab: those that are pressed and released from the first press until that key goes up.
class HeldKey {
public:
    /// Without it, each repetition comes as a release and a press at the same time.
    explicit HeldKey(bool areRepeatsWithoutRelease)
        : m_areRepeatsWithoutRelease(areRepeatsWithoutRelease) {}

    /// Whether the key was up before this press.
    bool press(const xcb_key_press_event_t& event);
    /// Whether the key that went down last is held in the grab of another one, which may end first.
    bool isInGrabOfAnother() const { return m_down && m_grabbing && m_down != m_grabbing; }
    /// Returns the key that is still down although the grab has ended: its release goes elsewhere,
    /// and must be told below.
    std::optional<xcb_keycode_t> release(const xcb_key_release_event_t& event);
    /// A key went up unseen.
    void releasedElsewhere(xcb_keycode_t key);

private:
    bool m_areRepeatsWithoutRelease;
    // Only the key that went down last repeats.
    std::optional<xcb_keycode_t> m_down;
    std::optional<xcb_keycode_t> m_grabbing;
    xcb_keycode_t m_released = 0;
    xcb_timestamp_t m_releasedAt = 0;
};
