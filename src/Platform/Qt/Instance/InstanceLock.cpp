#include "Platform/Qt/Instance/InstanceLock.h"

#include "Models/ApplicationIdentifier.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

// Locks of the open file description: unlike process locks they are not lost when some other
// part of the process opens and closes the same file.
struct flock wholeFile() {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

}  // namespace

QString InstanceLock::runtimeDirectory() {
    QString wanted = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QFileInfo info(wanted);
    if (info.isAbsolute() && info.isDir() && info.isWritable()) return wanted;
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

InstanceLock::InstanceLock(const QString& directory)
    : m_path(directory.isEmpty()
                 ? QString()
                 : QDir(directory).filePath(applicationIdentifier + QStringLiteral(".lock"))) {}

InstanceLock::~InstanceLock() {
    release();
}

InstanceLock::Outcome InstanceLock::take() {
    if (m_file >= 0) return Outcome::taken;
    m_errorText.clear();
    if (m_path.isEmpty()) {
        m_errorText = QStringLiteral(
            "Veyla needs a runtime directory for its lock, and $XDG_RUNTIME_DIR names none that "
            "can be used.");
        return Outcome::unusable;
    }
    const int file = open(QFile::encodeName(m_path).constData(),
                          O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (file < 0) return unusable(errno);
    struct flock lock = wholeFile();
    if (fcntl(file, F_OFD_SETLK, &lock) != 0) {
        const int reason = errno;
        close(file);
        return reason == EAGAIN || reason == EACCES ? Outcome::heldByAnother : unusable(reason);
    }
    m_file = file;
    writePid();
    return Outcome::taken;
}

void InstanceLock::release() {
    if (m_file >= 0) close(std::exchange(m_file, -1));
}

bool InstanceLock::isHeldByAnother() const {
    if (m_file >= 0 || m_path.isEmpty()) return false;
    const int file = open(QFile::encodeName(m_path).constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0) return false;
    struct flock lock = wholeFile();
    const bool isHeld = fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    close(file);
    return isHeld;
}

std::optional<qint64> InstanceLock::ownerPid() const {
    if (!isHeldByAnother()) return std::nullopt;
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    bool isNumber = false;
    const qint64 pid = file.readLine().trimmed().toLongLong(&isNumber);
    return isNumber ? std::optional(pid) : std::nullopt;
}

InstanceLock::Outcome InstanceLock::unusable(int errorNumber) {
    m_errorText = QStringLiteral("Veyla cannot use its lock %1: %2.")
                      .arg(m_path, qt_error_string(errorNumber));
    return Outcome::unusable;
}

// Only for others to name the owner; the lock holds whether or not this succeeds.
void InstanceLock::writePid() const {
    const QByteArray pid = QByteArray::number(QCoreApplication::applicationPid()) + '\n';
    if (ftruncate(m_file, 0) != 0 || pwrite(m_file, pid.constData(), size_t(pid.size()), 0) < 0)
        return;
}
