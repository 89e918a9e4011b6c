#pragma once

#include <QString>
#include <QStringList>
#include <variant>

/// How a run of the program ends.
enum class ExitStatus : int { done = 0, nothingToActOn = 1, wrongUsage = 2 };

/// What a command line asks for.
enum class Command {
    start,
    startInBackground,
    createMask,
    toggleMasks,
    showMasks,
    hideMasks,
    toggleEditing,
    toggleDashboard,
    applyPreset,
    undo,
    status,
    quit,
    showHelp,
    showVersion,
};

/// A command line that makes sense.
struct CommandLine {
    Command command = Command::start;
    /// The preset that `applyPreset` names.
    QString presetName;
    /// Whether `status` is wanted as JSON.
    bool isJson = false;

    bool operator==(const CommandLine&) const = default;
};

/// A command line that does not; the message is one line that says why and where to find help.
struct UsageError {
    QString message;

    bool operator==(const UsageError&) const = default;
};

/// Reads the arguments that follow the program's name. Needs no application object. What follows
/// "--" is never taken for an option. "-session ID", with which sessions are restored that a former
/// version was part of, is a start in the background.
std::variant<CommandLine, UsageError> parseCommandLine(const QStringList& arguments);

/// What `--help` prints, without the last line break.
QString commandLineHelp();

/// What `--version` prints, without the line break.
QString commandLineVersion();
