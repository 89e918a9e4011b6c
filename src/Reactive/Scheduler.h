#pragma once

#include "Reactive/Subscription.h"

#include <chrono>
#include <functional>

/// Runs work later on the main thread. All delayed delivery goes through it, so that tests can
/// turn a virtual clock.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    /// Runs `task` in the next turn of the main loop, after the tasks that were posted before it.
    virtual void post(std::function<void()> task) = 0;

    /// Runs `task` once, `delay` from now. Letting go of the handle before then cancels it;
    /// the handle may be let go from inside the task.
    virtual Subscription after(std::chrono::milliseconds delay, std::function<void()> task) = 0;
};
