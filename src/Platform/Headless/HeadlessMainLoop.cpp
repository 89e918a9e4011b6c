#include "Platform/Headless/HeadlessMainLoop.h"

#include <algorithm>

void HeadlessMainLoop::post(std::function<void()> task) {
    m_posted.push_back(std::move(task));
}

Subscription HeadlessMainLoop::after(std::chrono::milliseconds delay, std::function<void()> task) {
    const TimerKey key{m_now + std::max(delay, std::chrono::milliseconds(0)), m_nextTimer++};
    m_timers.emplace(key, std::move(task));
    return Subscription([weakSelf = std::weak_ptr(m_self), key] {
        if (const auto self = weakSelf.lock()) (*self)->m_timers.erase(key);
    });
}

int HeadlessMainLoop::run() {
    m_isQuitting = false;
    while (!m_isQuitting && !isIdle()) {
        runTurn();
        if (!m_isQuitting && m_posted.empty() && !m_timers.empty())
            m_now = std::max(m_now, m_timers.begin()->first.first);
    }
    return m_status;
}

void HeadlessMainLoop::quit(int status) {
    m_isQuitting = true;
    m_status = status;
}

void HeadlessMainLoop::runTurn() {
    auto tasks = std::exchange(m_posted, {});
    for (const auto& task : tasks)
        task();
    runDueTimers();
}

void HeadlessMainLoop::advanceBy(std::chrono::milliseconds duration) {
    const auto end = m_now + duration;
    for (;;) {
        while (!m_posted.empty() || hasDueTimer())
            runTurn();
        if (m_timers.empty() || m_timers.begin()->first.first > end) break;
        m_now = m_timers.begin()->first.first;
    }
    m_now = end;
}

void HeadlessMainLoop::runDueTimers() {
    const std::uint64_t firstNewTimer = m_nextTimer;
    while (hasDueTimer() && m_timers.begin()->first.second < firstNewTimer) {
        const auto task = m_timers.extract(m_timers.begin());
        task.mapped()();
    }
}
