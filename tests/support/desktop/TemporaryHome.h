#pragma once

#include <QProcessEnvironment>
#include <QTemporaryDir>

/// A home folder with all the folders of the XDG base directories, removed at the end.
class TemporaryHome {
public:
    /// Throws std::runtime_error when the folders cannot be made.
    TemporaryHome();

    QString path() const { return m_folder.path(); }
    QString dataFolder() const { return path() + QStringLiteral("/data"); }
    QString configFolder() const { return path() + QStringLiteral("/config"); }
    QString cacheFolder() const { return path() + QStringLiteral("/cache"); }
    QString stateFolder() const { return path() + QStringLiteral("/state"); }
    /// Mode 0700, as the base directories demand.
    QString runtimeFolder() const { return path() + QStringLiteral("/run"); }

    /// The environment of this process, with what tells of a desktop, a session, Qt's or Veyla's
    /// settings taken out, and this home and the C.UTF-8 locale put in.
    QProcessEnvironment environment() const;

private:
    QTemporaryDir m_folder;
};
