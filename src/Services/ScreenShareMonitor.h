#pragma once

#include "Platform/Workspace.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Published.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

/// Publishes whether an application runs that is known to share, record or stream the screen.
/// Whether it does so at the moment is not known.
class ScreenShareMonitor {
public:
    /// Looks at once, and again whenever an application starts or ends. The references must
    /// outlive the monitor.
    ScreenShareMonitor(Workspace& workspace, Scheduler& scheduler);
    ScreenShareMonitor(const ScreenShareMonitor&) = delete;
    ScreenShareMonitor& operator=(const ScreenShareMonitor&) = delete;

    /// Announces changes only.
    const Published<bool>& isLikelyScreenSharing() const { return m_isLikelyScreenSharing; }

private:
    void scheduleRefresh();
    void refresh();

    Workspace& m_workspace;
    Scheduler& m_scheduler;
    Published<bool> m_isLikelyScreenSharing{false};
    Lifetime m_lifetime;
    Subscription m_launchObserver;
    Subscription m_terminateObserver;
};
