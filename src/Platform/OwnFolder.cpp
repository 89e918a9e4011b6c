#include "Platform/OwnFolder.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t accessOfOthers = S_IRWXG | S_IRWXO;
constexpr mode_t writingOfOthers = S_IWGRP | S_IWOTH;

FolderError systemError(const QString& path, int number) {
    return {path, QString::fromLocal8Bit(std::strerror(number))};
}

/// Of what a link points at; nothing when it is no folder.
std::optional<struct stat> folderStatus(const QString& path) {
    struct stat status {};
    const bool isFolder =
        ::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
    return isFolder ? std::optional(status) : std::nullopt;
}

}  // namespace

std::optional<FolderError> makeOwnFolder(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    const QString parent = QFileInfo(path).path();
    int failed = ::mkdir(name.constData(), S_IRWXU);
    if (failed != 0 && errno == ENOENT && parent != path) {
        if (auto error = makeOwnFolder(parent)) return error;
        failed = ::mkdir(name.constData(), S_IRWXU);
    }
    const int reason = errno;
    if (failed == 0) {
        syncFolder(parent);
        return std::nullopt;
    }
    // A file system that cannot be written to refuses to make what it has.
    if (folderStatus(path)) return std::nullopt;
    return systemError(path, reason == EEXIST ? ENOTDIR : reason);
}

bool restrictToOwner(const QString& path) {
    const auto status = folderStatus(path);
    if (status && (status->st_mode & accessOfOthers) != 0)
        ::chmod(QFile::encodeName(path).constData(), status->st_mode & ALLPERMS & ~accessOfOthers);
    return isOwnFolder(path);
}

bool isOwnFolder(const QString& path) {
    const auto status = folderStatus(path);
    return status && status->st_uid == ::geteuid() && (status->st_mode & writingOfOthers) == 0;
}

void syncFolder(const QString& path) {
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}
