#pragma once

#include "Platform/Qt/Applications/DesktopEntry.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>

/// The applications that are installed, as desktop entries tell. They are read when somebody first
/// asks, and again by the first question after one of their folders has changed. Files that cannot
/// be read are left out. Names are compared without case.
class DesktopEntries {
public:
    /// What the XDG directories and the languages of the user name.
    DesktopEntries();
    /// An entry in an earlier folder hides those of the same id in later ones.
    DesktopEntries(QStringList folders, QStringList languages);

    std::optional<DesktopEntry> byId(const QString& id);
    /// The entry that announces the window class or, failing that, has it for its id.
    std::optional<DesktopEntry> byWindowClass(const QString& windowClass);
    /// The only entry that starts that program; nothing when several do.
    std::optional<DesktopEntry> byExecutable(const QString& executable);

private:
    using Stamp = std::pair<QString, QDateTime>;

    void readIfChanged();
    void readFolder(const QString& folder);
    void addFile(const QString& path, const QString& id);
    void index(const DesktopEntry& entry);
    std::optional<DesktopEntry> entryAt(const QHash<QString, qsizetype>& index,
                                        const QString& key) const;

    QStringList m_folders;
    QStringList m_languages;
    QDateTime m_readAt;
    QList<Stamp> m_stamps;
    QList<DesktopEntry> m_entries;
    // Places in the list; negative where several entries claim the same.
    QHash<QString, qsizetype> m_byId;
    QHash<QString, qsizetype> m_byWindowClass;
    QHash<QString, qsizetype> m_byExecutable;
};
