#include "Platform/Qt/Updates/AppcastUpdateFramework.h"

#include "Platform/OpenSsl/Ed25519.h"
#include "Platform/Qt/SafeAddress.h"

#include <QDesktopServices>
#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using Kind = UpdateOutcome::Kind;

namespace {

constexpr int statusOk = 200;

/// The body of an answer, or in `reason` why there is none.
std::optional<QByteArray> bodyOf(const UrlLoader::Result& result, QString* reason) {
    if (const auto* const error = std::get_if<UrlError>(&result)) {
        *reason = error->message;
        return std::nullopt;
    }
    const auto& response = *std::get_if<UrlResponse>(&result);
    if (response.statusCode != statusOk) {
        *reason = u"The server answered with status %1."_s.arg(response.statusCode.value_or(0));
        return std::nullopt;
    }
    return response.body;
}

}  // namespace

AppcastUpdateFramework::Setup AppcastUpdateFramework::Setup::ofThisBuild() {
    return {
        .runningVersion = QStringLiteral(VEYLA_VERSION),
        .publicKey = QByteArrayLiteral(VEYLA_UPDATE_PUBLIC_KEY),
        .memoryPath = UpdateMemory::defaultPath(),
        .packageFolder = PackageFolder::defaultPath(),
        .now =
            [] {
                return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
            },
        .openPackage =
            [](const QString& path) {
                return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
            }};
}

AppcastUpdateFramework::AppcastUpdateFramework(UrlLoader& loader, Scheduler& scheduler,
                                               UpdateUserDriver& user, SystemLog& log, Setup setup)
    : m_loader(loader),
      m_scheduler(scheduler),
      m_user(user),
      m_log(log),
      m_setup(std::move(setup)),
      m_memory(m_setup.memoryPath),
      m_packages(m_setup.packageFolder),
      m_publicKey(Ed25519::decode(m_setup.publicKey, Ed25519::keySize)),
      m_runningVersion(ReleaseVersion::fromText(m_setup.runningVersion)),
      m_whyStopped(u"The updater has not been started."_s) {}

std::optional<QString> AppcastUpdateFramework::reasonNotToStart() const {
    if (!m_feedUrl) return u"This build of Veyla knows no list of releases."_s;
    if (!isSecureAddress(*m_feedUrl))
        return u"The list of releases of this build is not at an https address."_s;
    if (m_setup.publicKey.isEmpty())
        return u"This build of Veyla has no key to verify releases with."_s;
    if (!m_publicKey) return u"The key of this build to verify releases with is broken."_s;
    if (!m_runningVersion) return u"The version of this build cannot be compared with others."_s;
    return std::nullopt;
}

std::optional<QString> AppcastUpdateFramework::start() {
    if (m_phase != Phase::stopped) return std::nullopt;
    if (auto reason = reasonNotToStart()) {
        m_whyStopped = *reason;
        return reason;
    }
    m_packages.removeUnfinished();
    m_user.setAutomaticChecks(m_memory.checksAutomatically(),
                              m_lifetime.guard([this](bool isOn) { setAutomaticChecks(isOn); }));
    setPhase(Phase::idle);
    scheduleNextCheck(delayAfterStart);
    return std::nullopt;
}

void AppcastUpdateFramework::setPhase(Phase phase) {
    m_phase = phase;
    m_canCheck.set(phase == Phase::idle || phase == Phase::offered);
}

void AppcastUpdateFramework::setAutomaticChecks(bool isOn) {
    noteSaving(m_memory.setChecksAutomatically(isOn));
    scheduleNextCheck(delayAfterStart);
}

void AppcastUpdateFramework::noteSaving(bool isSaved) {
    if (!isSaved) m_log.write(u"Veyla failed to save "_s + m_setup.memoryPath);
}

void AppcastUpdateFramework::scheduleNextCheck(std::chrono::seconds leastDelay) {
    m_nextCheck.reset();
    if (!m_memory.checksAutomatically()) return;
    std::chrono::seconds delay = leastDelay;
    // Should the clock have been put back, the last check may lie in the future.
    if (const auto lastCheck = m_memory.lastCheck())
        delay = std::clamp<std::chrono::seconds>(*lastCheck + checkInterval - m_setup.now(),
                                                 leastDelay, checkInterval);
    m_nextCheck = m_scheduler.after(delay, m_lifetime.guard([this] { checkByItself(); }));
}

void AppcastUpdateFramework::checkByItself() {
    if (m_phase != Phase::idle) {
        scheduleNextCheck(checkInterval);
        return;
    }
    m_isUserWaiting = false;
    beginCheck();
}

void AppcastUpdateFramework::checkForUpdates() {
    if (m_phase == Phase::stopped) {
        m_user.showOutcome({.kind = Kind::cannotCheck, .reason = m_whyStopped});
    } else if (m_phase == Phase::checking && !m_isUserWaiting) {
        m_isUserWaiting = true;
        showChecking();
    } else if (m_phase != Phase::idle) {
        m_user.bringToFront();
    } else {
        m_isUserWaiting = true;
        showChecking();
        beginCheck();
    }
}

void AppcastUpdateFramework::showChecking() {
    m_user.showChecking(m_lifetime.guard([this] { cancel(); }));
}

void AppcastUpdateFramework::cancel() {
    m_request.reset();
    m_user.dismiss();
    setPhase(Phase::idle);
}

void AppcastUpdateFramework::beginCheck() {
    // Remembered before it is made: checks must not become more frequent when the program ends in
    // the middle of each, or when the disk is full.
    const bool isRemembered = m_memory.setLastCheck(m_setup.now());
    noteSaving(isRemembered);
    scheduleNextCheck(checkInterval);
    if (!isRemembered && !m_isUserWaiting) return;
    m_release = {};
    setPhase(Phase::checking);
    m_request = m_loader.load({*m_feedUrl, {}, feedTimeLimit, feedLimit},
                              [this](const UrlLoader::Result& result) { readFeed(result); });
}

void AppcastUpdateFramework::readFeed(const UrlLoader::Result& result) {
    QString reason;
    const auto xml = bodyOf(result, &reason);
    if (!xml) {
        finish(Kind::checkFailed, reason);
        return;
    }
    try {
        const Appcast appcast = Appcast::fromXml(*xml);
        const AppcastItem* const newest = appcast.newestAbove(*m_runningVersion);
        if (newest == nullptr) {
            finish(Kind::upToDate);
        } else {
            offer(*newest);
        }
    } catch (const AppcastError& error) {
        finish(Kind::checkFailed, error.message);
    }
}

// What could not be installed in the end is not offered in the first place.
void AppcastUpdateFramework::offer(const AppcastItem& item) {
    m_release = item;
    if (!item.enclosure || item.enclosure->url.isEmpty()) {
        finish(Kind::checkFailed, u"There is no package of it to download."_s);
    } else if (!isSecureAddress(item.enclosure->url)) {
        finish(Kind::checkFailed, u"Its package is not at an https address."_s);
    } else if (item.enclosure->length.value_or(0) > packageLimit) {
        finish(Kind::checkFailed, u"Its package is too large."_s);
    } else if (item.enclosure->signature.isEmpty()) {
        finish(Kind::badSignature, u"The release is not signed."_s);
    } else if (!m_isUserWaiting && item.version == m_memory.skippedVersion()) {
        finish(Kind::upToDate);
    } else {
        setPhase(Phase::offered);
        m_user.showOffer({item.displayVersion(), m_setup.runningVersion, item.notes},
                         m_isUserWaiting,
                         m_lifetime.guard([this](UpdateChoice choice) { choose(choice); }));
    }
}

void AppcastUpdateFramework::choose(UpdateChoice choice) {
    if (choice == UpdateChoice::install) {
        download();
        return;
    }
    if (choice == UpdateChoice::skip) noteSaving(m_memory.setSkippedVersion(m_release.version));
    m_user.dismiss();
    setPhase(Phase::idle);
}

void AppcastUpdateFramework::download() {
    m_isUserWaiting = true;
    setPhase(Phase::downloading);
    m_user.showDownload(m_release.displayVersion(), m_lifetime.guard([this] { cancel(); }));
    const AppcastEnclosure& enclosure = *m_release.enclosure;
    m_request = m_loader.load(
        {enclosure.url, {}, packageTimeLimit, enclosure.length.value_or(packageLimit)},
        [this](const UrlLoader::Result& result) { readPackage(result); },
        [this, length = enclosure.length](qint64 received, std::optional<qint64> total) {
            m_user.showProgress(received, total ? total : length);
        });
}

void AppcastUpdateFramework::readPackage(const UrlLoader::Result& result) {
    QString reason;
    const auto package = bodyOf(result, &reason);
    const AppcastEnclosure& enclosure = *m_release.enclosure;
    if (!package) {
        finish(Kind::downloadFailed, reason);
        return;
    }
    if (enclosure.length.value_or(package->size()) != package->size()) {
        finish(Kind::downloadFailed, u"The package is shorter than announced."_s);
        return;
    }
    const auto signature = Ed25519::decode(enclosure.signature, Ed25519::signatureSize);
    if (!signature || !Ed25519::isSigned(*package, *signature, *m_publicKey)) {
        finish(Kind::badSignature, u"The signature of the package is wrong."_s);
        return;
    }
    handOver(*package);
}

void AppcastUpdateFramework::handOver(const QByteArray& package) {
    QString error;
    const QString path = m_packages.keep(package, m_release.enclosure->url, &error);
    if (path.isEmpty()) {
        finish(Kind::cannotKeep, error);
    } else {
        finish(m_setup.openPackage(path) ? Kind::handedOver : Kind::notOpened, {}, path);
    }
}

void AppcastUpdateFramework::finish(Kind kind, const QString& reason, const QString& packagePath) {
    const QString version =
        kind == Kind::upToDate ? m_setup.runningVersion : m_release.displayVersion();
    setPhase(Phase::idle);
    if (m_isUserWaiting) {
        m_user.showOutcome({kind, version, reason, packagePath});
    } else if (!reason.isEmpty()) {
        m_log.write(u"Veyla failed to check for updates: "_s + reason);
    }
}
