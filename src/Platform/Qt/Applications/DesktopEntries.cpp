#include "Platform/Qt/Applications/DesktopEntries.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

// Entries have a few hundred lines at most, translations included.
constexpr qint64 longestFile = 1 << 20;
// File systems may give two changes in quick succession the same time.
constexpr qint64 coarsestClock = 2000;

QDateTime changeOf(const QString& folder) {
    return QFileInfo(folder).lastModified();
}

}  // namespace

DesktopEntries::DesktopEntries()
    : DesktopEntries(QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation),
                     desktopEntryLanguages(QLocale::system().uiLanguages())) {}

DesktopEntries::DesktopEntries(QStringList folders, QStringList languages)
    : m_folders(std::move(folders)), m_languages(std::move(languages)) {}

std::optional<DesktopEntry> DesktopEntries::byId(const QString& id) {
    readIfChanged();
    return entryAt(m_byId, id);
}

std::optional<DesktopEntry> DesktopEntries::byWindowClass(const QString& windowClass) {
    readIfChanged();
    const auto announced = entryAt(m_byWindowClass, windowClass);
    return announced ? announced : entryAt(m_byId, windowClass);
}

std::optional<DesktopEntry> DesktopEntries::byExecutable(const QString& executable) {
    readIfChanged();
    return entryAt(m_byExecutable, executable);
}

std::optional<DesktopEntry> DesktopEntries::entryAt(const QHash<QString, qsizetype>& index,
                                                    const QString& key) const {
    const qsizetype place = index.value(key.toCaseFolded(), -1);
    if (place < 0 || m_entries[place].isHidden) return std::nullopt;
    return m_entries[place];
}

// A look at a few folders costs less than watching them, wakes nobody, and cannot run out of
// watches.
void DesktopEntries::readIfChanged() {
    const bool isUnchanged =
        m_readAt.isValid() &&
        std::all_of(m_stamps.begin(), m_stamps.end(), [this](const Stamp& stamp) {
            const bool isSettled =
                !stamp.second.isValid() || stamp.second.msecsTo(m_readAt) > coarsestClock;
            return isSettled && changeOf(stamp.first) == stamp.second;
        });
    if (isUnchanged) return;
    m_readAt = QDateTime::currentDateTime();
    m_stamps.clear();
    m_entries.clear();
    m_byId.clear();
    m_byWindowClass.clear();
    m_byExecutable.clear();
    for (const QString& folder : std::as_const(m_folders))
        readFolder(folder);
}

void DesktopEntries::readFolder(const QString& folder) {
    // A folder's own time comes before its contents: what changes meanwhile is then read again.
    m_stamps.append({folder, changeOf(folder)});
    QDirIterator places(folder, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
    const QDir root(folder);
    while (places.hasNext()) {
        const QString path = places.next();
        if (places.fileInfo().isDir()) {
            m_stamps.append({path, changeOf(path)});
        } else if (path.endsWith(".desktop"_L1) && places.fileInfo().size() <= longestFile) {
            addFile(path, root.relativeFilePath(path).chopped(8).replace(u'/', u'-'));
        }
    }
}

void DesktopEntries::addFile(const QString& path, const QString& id) {
    if (m_byId.contains(id.toCaseFolded())) return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return;
    if (const auto entry = parseDesktopEntry(id, file.readAll(), m_languages)) index(*entry);
}

void DesktopEntries::index(const DesktopEntry& entry) {
    const qsizetype place = m_entries.size();
    m_entries.append(entry);
    m_byId.insert(entry.id.toCaseFolded(), place);
    if (entry.isHidden) return;
    const QString windowClass = entry.startupWmClass.toCaseFolded();
    if (!windowClass.isEmpty() && !m_byWindowClass.contains(windowClass))
        m_byWindowClass.insert(windowClass, place);
    const QString executable = entry.executable.toCaseFolded();
    if (executable.isEmpty()) return;
    m_byExecutable.insert(executable, m_byExecutable.contains(executable) ? -1 : place);
}
