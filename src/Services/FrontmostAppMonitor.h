#pragma once

#include "Platform/Workspace.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Published.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <QString>
#include <optional>

/// Publishes which application is in front, Veyla itself included. Every activation is announced,
/// also one that changes nothing.
class FrontmostAppMonitor {
public:
    /// Starts to follow. The references must outlive the monitor.
    FrontmostAppMonitor(Workspace& workspace, Scheduler& scheduler);
    FrontmostAppMonitor(const FrontmostAppMonitor&) = delete;
    FrontmostAppMonitor& operator=(const FrontmostAppMonitor&) = delete;

    Source<QString> appName() const { return m_appName.source(); }
    /// Absent for an application without one.
    Source<std::optional<QString>> bundleIdentifier() const { return m_bundleIdentifier.source(); }

private:
    void applicationActivated(const std::optional<RunningApplication>& application);
    void update(const RunningApplication& application);

    Workspace& m_workspace;
    Scheduler& m_scheduler;
    Published<QString> m_appName;
    Published<std::optional<QString>> m_bundleIdentifier;
    Lifetime m_lifetime;
    Subscription m_observer;
};
