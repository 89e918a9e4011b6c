#include "Platform/Qt/AutostartEntry.h"

#include "Models/ApplicationIdentifier.h"
#include "Platform/OwnFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <cstdio>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// One argument of the key Exec, as desktop entries want it: quoted, then without field codes,
/// then escaped as every value is.
QByteArray execArgument(const QString& argument) {
    QString quoted = u"\""_s;
    for (const QChar character : argument) {
        if (u"\"`$\\"_s.contains(character)) quoted += u'\\';
        quoted += character;
    }
    quoted += u'"';
    quoted.replace(u'%', u"%%"_s);
    return quoted.replace(u'\\', u"\\\\"_s).replace(u'\n', u"\\n"_s).toUtf8();
}

/// Of the group "Desktop Entry"; empty without that key.
QByteArray valueIn(const QByteArray& text, const QByteArray& key) {
    bool isInGroup = false;
    const auto lines = text.split('\n');
    for (const QByteArray& each : lines) {
        const QByteArray line = each.trimmed();
        if (line.startsWith('[')) isInGroup = line == "[Desktop Entry]";
        const qsizetype separator = line.indexOf('=');
        if (isInGroup && separator > 0 && line.first(separator).trimmed() == key)
            return line.sliced(separator + 1).trimmed();
    }
    return {};
}

QString failure(const QString& what, const QString& path, const QString& reason) {
    return u"Veyla cannot %1 %2 (%3)."_s.arg(what, path, reason);
}

}  // namespace

AutostartEntry::AutostartEntry(const QString& path, const QString& program)
    : m_path(path), m_program(program) {}

AutostartEntry AutostartEntry::ofThisProgram() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    // Qt passes a relative $XDG_CONFIG_HOME on; the base directory rules say to ignore it.
    if (!QDir::isAbsolutePath(folder)) folder = QDir::home().filePath(u".config"_s);
    return {folder + u"/autostart/"_s + applicationIdentifier + u".desktop"_s,
            QCoreApplication::applicationFilePath()};
}

bool AutostartEntry::isEnabled() const {
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    const QByteArray text = file.readAll();
    return !valueIn(text, "Exec").isEmpty() && valueIn(text, "Hidden") != "true" &&
           valueIn(text, "X-GNOME-Autostart-enabled") != "false";
}

std::optional<QString> AutostartEntry::setEnabled(bool isEnabled) {
    return isEnabled ? write() : remove();
}

std::optional<QString> AutostartEntry::write() {
    const QString folder = QFileInfo(m_path).path();
    if (const auto error = makeOwnFolder(folder))
        return failure(u"make the folder"_s, error->path, error->reason);
    // Not QSaveFile: through a link it would replace what that points at, such as the program's own
    // entry among the applications. The name is none that desktops read.
    QTemporaryFile file(m_path + u".XXXXXX"_s);
    const QByteArray bytes = text();
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush())
        return failure(u"write"_s, m_path, file.errorString());
    if (::fsync(file.handle()) != 0 || std::rename(QFile::encodeName(file.fileName()).constData(),
                                                   QFile::encodeName(m_path).constData()) != 0)
        return failure(u"write"_s, m_path, qt_error_string());
    file.setAutoRemove(false);
    return std::nullopt;
}

std::optional<QString> AutostartEntry::remove() {
    QFile file(m_path);
    if (file.remove() || !isEnabled()) return std::nullopt;
    return failure(u"remove"_s, m_path, file.errorString());
}

QByteArray AutostartEntry::text() const {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Veyla\n"
           "Comment=Cover private parts of the screen with floating masks\n"
           "Icon=" +
           QByteArray(applicationIdentifier.data()) +
           "\n"
           "Exec=" +
           execArgument(m_program) +
           " --background\n"
           "Terminal=false\n"
           "X-GNOME-Autostart-enabled=true\n";
}
