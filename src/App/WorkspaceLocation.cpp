#include "App/WorkspaceLocation.h"

#include <QDir>
#include <QStandardPaths>

QString workspaceDirectory() {
    QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    // Qt passes a relative $XDG_DATA_HOME on; the base directory rules say to ignore it.
    if (!QDir::isAbsolutePath(dataHome))
        dataHome = QDir::home().filePath(QStringLiteral(".local/share"));
    return QDir(dataHome).filePath(QStringLiteral("Veyla"));
}
