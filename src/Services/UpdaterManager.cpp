#include "Services/UpdaterManager.h"

namespace {

std::optional<QUrl> feedUrl() {
    const QUrl url(QStringLiteral(VEYLA_UPDATE_FEED), QUrl::StrictMode);
    return url.isEmpty() || !url.isValid() ? std::nullopt : std::optional(url);
}

}  // namespace

UpdaterManager::UpdaterManager(UpdateFramework& framework) : m_framework(framework) {
    m_framework.setFeedUrl(feedUrl());
    m_framework.start();
    m_canCheckObserver = m_framework.canCheckForUpdates().subscribe(
        [this](bool canCheck) { m_canCheckForUpdates.set(canCheck); });
}
