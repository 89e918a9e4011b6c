#pragma once

#include "Platform/PointerPresses.h"
#include "Platform/X11/RawInput.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Notifier.h"

/// Hears of presses as raw events.
class X11PointerPresses final : public PointerPresses {
public:
    /// `connection` must outlive the object.
    explicit X11PointerPresses(XcbConnection& connection)
        : m_input(connection, RawInput::Kind::buttonPress) {}

    Subscription onPress(std::function<void(Button)> callback) override;

private:
    void tell(uint32_t button);

    RawInput m_input;
    int m_subscribers = 0;
    Button m_pressedButton = Button::primary;
    Notifier m_presses;
    Lifetime m_lifetime;
    Subscription m_events;
};
