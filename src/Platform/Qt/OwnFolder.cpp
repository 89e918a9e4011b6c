#include "Platform/Qt/OwnFolder.h"

#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

bool makeOwnFolder(const QString& path) {
    if (QFileInfo(path).isDir()) return true;
    const QString parent = QFileInfo(path).path();
    return parent != path && makeOwnFolder(parent) &&
           ::mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0;
}
