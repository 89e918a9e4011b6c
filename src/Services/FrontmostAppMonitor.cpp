#include "Services/FrontmostAppMonitor.h"

namespace {

QString unknownApp() {
    return QStringLiteral("Unknown App");
}

}  // namespace

FrontmostAppMonitor::FrontmostAppMonitor(Workspace& workspace, Scheduler& scheduler)
    : m_workspace(workspace), m_scheduler(scheduler), m_appName(unknownApp()) {
    if (const auto frontmost = m_workspace.frontmostApplication()) update(*frontmost);
    m_observer = m_workspace.onApplicationActivated(
        [this](const std::optional<RunningApplication>& application) {
            applicationActivated(application);
        });
}

void FrontmostAppMonitor::applicationActivated(
    const std::optional<RunningApplication>& application) {
    m_scheduler.post(m_lifetime.guard([this, application] {
        if (const auto activated = application ? application : m_workspace.frontmostApplication())
            update(*activated);
    }));
}

void FrontmostAppMonitor::update(const RunningApplication& application) {
    m_appName.set(application.localizedName.value_or(unknownApp()));
    m_bundleIdentifier.set(application.bundleIdentifier);
}
