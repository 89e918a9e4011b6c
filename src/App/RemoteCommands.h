#pragma once

#include "App/AppState.h"
#include "App/CommandLine.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

/// What a command came to. The texts have no final line break; empty means nothing to print.
struct CommandResult {
    ExitStatus status = ExitStatus::done;
    QString output;
    /// One line that says why the status is not `done`.
    QString error;

    bool operator==(const CommandResult&) const = default;
};

/// What starting Veyla a second time comes to; `pid` is that of the running one, if known.
CommandResult alreadyRunning(std::optional<qint64> pid);

/// Performs, in the running program, the command lines of later ones.
class RemoteCommands {
public:
    /// `quit` asks the program to end and returns before it does. The references must outlive
    /// the object.
    RemoteCommands(AppState& state, std::function<void()> quit);

    /// Performs the arguments that follow the program's name. They are read again here, so that
    /// a program of another version gets an answer of this one.
    CommandResult perform(const QStringList& arguments);

private:
    CommandResult carryOut(const CommandLine& commandLine);
    CommandResult showDashboard();
    CommandResult setAreMasksVisible(bool areVisible);
    CommandResult toggleDashboard();
    CommandResult applyPreset(const QString& name);
    CommandResult undo();
    CommandResult reportStatus(bool isJson) const;

    AppState& m_state;
    std::function<void()> m_quit;
};
