#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <stdexcept>

/// Empty where there is no such file.
inline QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Makes the folder of the file, too. Throws std::runtime_error when it cannot be written.
inline void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        throw std::runtime_error("cannot write " + path.toStdString());
}

/// The same for a program that its owner can run.
inline void writeProgram(const QString& path, const QByteArray& text) {
    writeFile(path, text);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
