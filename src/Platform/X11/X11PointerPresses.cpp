#include "Platform/X11/X11PointerPresses.h"

#include <utility>

namespace {

constexpr uint32_t primaryButton = 1;
// Up, down, left and right.
constexpr uint32_t firstWheelButton = 4;
constexpr uint32_t lastWheelButton = 7;

}  // namespace

Subscription X11PointerPresses::onPress(std::function<void(Button)> callback) {
    if (m_subscribers++ == 0) m_events = m_input.listen([this](uint32_t button) { tell(button); });
    return Subscription(m_lifetime.guard(
        [this, subscription = std::make_shared<Subscription>(m_presses.subscribe(
                   [this, callback = std::move(callback)] { callback(m_pressedButton); }))] {
            subscription->reset();
            if (--m_subscribers == 0) m_events.reset();
        }));
}

void X11PointerPresses::tell(uint32_t button) {
    if (button >= firstWheelButton && button <= lastWheelButton) return;
    m_pressedButton = button == primaryButton ? Button::primary : Button::other;
    m_presses.notify();
}
