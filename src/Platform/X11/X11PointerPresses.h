#pragma once

#include "Platform/PointerPresses.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Notifier.h"

/// Hears of presses as raw events of the input extension, which no window and no grab takes away.
class X11PointerPresses final : public PointerPresses {
public:
    /// `connection` must outlive the object.
    explicit X11PointerPresses(XcbConnection& connection);

    Subscription onPress(std::function<void(Button)> callback) override;

private:
    void select(bool isWanted);
    void handleEvent(const xcb_generic_event_t& event);

    XcbConnection& m_connection;
    /// Its opcode; nothing before it is first wanted, or without it.
    std::optional<uint8_t> m_extension;
    int m_subscribers = 0;
    Button m_pressedButton = Button::primary;
    Notifier m_presses;
    Lifetime m_lifetime;
    Subscription m_events;
};
