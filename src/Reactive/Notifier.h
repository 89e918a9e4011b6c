#pragma once

#include "Reactive/Published.h"

#include <functional>
#include <utility>

/// Tells subscribers that something happened, without a value. Follows the delivery rules of
/// Published; subscribing delivers nothing.
class Notifier {
public:
    Subscription subscribe(std::function<void()> callback) const {
        return m_ticks.subscribe([isFirst = true, callback = std::move(callback)](int) mutable {
            if (!std::exchange(isFirst, false)) callback();
        });
    }

    void notify() {
        m_ticks.update([](int& ticks) { ticks ^= 1; });
    }

private:
    Published<int> m_ticks;
};
