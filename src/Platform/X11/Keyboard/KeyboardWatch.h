#pragma once

#include "Platform/X11/XcbConnection.h"
#include "Reactive/Subscription.h"

#include <functional>

/// Watches the keyboard of the display change its layout, and asks the server to tell a held key
/// from one that is pressed again and again.
class KeyboardWatch {
public:
    /// `connection` must outlive the watch.
    explicit KeyboardWatch(XcbConnection& connection);

    /// Called after the burst of events in which keys or modifiers may have got another meaning.
    std::function<void()> onMappingChanged;

    /// Whether a held key is released only when it goes up. Otherwise each of its repetitions comes
    /// as a release and a press.
    bool areRepeatsWithoutRelease() const { return m_areRepeatsWithoutRelease; }

private:
    void useXkb();
    void handleEvent(const xcb_generic_event_t& event);

    XcbConnection& m_connection;
    uint8_t m_xkbEvent = 0;
    bool m_areRepeatsWithoutRelease = false;
    bool m_hasChange = false;
    SubscriptionBag m_subscriptions;
};
