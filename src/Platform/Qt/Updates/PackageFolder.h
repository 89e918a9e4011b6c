#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

/// Keeps the package of one release for the desktop's installer. Packages are written whole under
/// a name that nothing takes for a package, and get their own when they are complete.
class PackageFolder {
public:
    /// The folder "Veyla/updates" among the user's caches.
    static QString defaultPath();

    /// Touches nothing yet.
    explicit PackageFolder(QString path);

    /// Removes what a process that ended while it was writing has left.
    void removeUnfinished() const;

    /// Refuses a folder, or one above it, that others can write to and that cannot be kept from
    /// them. Else puts a package there for the user alone, named after the address that it came
    /// from, and removes those from before. The path of it, or empty, with the reason in `error`.
    QString keep(const QByteArray& package, const QUrl& address, QString* error) const;

private:
    void removeFiles(const QString& pattern) const;

    QString m_path;
};
