#include "Platform/Headless/HeadlessWorkspace.h"

#include <utility>

Subscription HeadlessWorkspace::onApplicationActivated(
    std::function<void(const std::optional<RunningApplication>&)> callback) {
    return m_applicationActivated.subscribe(
        [this, callback = std::move(callback)] { callback(m_activated); });
}

Subscription HeadlessWorkspace::onApplicationLaunched(std::function<void()> callback) {
    return m_applicationLaunched.subscribe(std::move(callback));
}

Subscription HeadlessWorkspace::onApplicationTerminated(std::function<void()> callback) {
    return m_applicationTerminated.subscribe(std::move(callback));
}

void HeadlessWorkspace::launch(const RunningApplication& application) {
    m_running.append(application);
    tell(m_applicationLaunched);
}

void HeadlessWorkspace::terminate(const RunningApplication& application) {
    m_running.removeOne(application);
    if (m_frontmost == application) m_frontmost.reset();
    tell(m_applicationTerminated);
}

void HeadlessWorkspace::activate(const RunningApplication& application) {
    m_frontmost = application;
    tellActivated(application);
}

void HeadlessWorkspace::activateUntold(const std::optional<RunningApplication>& application) {
    m_frontmost = application;
    tellActivated(std::nullopt);
}

void HeadlessWorkspace::tell(Notifier& notifier) {
    m_scheduler.post(m_lifetime.guard([&notifier] { notifier.notify(); }));
}

void HeadlessWorkspace::tellActivated(const std::optional<RunningApplication>& application) {
    m_scheduler.post(m_lifetime.guard([this, application] {
        m_activated = application;
        m_applicationActivated.notify();
    }));
}
