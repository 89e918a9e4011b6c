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
    void release(const xcb_key_release_event_t& event);

private:
    bool m_areRepeatsWithoutRelease;
    // Only the key that went down last repeats.
    std::optional<xcb_keycode_t> m_down;
    std::optional<xcb_keycode_t> m_grabbing;
    xcb_keycode_t m_released = 0;
    xcb_timestamp_t m_releasedAt = 0;
};
