#include "Platform/Qt/Applications/DesktopEntry.h"

#include <QByteArrayView>
#include <QFileInfo>
#include <QHash>
#include <QProcess>
#include <QRegularExpression>
#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

using Keys = QHash<QByteArray, QByteArray>;

bool isOfUse(QByteArrayView key) {
    constexpr std::array<QByteArrayView, 4> whole{"Type", "Hidden", "Exec", "StartupWMClass"};
    return key.startsWith("Name") || std::find(whole.begin(), whole.end(), key) != whole.end();
}

// The lines of the group "Desktop Entry" that matter here, which are few: most are translations.
// The first of two lines with the same key counts.
Keys keysOf(QByteArrayView text) {
    Keys keys;
    bool isInGroup = false;
    while (!text.isEmpty()) {
        const qsizetype end = text.indexOf('\n');
        const QByteArrayView line = text.first(end < 0 ? text.size() : end).trimmed();
        text = end < 0 ? QByteArrayView() : text.sliced(end + 1);
        if (line.startsWith('[')) {
            if (isInGroup) break;
            isInGroup = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype separator = line.indexOf('=');
        if (!isInGroup || separator <= 0) continue;
        const QByteArrayView key = line.first(separator).trimmed();
        if (!isOfUse(key)) continue;
        const QByteArray name = key.toByteArray();
        if (!keys.contains(name))
            keys.insert(name, line.sliced(separator + 1).trimmed().toByteArray());
    }
    return keys;
}

QString unescaped(const QByteArray& bytes) {
    const QString value = QString::fromUtf8(bytes);
    QString text;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != u'\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        switch (value[++i].unicode()) {
            case u's':
                text += u' ';
                break;
            case u'n':
                text += u'\n';
                break;
            case u't':
                text += u'\t';
                break;
            case u'r':
                text += u'\r';
                break;
            default:
                text += value[i];
        }
    }
    return text;
}

QString nameIn(const Keys& keys, const QStringList& languages) {
    for (const QString& language : languages) {
        const QByteArray name =
            keys.value(language.isEmpty() ? "Name" : "Name[" + language.toUtf8() + ']');
        if (!name.isEmpty()) return unescaped(name);
    }
    return unescaped(keys.value("Name"));
}

QString executableOf(const QString& command) {
    QStringList words = QProcess::splitCommand(command);
    const auto isEnvironment = [](const QString& word) {
        return word == "env"_L1 || word == "/usr/bin/env"_L1 || word.contains(u'=');
    };
    while (!words.isEmpty() && isEnvironment(words.first()))
        words.removeFirst();
    if (words.isEmpty()) return QString();
    const QString program = QFileInfo(words.first()).fileName();
    return isSharedLauncher(program) ? QString() : program;
}

}  // namespace

bool isSharedLauncher(const QString& program) {
    static const QRegularExpression shared(
        u"^(flatpak|snap|bash|dash|sh|perl|ruby|node|java|mono|wine|electron|gjs|gjs-console|"
        "python[0-9.]*|electron[0-9]*|pkexec|sudo|dbus-launch|xdg-open|gtk-launch)$"_s);
    return shared.match(program).hasMatch();
}

std::optional<DesktopEntry> parseDesktopEntry(const QString& id, const QByteArray& text,
                                              const QStringList& languages) {
    const Keys keys = keysOf(text);
    if (keys.value("Hidden") == "true")
        return DesktopEntry{
            .id = id, .name = {}, .startupWmClass = {}, .executable = {}, .isHidden = true};
    if (keys.value("Type") != "Application") return std::nullopt;
    const QString name = nameIn(keys, languages);
    if (name.isEmpty()) return std::nullopt;
    return DesktopEntry{.id = id,
                        .name = name,
                        .startupWmClass = unescaped(keys.value("StartupWMClass")),
                        .executable = executableOf(unescaped(keys.value("Exec")))};
}

QStringList desktopEntryLanguages(const QStringList& uiLanguages) {
    constexpr std::array<std::pair<QLatin1StringView, QLatin1StringView>, 3> modifiers{
        {{"Latn"_L1, "@latin"_L1}, {"Cyrl"_L1, "@cyrillic"_L1}, {"Deva"_L1, "@devanagari"_L1}}};
    QStringList languages;
    const auto add = [&](const QString& language) {
        if (!languages.contains(language)) languages.append(language);
    };
    for (const QString& tag : uiLanguages) {
        const QStringList parts = tag.split(u'-');
        const QString& language = parts.first();
        QString country;
        QString modifier;
        for (const QString& part : parts.mid(1)) {
            if (part.size() != 4) country = u'_' + part;
            for (const auto& [script, name] : modifiers)
                if (part == script) modifier = name;
        }
        if (!modifier.isEmpty()) {
            add(language + country + modifier);
            add(language + modifier);
        }
        if (language == "C"_L1) {
            add(QString());
            continue;
        }
        add(language + country);
        add(language);
        if (language == "en"_L1) add(QString());
    }
    return languages;
}
