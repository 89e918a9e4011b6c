#pragma once

#include "Platform/UpdateFramework.h"
#include "Reactive/Published.h"

/// Finds no updates; records what is asked of it.
class HeadlessUpdateFramework final : public UpdateFramework {
public:
    void setFeedUrl(const std::optional<QUrl>& url) override { m_feedUrl = url; }
    std::optional<QString> start() override;
    Source<bool> canCheckForUpdates() const override { return m_canCheck.source(); }
    void checkForUpdates() override { ++m_checkCount; }

    const std::optional<QUrl>& feedUrl() const { return m_feedUrl; }
    bool isStarted() const { return m_isStarted; }
    int checkCount() const { return m_checkCount; }
    /// Makes the next start fail for that reason.
    void failToStart(const QString& reason) { m_startFailure = reason; }
    void setCanCheck(bool canCheck) { m_canCheck.set(canCheck); }

private:
    std::optional<QUrl> m_feedUrl;
    std::optional<QString> m_startFailure;
    bool m_isStarted = false;
    int m_checkCount = 0;
    Published<bool> m_canCheck{false};
};
