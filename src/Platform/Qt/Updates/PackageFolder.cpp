#include "Platform/Qt/Updates/PackageFolder.h"

#include "Platform/OwnFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <unistd.h>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto nameLimit = 100;

// The list of releases is not signed, so only a harmless part of its words becomes a file name.
QString packageName(const QUrl& address) {
    static const QRegularExpression unusual(u"[^A-Za-z0-9._+~-]+"_s);
    static const QRegularExpression firstCharacters(u"^[.~-]+"_s);
    const QString name =
        address.fileName().replace(unusual, u"_"_s).right(nameLimit).remove(firstCharacters);
    return name.isEmpty() ? u"veyla-update"_s : name;
}

}  // namespace

QString PackageFolder::defaultPath() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation))
        .filePath(u"Veyla/updates"_s);
}

PackageFolder::PackageFolder(QString path) : m_path(std::move(path)) {}

void PackageFolder::removeUnfinished() const {
    removeFiles(u"*.part"_s);
}

QString PackageFolder::keep(const QByteArray& package, const QUrl& address, QString* error) const {
    if (const auto folderError = makeOwnFolder(m_path)) {
        *error = u"The folder %1 cannot be made: %2."_s.arg(folderError->path, folderError->reason);
        return {};
    }
    // Who can write to the folder, or to the one above, can put another package in the place of the
    // verified one before the installer reads it.
    for (const QString& folder : {QFileInfo(m_path).path(), m_path}) {
        if (restrictToOwner(folder)) continue;
        *error = u"The folder %1 does not belong to this user alone."_s.arg(folder);
        return {};
    }
    removeFiles(u"*"_s);
    QString path = QDir(m_path).filePath(packageName(address));
    // Made with mode 0600, and removed by its destructor unless it gets its name.
    QTemporaryFile file(QDir(m_path).filePath(u"XXXXXX.part"_s));
    if (!file.open() || file.write(package) != package.size() || !file.flush() ||
        ::fsync(file.handle()) != 0 || !file.rename(path)) {
        *error = u"The package cannot be written to %1: %2."_s.arg(m_path, file.errorString());
        return {};
    }
    file.setAutoRemove(false);
    return path;
}

void PackageFolder::removeFiles(const QString& pattern) const {
    QDir folder(m_path);
    for (const QString& name :
         folder.entryList({pattern}, QDir::Files | QDir::Hidden | QDir::System))
        folder.remove(name);
}
