#pragma once

#include "Platform/Workspace.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Notifier.h"
#include "Reactive/Scheduler.h"

/// Applications that come, go and change places as their owner says. What happens is told in the
/// next turn.
class HeadlessWorkspace final : public Workspace {
public:
    explicit HeadlessWorkspace(Scheduler& scheduler) : m_scheduler(scheduler) {}

    std::optional<RunningApplication> frontmostApplication() const override { return m_frontmost; }
    QList<RunningApplication> runningApplications() const override { return m_running; }
    Subscription onApplicationActivated(
        std::function<void(const std::optional<RunningApplication>&)> callback) override;
    Subscription onApplicationLaunched(std::function<void()> callback) override;
    Subscription onApplicationTerminated(std::function<void()> callback) override;

    void launch(const RunningApplication& application);
    void terminate(const RunningApplication& application);
    /// Brings an application to the front; it need not be running.
    void activate(const RunningApplication& application);
    /// The same, but told without saying which application it is.
    void activateUntold(const std::optional<RunningApplication>& application);

private:
    void tell(Notifier& notifier);
    void tellActivated(const std::optional<RunningApplication>& application);

    Scheduler& m_scheduler;
    std::optional<RunningApplication> m_frontmost;
    QList<RunningApplication> m_running;
    std::optional<RunningApplication> m_activated;
    Notifier m_applicationActivated;
    Notifier m_applicationLaunched;
    Notifier m_applicationTerminated;
    Lifetime m_lifetime;
};
