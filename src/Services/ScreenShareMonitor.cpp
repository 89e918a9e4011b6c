#include "Services/ScreenShareMonitor.h"

#include <QLatin1StringView>
#include <algorithm>

namespace {

// The identities of programs that share, record or stream the screen, compared as prefixes without
// regard to case. The workspace gives its own programs of that kind one of these.
constexpr QLatin1StringView captureBundlePrefixes[] = {
    QLatin1StringView("us.zoom.xos"),
    QLatin1StringView("com.microsoft.teams"),
    QLatin1StringView("com.microsoft.teams2"),
    QLatin1StringView("com.apple.screensharing"),
    QLatin1StringView("com.apple.ScreenSharing"),
    QLatin1StringView("com.apple.QuickTimePlayerX"),
    QLatin1StringView("com.obsproject.obs-studio"),
    QLatin1StringView("com.cisco.webexmeetingsapp"),
    QLatin1StringView("com.webex.meetingmanager"),
    QLatin1StringView("com.loom.desktop"),
    QLatin1StringView("com.gotomeeting.GoToMeeting"),
    QLatin1StringView("tv.parsec.www"),
};

bool canCaptureScreen(const RunningApplication& application) {
    const auto& identifier = application.bundleIdentifier;
    return identifier && std::any_of(std::begin(captureBundlePrefixes),
                                     std::end(captureBundlePrefixes), [&](auto prefix) {
                                         return identifier->startsWith(prefix, Qt::CaseInsensitive);
                                     });
}

}  // namespace

ScreenShareMonitor::ScreenShareMonitor(Workspace& workspace, Scheduler& scheduler)
    : m_workspace(workspace), m_scheduler(scheduler) {
    refresh();
    m_launchObserver = m_workspace.onApplicationLaunched([this] { scheduleRefresh(); });
    m_terminateObserver = m_workspace.onApplicationTerminated([this] { scheduleRefresh(); });
}

void ScreenShareMonitor::scheduleRefresh() {
    m_scheduler.post(m_lifetime.guard([this] { refresh(); }));
}

void ScreenShareMonitor::refresh() {
    const auto running = m_workspace.runningApplications();
    const bool isSharing = std::any_of(running.begin(), running.end(), canCaptureScreen);
    if (isSharing != m_isLikelyScreenSharing.newest()) m_isLikelyScreenSharing.set(isSharing);
}
