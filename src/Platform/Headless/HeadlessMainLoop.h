#pragma once

#include "Platform/MainLoop.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <utility>

/// A main loop on a virtual clock that only its owner turns.
class HeadlessMainLoop final : public MainLoop {
public:
    void post(std::function<void()> task) override;
    Subscription after(std::chrono::milliseconds delay, std::function<void()> task) override;
    /// Runs turns, advancing the clock to what is due next, until `quit` or until nothing is left.
    int run() override;
    void quit(int status) override;

    /// Runs the tasks that are posted by now, and the timers that are due; what they post or what
    /// falls due meanwhile waits for the next turn.
    void runTurn();
    /// Moves the clock on, running everything that falls due at its own time, earliest first, ties
    /// in the order of their making.
    void advanceBy(std::chrono::milliseconds duration);

    std::chrono::milliseconds now() const { return m_now; }
    /// Timers that wait, and tasks that are posted: none means that the program is idle.
    bool isIdle() const { return m_posted.empty() && m_timers.empty(); }

private:
    // Due time, then order of making.
    using TimerKey = std::pair<std::chrono::milliseconds, std::uint64_t>;
    using Timers = std::map<TimerKey, std::function<void()>>;

    void runDueTimers();
    bool hasDueTimer() const { return !m_timers.empty() && m_timers.begin()->first.first <= m_now; }

    std::chrono::milliseconds m_now{0};
    std::uint64_t m_nextTimer = 0;
    std::deque<std::function<void()>> m_posted;
    Timers m_timers;
    bool m_isQuitting = false;
    int m_status = 0;
    std::shared_ptr<HeadlessMainLoop*> m_self =
        std::make_shared<HeadlessMainLoop*>(this);  // lets handles outlive the loop
};
