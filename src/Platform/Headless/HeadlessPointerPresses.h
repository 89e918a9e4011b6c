#pragma once

#include "Platform/PointerPresses.h"
#include "Reactive/Notifier.h"

#include <utility>

/// Presses that a test makes.
class HeadlessPointerPresses final : public PointerPresses {
public:
    Subscription onPress(std::function<void(Button)> callback) override {
        return m_presses.subscribe(
            [this, callback = std::move(callback)] { callback(m_pressedButton); });
    }

    void press(Button button = Button::primary) {
        m_pressedButton = button;
        m_presses.notify();
    }

private:
    Button m_pressedButton = Button::primary;
    Notifier m_presses;
};
