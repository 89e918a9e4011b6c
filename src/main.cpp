#include "App/CommandLine.h"
#include "App/RemoteCommands.h"
#include "App/WorkspaceLocation.h"
#include "Platform/Qt/Applications/LocaleText.h"
#include "Platform/Qt/Instance/InstanceLock.h"
#include "Platform/Qt/Instance/RemoteControlClient.h"
#include "Platform/Qt/SilentQtMessages.h"
#include "Platform/WriteSignals.h"
#include "VeylaApp.h"

#include <QCoreApplication>
#include <cstdio>
#include <optional>

namespace {

bool print(std::FILE* stream, const QString& text) {
    if (text.isEmpty()) return true;
    const QByteArray bytes = text.toUtf8() + '\n';
    return std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream) ==
               size_t(bytes.size()) &&
           std::fflush(stream) == 0;
}

int finish(const CommandResult& result) {
    const bool isPrinted = print(stdout, result.output);
    print(stderr, isPrinted ? result.error : QStringLiteral("The output cannot be written."));
    return static_cast<int>(isPrinted ? result.status : ExitStatus::nothingToActOn);
}

CommandResult askRunningVeyla(const InstanceLock& lock, Command command,
                              const QStringList& arguments, int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return RemoteControlClient(lock).perform(command, arguments);
}

/// Makes this process the owner of the workspace; otherwise returns how its run ends.
std::optional<CommandResult> takeWorkspace(InstanceLock& lock, Command command,
                                           const QStringList& arguments, int argc, char** argv) {
    for (;;) {
        const InstanceLock::Outcome outcome = lock.take();
        if (outcome == InstanceLock::Outcome::taken) return std::nullopt;
        if (outcome == InstanceLock::Outcome::unusable)
            return CommandResult{ExitStatus::nothingToActOn, QString(), lock.errorText()};
        if (command == Command::startInBackground && lock.isHeldByAnother())
            return alreadyRunning(lock.ownerPid());

        // One that starts in the background has nothing to ask for.
        if (command == Command::startInBackground) continue;
        const CommandResult result = askRunningVeyla(lock, command, arguments, argc, argv);
        // One that was just ending did not answer, and has made room.
        if (result.status == ExitStatus::done || lock.isHeldByAnother()) return result;
    }
}

/// Answers what a command line can get without anything around it: help, the version, or what is
/// wrong with it.
std::optional<CommandResult> answerAtOnce(const std::variant<CommandLine, UsageError>& parsed) {
    if (const auto* const error = std::get_if<UsageError>(&parsed))
        return CommandResult{ExitStatus::wrongUsage, QString(), error->message};
    switch (std::get_if<CommandLine>(&parsed)->command) {
        case Command::showHelp:
            return CommandResult{ExitStatus::done, commandLineHelp(), QString()};
        case Command::showVersion:
            return CommandResult{ExitStatus::done, commandLineVersion(), QString()};
        default:
            return std::nullopt;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const QStringList arguments = argumentsInLocale(argc, argv);
    const auto parsed = parseCommandLine(arguments);
    if (const auto answer = answerAtOnce(parsed)) return finish(*answer);
    const Command command = std::get_if<CommandLine>(&parsed)->command;

    std::optional<SilentQtMessages> silence(std::in_place);
    InstanceLock lock(workspaceDirectory(), InstanceLock::runtimeDirectory());
    const bool isStart = command == Command::start || command == Command::startInBackground;
    if (!isStart) return finish(askRunningVeyla(lock, command, arguments, argc, argv));
    absorbWriteSignals();
    if (const auto result = takeWorkspace(lock, command, arguments, argc, argv))
        return finish(*result);
    silence.reset();

    const auto start = command == Command::startInBackground ? VeylaApp::Start::inBackground
                                                             : VeylaApp::Start::withDashboard;
    return finish(runVeyla(lock, start, argc, argv));
}
