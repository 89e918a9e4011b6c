#pragma once

#include "Models/Appcast.h"
#include "Models/ReleaseVersion.h"
#include "Platform/Qt/Updates/PackageFolder.h"
#include "Platform/Qt/Updates/UpdateMemory.h"
#include "Platform/SystemLog.h"
#include "Platform/UpdateFramework.h"
#include "Platform/UpdateUserDriver.h"
#include "Platform/UrlLoader.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Published.h"
#include "Reactive/Scheduler.h"

#include <chrono>
#include <functional>

/// Finds updates in an appcast. The newest release above the running version is offered to the
/// user; its file is fetched into memory, and only once its Ed25519 signature has been verified is
/// it written to disk and handed to the desktop's installer.
///
/// List and files are fetched over https, or over http from this machine itself.
///
/// Checks that run by themselves are a day apart, counted over restarts, and speak only when
/// something newer is found that the user has not skipped; else they leave a line in the log. One
/// timer waits for the next of them, and there is none when they are off.
class AppcastUpdateFramework final : public UpdateFramework {
public:
    struct Setup {
        /// What this build is set up for, on this machine.
        static Setup ofThisBuild();

        QString runningVersion;
        /// The key that releases are signed for, in Base64; empty for none.
        QByteArray publicKey;
        QString memoryPath;
        QString packageFolder;
        std::function<std::chrono::sys_seconds()> now;
        /// Asks the desktop to open the file; false when it cannot.
        std::function<bool(const QString& path)> openPackage;
    };

    static constexpr std::chrono::hours checkInterval{24};
    /// A start is left in peace for so long before a check that is due.
    static constexpr std::chrono::minutes delayAfterStart{1};
    static constexpr std::chrono::seconds feedTimeLimit{30};
    static constexpr std::chrono::hours packageTimeLimit{1};
    /// In bytes.
    static constexpr qint64 feedLimit = 1024 * 1024;
    static constexpr qint64 packageLimit = 256 * 1024 * 1024;

    /// The references must outlive the framework.
    AppcastUpdateFramework(UrlLoader& loader, Scheduler& scheduler, UpdateUserDriver& user,
                           SystemLog& log, Setup setup);
    AppcastUpdateFramework(const AppcastUpdateFramework&) = delete;
    AppcastUpdateFramework& operator=(const AppcastUpdateFramework&) = delete;

    void setFeedUrl(const std::optional<QUrl>& url) override { m_feedUrl = url; }
    /// Fails without a feed that is safe to ask, and without a usable key.
    std::optional<QString> start() override;
    Source<bool> canCheckForUpdates() const override { return m_canCheck.source(); }
    /// While a check, an offer or a download is there already, that is shown again.
    void checkForUpdates() override;

private:
    enum class Phase { stopped, idle, checking, offered, downloading };

    std::optional<QString> reasonNotToStart() const;
    void setPhase(Phase phase);
    void setAutomaticChecks(bool isOn);
    void noteSaving(bool isSaved);
    void scheduleNextCheck(std::chrono::seconds leastDelay);
    void checkByItself();
    void beginCheck();
    void showChecking();
    void cancel();
    void readFeed(const UrlLoader::Result& result);
    void offer(const AppcastItem& item);
    void choose(UpdateChoice choice);
    void download();
    void readPackage(const UrlLoader::Result& result);
    void handOver(const QByteArray& package);
    void finish(UpdateOutcome::Kind kind, const QString& reason = {},
                const QString& packagePath = {});

    UrlLoader& m_loader;
    Scheduler& m_scheduler;
    UpdateUserDriver& m_user;
    SystemLog& m_log;
    Setup m_setup;
    UpdateMemory m_memory;
    PackageFolder m_packages;
    std::optional<QUrl> m_feedUrl;
    std::optional<QByteArray> m_publicKey;
    std::optional<ReleaseVersion> m_runningVersion;
    QString m_whyStopped;
    Phase m_phase = Phase::stopped;
    /// Whether the user waits for the outcome.
    bool m_isUserWaiting = false;
    /// The release that is offered or downloaded.
    AppcastItem m_release;
    Published<bool> m_canCheck{false};
    Subscription m_request;
    Subscription m_nextCheck;
    Lifetime m_lifetime;
};
