#include "App/AppState.h"

#include <utility>

// While nothing is set up, help can help; the walkthrough comes first.
void AppState::evaluateHelpOnLaunch() {
    if (settings.newest().showHelpOnLaunch && hasCompletedOnboarding.newest() &&
        masks.newest().isEmpty() && presets.newest().isEmpty())
        isHelpPresented.set(true);
}

QString AppState::applicationVersion() const {
    return m_platform.applicationVersion.value_or(QStringLiteral("0"));
}

void AppState::evaluateWhatsNewOnLaunch() {
    const QString current = applicationVersion();
    const auto last = settings.newest().lastSeenVersion;
    if (last == current) return;
    if (last && !isHelpPresented.newest()) {
        isWhatsNewPresented.set(true);
        startFetchingChangelog();
    }
    settings.update([&](AppSettings& changed) { changed.lastSeenVersion = current; });
}

void AppState::presentWhatsNew() {
    if (!latestChangelog.newest()) startFetchingChangelog();
    isWhatsNewPresented.set(true);
}

void AppState::dismissWhatsNew() {
    isWhatsNewPresented.set(false);
}

void AppState::dismissHelp() {
    isHelpPresented.set(false);
    hasCompletedOnboarding.set(true);
}

// The sheet opens at once, before the outcome of any fetch.
void AppState::startFetchingChangelog() {
    m_platform.mainLoop.post(m_lifetime.guard([this] { fetchLatestChangelog(); }));
}

void AppState::fetchLatestChangelog() {
    changelogError.set(std::nullopt);
    const auto fetch = std::make_shared<Subscription>();
    m_changelogFetches.insert(fetch);
    *fetch = m_changelogService.fetchLatest(
        [this, weakFetch = std::weak_ptr(fetch)](const ChangelogService::Result& result) {
            m_changelogFetches.erase(weakFetch.lock());
            if (const auto* const release = std::get_if<ChangelogRelease>(&result))
                latestChangelog.set(*release);
            else
                changelogError.set(std::get_if<ChangelogError>(&result)->message());
        });
}

void AppState::startOnboardingIfNeeded() {
    if (hasCompletedOnboarding.newest() || isHelpPresented.newest() ||
        isWhatsNewPresented.newest() || isOnboardingPresented.newest())
        return;
    seedDemoMaskForOnboarding();
    onboardingStepIndex.set(0);
    isOnboardingPresented.set(true);
}

void AppState::replayOnboarding() {
    hasCompletedOnboarding.set(false);
    startOnboardingIfNeeded();
}

void AppState::showNextOnboardingStep() {
    if (!isOnboardingPresented.newest()) return;
    const int next = onboardingStepIndex.newest() + 1;
    if (next < onboardingSteps().size())
        onboardingStepIndex.set(next);
    else
        finishOnboarding();
}

void AppState::finishOnboarding() {
    isOnboardingPresented.set(false);
    onboardingStepIndex.set(0);
    hasCompletedOnboarding.set(true);
}
