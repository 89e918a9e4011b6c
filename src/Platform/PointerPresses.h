#pragma once

#include "Reactive/Subscription.h"

#include <functional>

/// Tells of the user pressing a button of the pointer anywhere on the desktop, whichever window
/// gets the press. Nothing is taken away from that window.
class PointerPresses {
public:
    virtual ~PointerPresses() = default;

    enum class Button { primary, other };

    /// Calls back after each press, from the main loop; turning a wheel is none. Where the desktop
    /// does not tell, it never does. Costs nothing while nobody subscribes.
    virtual Subscription onPress(std::function<void(Button)> callback) = 0;
};
