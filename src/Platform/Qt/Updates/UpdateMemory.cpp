#include "Platform/Qt/Updates/UpdateMemory.h"

#include "Platform/OwnFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

// The last second of the year 9999: what lies beyond it is no time of a check.
constexpr double latestTime = 253402300799;
// Longer than this and it is not ours.
constexpr qint64 fileLimit = 64 * 1024;

}  // namespace

QString UpdateMemory::defaultPath() {
    QString stateHome = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(stateHome)) stateHome = QDir::home().filePath(u".local/state"_s);
    return QDir(stateHome).filePath(u"Veyla/updates.json"_s);
}

UpdateMemory::UpdateMemory(QString path) : m_path(std::move(path)) {
    QFile file(m_path);
    // Opening a pipe would wait for somebody to write to it.
    if (!QFileInfo(m_path).isFile() || !file.open(QIODevice::ReadOnly)) return;
    const QJsonObject object = QJsonDocument::fromJson(file.read(fileLimit)).object();
    m_checksAutomatically = object.value("automaticChecks"_L1).toBool(true);
    const QJsonValue lastCheck = object.value("lastCheck"_L1);
    if (lastCheck.toDouble(-1) >= 0 && lastCheck.toDouble() <= latestTime)
        m_lastCheck = std::chrono::sys_seconds(std::chrono::seconds(lastCheck.toInteger()));
    m_skippedVersion = object.value("skippedVersion"_L1).toString();
}

bool UpdateMemory::setChecksAutomatically(bool isOn) {
    m_checksAutomatically = isOn;
    return save();
}

bool UpdateMemory::setLastCheck(std::chrono::sys_seconds time) {
    m_lastCheck = time;
    return save();
}

bool UpdateMemory::setSkippedVersion(const QString& version) {
    m_skippedVersion = version;
    return save();
}

bool UpdateMemory::save() const {
    QJsonObject object{{u"automaticChecks"_s, m_checksAutomatically}};
    if (m_lastCheck) object.insert(u"lastCheck"_s, qint64(m_lastCheck->time_since_epoch().count()));
    if (!m_skippedVersion.isEmpty()) object.insert(u"skippedVersion"_s, m_skippedVersion);
    if (makeOwnFolder(QFileInfo(m_path).path())) return false;
    QSaveFile file(m_path);
    file.setDirectWriteFallback(false);
    return file.open(QIODevice::WriteOnly) &&
           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
           file.write(QJsonDocument(object).toJson()) >= 0 && file.commit();
}
