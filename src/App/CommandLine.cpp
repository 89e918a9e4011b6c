#include "App/CommandLine.h"

#include "Models/Json.h"

#include <QCommandLineParser>
#include <algorithm>
#include <array>

namespace {

struct CommandRow {
    Command command;
    const char* name;
    /// The argument that the command needs, empty for none.
    const char* argument;
    const char* summary;
};

struct OptionRow {
    const char* shortName;
    const char* longName;
    const char* summary;
};

constexpr std::array commandRows{
    CommandRow{Command::createMask, "create-mask", "", "create a mask at the pointer"},
    CommandRow{Command::toggleMasks, "toggle-masks", "", "hide all masks, or show them again"},
    CommandRow{Command::showMasks, "show-masks", "", "show all masks"},
    CommandRow{Command::hideMasks, "hide-masks", "", "hide all masks"},
    CommandRow{Command::toggleEditing, "toggle-editing", "", "lock or unlock editing on screen"},
    CommandRow{Command::toggleDashboard, "toggle-dashboard", "", "open or hide the dashboard"},
    CommandRow{Command::applyPreset, "apply-preset", "NAME", "replace the masks with a preset's"},
    CommandRow{Command::undo, "undo", "", "undo the last deletion or loading"},
    CommandRow{Command::status, "status", "", "print what Veyla is doing"},
    CommandRow{Command::quit, "quit", "", "end the running Veyla"},
};

constexpr OptionRow backgroundOption{"", "background", "start without opening the dashboard"};
constexpr OptionRow jsonOption{"", "json", "with status: print one JSON object"};
constexpr OptionRow helpOption{"h", "help", "print this help"};
constexpr OptionRow versionOption{"v", "version", "print the version"};
constexpr std::array optionRows{backgroundOption, jsonOption, helpOption, versionOption};

QString text(const char* latin1) {
    return QString::fromLatin1(latin1);
}

UsageError usageError(const QString& what) {
    return {what + QStringLiteral(" Try \"veyla --help\".")};
}

bool isSet(const QCommandLineParser& parser, const OptionRow& option) {
    return parser.isSet(text(option.longName));
}

CommandLine withoutArguments(Command command) {
    return {command, QString(), false};
}

UsageError parserError(const QCommandLineParser& parser) {
    const QStringList unknown = parser.unknownOptionNames();
    if (unknown.isEmpty()) return usageError(parser.errorText());
    const QString& name = unknown.first();
    const QString dashes = name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--");
    return usageError(QStringLiteral("Unknown option %1.").arg(quotedForMessage(dashes + name)));
}

std::variant<CommandLine, UsageError> readCommand(const CommandRow& row, const QStringList& rest,
                                                  bool isJson) {
    const QString name = text(row.name);
    const QString argument = text(row.argument);
    const bool needsArgument = !argument.isEmpty();
    if (needsArgument && rest.isEmpty())
        return usageError(QStringLiteral("The command %1 needs a %2.").arg(name, argument));
    if (const qsizetype expected = needsArgument ? 1 : 0; rest.size() > expected) {
        return usageError(QStringLiteral("Unexpected argument %1 after %2.")
                              .arg(quotedForMessage(rest.at(expected)), name));
    }
    if (isJson && row.command != Command::status)
        return usageError(QStringLiteral("The option --json goes with status only."));
    return CommandLine{row.command, needsArgument ? rest.first() : QString(), isJson};
}

QString helpRow(const QString& label, const char* summary) {
    return QStringLiteral("  %1  %2\n").arg(label, -21).arg(text(summary));
}

/// Takes out the argument with which session managers restore a program, and its value. Whether it
/// was there.
bool takeSession(QStringList& arguments) {
    const QString option = QStringLiteral("-session");
    const qsizetype end = arguments.indexOf(QStringLiteral("--"));
    const auto isBeforeEnd = [&](qsizetype index) {
        return index >= 0 && (end < 0 || index < end);
    };
    if (const qsizetype index = arguments.indexOf(option);
        isBeforeEnd(index) && index + 1 < arguments.size()) {
        arguments.remove(index, 2);
        return true;
    }
    return false;
}

}  // namespace

std::variant<CommandLine, UsageError> parseCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    for (const OptionRow& row : optionRows) {
        QStringList names{text(row.longName)};
        if (*row.shortName != '\0') names.append(text(row.shortName));
        parser.addOption(QCommandLineOption(names));
    }
    QStringList given = arguments;
    const bool isRestored = takeSession(given);
    if (!parser.parse(QStringList{QStringLiteral("veyla")} + given)) return parserError(parser);
    if (isSet(parser, helpOption)) return withoutArguments(Command::showHelp);
    if (isSet(parser, versionOption)) return withoutArguments(Command::showVersion);

    const bool isBackground = isRestored || isSet(parser, backgroundOption);
    const bool isJson = isSet(parser, jsonOption);
    QStringList rest = parser.positionalArguments();
    if (rest.isEmpty()) {
        if (isJson) return usageError(QStringLiteral("The option --json goes with status only."));
        return withoutArguments(isBackground ? Command::startInBackground : Command::start);
    }

    const QString name = rest.takeFirst();
    const auto* const row = std::find_if(commandRows.begin(), commandRows.end(),
                                         [&](const auto& each) { return name == text(each.name); });
    if (row == commandRows.end())
        return usageError(QStringLiteral("Unknown command %1.").arg(quotedForMessage(name)));
    if (isBackground)
        return usageError(QStringLiteral("The option --background goes with no command."));
    return readCommand(*row, rest, isJson);
}

QString commandLineHelp() {
    QString help = QStringLiteral(
        "Usage: veyla [--background]\n"
        "       veyla COMMAND\n"
        "\n"
        "Veyla floats masks above all windows, so that parts of the screen stay private.\n"
        "Without a command it starts, or shows the dashboard of the Veyla that is running.\n"
        "\n"
        "Commands for the running Veyla:\n");
    for (const CommandRow& row : commandRows) {
        const QString label = text(row.name) + QLatin1Char(' ') + text(row.argument);
        help += helpRow(label.trimmed(), row.summary);
    }
    help += QStringLiteral("\nOptions:\n");
    for (const OptionRow& row : optionRows) {
        const QString shortName = text(row.shortName);
        const QString lead =
            shortName.isEmpty() ? QString() : QStringLiteral("-%1, ").arg(shortName);
        help += helpRow(lead + QStringLiteral("--") + text(row.longName), row.summary);
    }
    help += QStringLiteral(
        "\n"
        "A preset name that starts with \"-\" goes after \"--\": veyla apply-preset -- -name\n"
        "\n"
        "Exit status: 0 done, 1 nothing to act on, 2 wrong usage.");
    return help;
}

QString commandLineVersion() {
    return QStringLiteral("Veyla " VEYLA_VERSION);
}
