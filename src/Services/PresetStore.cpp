#include "Services/PresetStore.h"

#include "Models/Json.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QScopeGuard>
#include <QTemporaryFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr mode_t directoryMode = 0700;
constexpr mode_t accessOfOthers = 0077;

/// Why the workspace could not be saved.
struct SaveError {
    QString path;
    QString reason;
};

/// The reason of the call that has just failed.
QString systemReason() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// As above for a call of Qt's, to be used with errno cleared before that call: Qt reports a full
/// disk as "Unknown error", while what Qt refuses by itself leaves no errno.
QString systemReason(const QFileDevice& file) {
    return errno != 0 ? systemReason() : file.errorString();
}

/// Makes a new or replaced entry of the folder survive a crash of the machine. Without a result,
/// since some file systems cannot do it and the entry is there already.
void syncDirectory(const QString& directory) {
    const int descriptor =
        ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

/// Makes the folder, and those missing above it, for the user alone.
void makeDirectory(const QString& directory) {
    const QByteArray path = QFile::encodeName(directory);
    const QString parent = QFileInfo(directory).path();
    int failed = ::mkdir(path.constData(), directoryMode);
    if (failed != 0 && errno == ENOENT && parent != directory) {
        makeDirectory(parent);
        failed = ::mkdir(path.constData(), directoryMode);
    }
    if (failed == 0) {
        syncDirectory(parent);
    } else if (errno != EEXIST) {
        throw SaveError{directory, systemReason()};
    }
}

/// Takes the access of others away from a folder that was there before.
void restrictToOwner(const QString& directory) {
    const QByteArray path = QFile::encodeName(directory);
    struct stat status {};
    if (::stat(path.constData(), &status) != 0) throw SaveError{directory, systemReason()};
    if (!S_ISDIR(status.st_mode)) {
        errno = ENOTDIR;
        throw SaveError{directory, systemReason()};
    }
    // A folder that belongs to someone else cannot be changed; the document is private even so.
    if ((status.st_mode & accessOfOthers) != 0) {
        ::chmod(path.constData(), status.st_mode & ALLPERMS & ~accessOfOthers);
    }
}

/// Replaces the file by one with these bytes, or throws SaveError and leaves it as it was.
void replaceFile(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    errno = 0;
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.setPermissions(ownerOnly) &&
                           file.write(bytes) == bytes.size() && file.flush() &&
                           ::fsync(file.handle()) == 0;
    // QSaveFile synchronises too, but takes no notice of a failure: an error that the disk reports
    // late would then replace a good document by a broken one.
    if (!isWritten || !file.commit()) throw SaveError{path, systemReason(file)};
    syncDirectory(QFileInfo(path).canonicalPath());
}

/// The bytes of a regular file, or nothing when it cannot be read to its end.
std::optional<QByteArray> readFile(const QString& path) {
    // Not blocking, since opening a pipe would otherwise wait for somebody to write to it.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) return std::nullopt;
    const auto closing = qScopeGuard([descriptor] { ::close(descriptor); });
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    QFile file;
    if (!file.open(descriptor, QIODevice::ReadOnly)) return std::nullopt;
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) return std::nullopt;
    return bytes;
}

/// Makes a file with these bytes for the user alone, unless there is one with that name: whole or
/// not at all, so that a half-written copy never bars the way for a good one.
void createFile(const QString& path, const QByteArray& bytes) {
    QTemporaryFile file(path + u".XXXXXX"_s);
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush()) return;
    // A rename of Qt's never replaces a file.
    if (::fsync(file.handle()) != 0 || !file.rename(path)) return;
    file.setAutoRemove(false);
    syncDirectory(QFileInfo(path).path());
}

}  // namespace

PresetStore::PresetStore(QString directory, SystemLog& log)
    : m_directory(std::move(directory)), m_log(log) {}

std::optional<WorkspaceSnapshot> PresetStore::loadWorkspace() {
    const std::optional<QByteArray> text = readFile(workspacePath());
    if (!text) return std::nullopt;
    try {
        return WorkspaceSnapshot::fromJsonText(*text);
    } catch (const JsonError& error) {
        m_log.write(u"Veyla failed to decode workspace (will use defaults): "_s + error.message());
        createFile(backupPath(), *text);
        return std::nullopt;
    }
}

void PresetStore::saveWorkspace(const WorkspaceSnapshot& snapshot) {
    const auto report = [this](const QString& reason) {
        m_log.write(u"Veyla failed to save workspace: "_s + reason);
    };
    try {
        makeDirectory(m_directory);
        restrictToOwner(m_directory);
        replaceFile(workspacePath(), snapshot.toJsonText());
    } catch (const SaveError& error) {
        report(error.path + u": "_s + error.reason);
    } catch (const JsonError& error) {
        report(error.message());
    }
}

QString PresetStore::workspacePath() const {
    return m_directory + u"/workspace.json"_s;
}

QString PresetStore::backupPath() const {
    return m_directory + u"/workspace-backup.json"_s;
}
