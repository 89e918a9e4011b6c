#include "Platform/Qt/Applications/ProcessFacts.h"

#include "Platform/Qt/Applications/DesktopEntry.h"

#include <QFile>
#include <QList>
#include <QRegularExpression>
#include <QStringList>
#include <array>
#include <climits>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray pathOf(pid_t process, const char* file) {
    return "/proc/" + QByteArray::number(process) + '/' + file;
}

// Empty when it cannot be read, as with a process that is gone.
QByteArray contentsOf(pid_t process, const char* name) {
    QFile file(QString::fromLatin1(pathOf(process, name)));
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.readAll() : QByteArray();
}

QString fileNameOf(QByteArray path) {
    // A program whose file was replaced while it runs.
    if (path.endsWith(" (deleted)")) path.chop(10);
    return QFile::decodeName(path.mid(path.lastIndexOf('/') + 1));
}

QString executableOf(pid_t process) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length =
        readlink(pathOf(process, "exe").constData(), target.data(), target.size());
    return length > 0 ? fileNameOf(QByteArray(target.data(), length)) : QString();
}

// The rest of the line that starts with the label.
QByteArray valueOf(const QByteArray& lines, const char* label) {
    const qsizetype start = lines.indexOf(label);
    if (start < 0) return QByteArray();
    const qsizetype value = start + static_cast<qsizetype>(qstrlen(label));
    const qsizetype end = lines.indexOf('\n', value);
    return lines.mid(value, end < 0 ? -1 : end - value).trimmed();
}

QString commandNameOf(pid_t process, const QByteArray& status) {
    constexpr qsizetype longestName = 15;
    const QByteArray name = valueOf(status, "Name:");
    QString ownName = QString::fromUtf8(name);
    const bool isInterpreter = isSharedLauncher(ownName);
    if (!isInterpreter && name.size() < longestName) return ownName;
    const QList<QByteArray> arguments = contentsOf(process, "cmdline").split('\0');
    if (isInterpreter) {
        // The kernel names a process after a script, but not when "env" starts the interpreter.
        const QByteArray script = arguments.value(1);
        const bool isPath = script.contains('/') && !script.startsWith('-');
        return isPath ? fileNameOf(script) : ownName;
    }
    for (const QByteArray& argument : arguments)
        if (QString whole = fileNameOf(argument); whole.toUtf8().startsWith(name)) return whole;
    return ownName;
}

// "\x2d" stands for the byte with that number.
QString unescapedUnit(const QString& text) {
    QByteArray bytes;
    const QByteArray escaped = text.toUtf8();
    for (qsizetype i = 0; i < escaped.size(); ++i) {
        bool isNumber = false;
        const int byte =
            escaped.mid(i, 2) == "\\x" ? escaped.mid(i + 2, 2).toInt(&isNumber, 16) : 0;
        bytes += isNumber ? static_cast<char>(byte) : escaped[i];
        if (isNumber) i += 3;
    }
    return QString::fromUtf8(bytes);
}

std::optional<ApplicationScope> applicationOfUnit(const QString& unit) {
    static const QRegularExpression sandbox(u"^app-flatpak-(.+)-[^-]+\\.scope$"_s);
    static const QRegularExpression snap(u"^snap\\.([^.]+)\\.([^.]+?)[-.][0-9a-f-]{36}\\.scope$"_s);
    // app[-LAUNCHER]-ID-RANDOM.scope and app[-LAUNCHER]-ID[@RANDOM].service
    static const QRegularExpression scope(u"^app-(?:[^-]+-)*?([^-]+)-[^-]+\\.scope$"_s);
    static const QRegularExpression service(u"^app-(?:[^-@]+-)*([^-@]+)(?:@.*)?\\.service$"_s);
    if (const auto match = sandbox.match(unit); match.hasMatch())
        return ApplicationScope{unescapedUnit(match.captured(1)), true};
    if (const auto match = snap.match(unit); match.hasMatch())
        return ApplicationScope{match.captured(1) + u'_' + match.captured(2), true};
    for (const auto& form : {scope, service})
        if (const auto match = form.match(unit); match.hasMatch())
            return ApplicationScope{unescapedUnit(match.captured(1)), false};
    return std::nullopt;
}

// The display without the number of its screen: ":0" for "unix:0.0".
QByteArray displayServer(QByteArray display) {
    if (display.startsWith("unix:")) display.remove(0, 4);
    const qsizetype colon = display.lastIndexOf(':');
    const qsizetype screen = display.indexOf('.', colon);
    return colon >= 0 && screen >= 0 ? display.left(screen) : display;
}

}  // namespace

std::optional<ApplicationScope> applicationScopeFrom(const QByteArray& cgroups) {
    for (const QByteArray& line : cgroups.split('\n')) {
        // The one hierarchy of today, or the service manager's among those of the past.
        const bool isManagers = line.startsWith("0::") || line.contains(":name=systemd:");
        if (!isManagers) continue;
        const QStringList names =
            QString::fromUtf8(line.mid(line.indexOf('/'))).split(u'/', Qt::SkipEmptyParts);
        for (auto name = names.rbegin(); name != names.rend(); ++name) {
            // Below its unit an application may make groups of its own.
            if (!name->endsWith(".scope"_L1) && !name->endsWith(".service"_L1)) continue;
            if (auto application = applicationOfUnit(*name)) return application;
            break;
        }
    }
    return std::nullopt;
}

std::optional<ProcessFacts> readProcess(pid_t process) {
    const QByteArray status = contentsOf(process, "status");
    const QByteArray state = valueOf(status, "\nState:");
    if (state.isEmpty() || state.startsWith('Z') || state.startsWith('X')) return std::nullopt;
    ProcessFacts facts;
    facts.user = valueOf(status, "\nUid:").split('\t').first().toUInt();
    facts.executable = executableOf(process);
    facts.commandName = commandNameOf(process, status);
    facts.scope = applicationScopeFrom(contentsOf(process, "cgroup"));
    return facts;
}

bool isOnOtherDisplay(pid_t process, const QByteArray& display) {
    for (const QByteArray& variable : contentsOf(process, "environ").split('\0'))
        if (variable.startsWith("DISPLAY=") && variable.size() > 8)
            return displayServer(variable.mid(8)) != displayServer(display);
    return false;
}
