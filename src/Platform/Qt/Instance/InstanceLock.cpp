#include "Platform/Qt/Instance/InstanceLock.h"

#include "Models/ApplicationIdentifier.h"
#include "Platform/OwnFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Attempt {
    /// Of the open file that holds the lock, negative without.
    int file = -1;
    /// Why there is none.
    int error = 0;
    bool isHeldByAnother = false;
};

// Locks of the open file description: unlike process locks they are not lost when some other
// part of the process opens and closes the same file.
struct flock wholeFile() {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

int openFolder(const QString& path) {
    return open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

Attempt failed(int error) {
    return {-1, error, false};
}

Attempt refused(int file, int error) {
    close(file);
    return {-1, error, error == EAGAIN || error == EACCES};
}

// Only for others to name the owner; the lock holds whether or not this succeeds.
void writePid(int file) {
    const QByteArray pid = QByteArray::number(QCoreApplication::applicationPid()) + '\n';
    if (ftruncate(file, 0) != 0 || pwrite(file, pid.constData(), size_t(pid.size()), 0) < 0) return;
}

Attempt lockFile(const QString& path) {
    if (path.isEmpty()) return failed(ENOENT);
    const int file = open(QFile::encodeName(path).constData(),
                          O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (file < 0) return failed(errno);
    struct flock lock = wholeFile();
    if (fcntl(file, F_OFD_SETLK, &lock) != 0) return refused(file, errno);
    writePid(file);
    return {file};
}

Attempt lockFolder(const QString& path) {
    const int folder = openFolder(path);
    if (folder < 0) return failed(errno);
    return flock(folder, LOCK_EX | LOCK_NB) == 0 ? Attempt{folder} : refused(folder, errno);
}

bool isFileLocked(const QString& path) {
    const int file = open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0) return false;
    struct flock lock = wholeFile();
    const bool isLocked = fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    close(file);
    return isLocked;
}

// Nothing tells of such a lock but to share it for a moment.
bool isFolderLocked(const QString& path) {
    const int folder = openFolder(path);
    if (folder < 0) return false;
    const bool isLocked = flock(folder, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(folder);
    return isLocked;
}

std::optional<qint64> pidIn(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    bool isNumber = false;
    const qint64 pid = file.readLine().trimmed().toLongLong(&isNumber);
    return isNumber ? std::optional(pid) : std::nullopt;
}

}  // namespace

QString InstanceLock::runtimeDirectory() {
    QString wanted = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (QDir::isAbsolutePath(wanted) && isOwnFolder(wanted)) return wanted;
    QString fallback = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return isOwnFolder(fallback) ? fallback : QString();
}

InstanceLock::InstanceLock(const QString& workspaceDirectory, const QString& runtimeDirectory)
    : m_folder(workspaceDirectory),
      m_workspaceFile(QDir(workspaceDirectory).filePath(QStringLiteral("workspace.lock"))),
      m_runtimeFile(
          runtimeDirectory.isEmpty()
              ? QString()
              : QDir(runtimeDirectory).filePath(applicationIdentifier + QStringLiteral(".lock"))) {}

InstanceLock::~InstanceLock() {
    release();
}

InstanceLock::Outcome InstanceLock::take() {
    if (isTaken()) return Outcome::taken;
    m_errorText.clear();
    const auto folderError = makeOwnFolder(m_folder);
    // The folder comes last, so that those who ask have seen a file that is locked before.
    const std::function<Attempt()> steps[] = {[this] { return lockFile(m_workspaceFile); },
                                              [this] { return lockFile(m_runtimeFile); },
                                              [this] { return lockFolder(m_folder); }};
    for (const auto& step : steps) {
        const Attempt attempt = step();
        if (attempt.isHeldByAnother) {
            release();
            m_errorText.clear();
            return Outcome::heldByAnother;
        }
        if (attempt.file >= 0) m_held.push_back(attempt.file);
        if (attempt.file >= 0 || &step != &steps[0]) continue;
        m_errorText = QStringLiteral("Veyla cannot lock its workspace %1: %2.")
                          .arg(m_workspaceFile,
                               folderError ? folderError->reason : qt_error_string(attempt.error));
    }
    return isTaken() ? Outcome::taken : Outcome::unusable;
}

void InstanceLock::release() {
    for (const int file : m_held)
        close(file);
    m_held.clear();
}

bool InstanceLock::isHeldByAnother() const {
    return !isTaken() && (isFileLocked(m_workspaceFile) || isFileLocked(m_runtimeFile) ||
                          isFolderLocked(m_folder));
}

std::optional<qint64> InstanceLock::ownerPid() const {
    if (isTaken()) return std::nullopt;
    for (const QString& path : {m_workspaceFile, m_runtimeFile})
        if (isFileLocked(path)) return pidIn(path);
    return std::nullopt;
}
