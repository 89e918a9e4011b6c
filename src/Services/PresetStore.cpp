#include "Services/PresetStore.h"

#include "Models/Json.h"
#include "Platform/OwnFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSet>
#include <QTemporaryFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
/// As many as the system follows.
constexpr int longestChainOfLinks = 40;

/// Why the workspace could not be saved.
struct SaveError {
    QString path;
    QString reason;
};

/// For the call that has just failed.
[[noreturn]] void throwSystemError(const QString& path) {
    throw SaveError{path, QString::fromLocal8Bit(std::strerror(errno))};
}

/// What a chain of links ends at, which may not exist yet; the path itself when it is no link.
QString withoutLinks(const QString& path) {
    QString target = path;
    for (int length = 0; QFileInfo(target).isSymLink(); ++length) {
        if (length == longestChainOfLinks) {
            errno = ELOOP;
            throwSystemError(path);
        }
        target = QFileInfo(target).symLinkTarget();
    }
    return target;
}

bool writeWhole(int descriptor, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), size_t(bytes.size()));
        if (count >= 0) {
            bytes = bytes.sliced(count);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// Replaces the file, also one that may not be written to, by one with these bytes, or throws
/// SaveError and leaves it as it was. The owner of the workspace is the only one to write, so the
/// new file has a fixed name until it takes its place, and what a killed process left of one is
/// replaced, too.
void replaceFile(const QString& path, const QByteArray& bytes) {
    const QString target = withoutLinks(path);
    const QByteArray name = QFile::encodeName(target);
    const QByteArray unfinished = name + ".new";
    ::unlink(unfinished.constData());
    const int descriptor =
        ::open(unfinished.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownerOnly);
    if (descriptor < 0) throwSystemError(path);
    const bool isWritten = writeWhole(descriptor, bytes) && ::fsync(descriptor) == 0;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    if (!isWritten || ::rename(unfinished.constData(), name.constData()) != 0) {
        const SaveError error{path, QString::fromLocal8Bit(std::strerror(errno))};
        ::unlink(unfinished.constData());
        throw error;
    }
    syncFolder(QFileInfo(target).path());
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
    syncFolder(QFileInfo(path).path());
}

/// Gives a mask that has the id of an earlier one an id of its own: by one id, the two would share
/// a window and a frame, and what the second should cover would be seen. Returns their names.
QStringList separateMasks(QList<ScreenMask>& masks) {
    QSet<QUuid> ids;
    QStringList separated;
    for (ScreenMask& mask : masks) {
        if (ids.contains(mask.id)) {
            mask.id = QUuid::createUuid();
            separated.append(mask.name);
        }
        ids.insert(mask.id);
    }
    return separated;
}

}  // namespace

PresetStore::PresetStore(QString directory, SystemLog& log)
    : m_directory(std::move(directory)), m_log(log) {}

std::optional<WorkspaceSnapshot> PresetStore::loadWorkspace() {
    const std::optional<QByteArray> text = readFile(workspacePath());
    if (!text) return std::nullopt;
    try {
        WorkspaceSnapshot snapshot = WorkspaceSnapshot::fromJsonText(*text);
        const auto separated = separateMasks(snapshot.masks);
        for (const QString& name : separated)
            m_log.write(u"Veyla gave the mask "_s + quotedForMessage(name) +
                        u" an id of its own, since an earlier one has the same"_s);
        return snapshot;
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
        if (const auto error = makeOwnFolder(m_directory))
            throw SaveError{error->path, error->reason};
        // One of somebody else's stays as it is; the document is private even so.
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
