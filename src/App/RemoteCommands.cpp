#include "App/RemoteCommands.h"

#include "App/StatusReport.h"
#include "Models/Json.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <algorithm>
#include <utility>

namespace {

CommandResult nothingToActOn(const QString& reason) {
    return {ExitStatus::nothingToActOn, QString(), reason};
}

CommandResult doneWith(const QString& output) {
    return {ExitStatus::done, output, QString()};
}

}  // namespace

CommandResult alreadyRunning(std::optional<qint64> pid) {
    const QString suffix = pid ? QStringLiteral(" (pid %1)").arg(*pid) : QString();
    return doneWith(QStringLiteral("Veyla is already running%1.").arg(suffix));
}

RemoteCommands::RemoteCommands(AppState& state, std::function<void()> quit)
    : m_state(state), m_quit(std::move(quit)) {}

CommandResult RemoteCommands::perform(const QStringList& arguments) {
    const auto parsed = parseCommandLine(arguments);
    if (const auto* const error = std::get_if<UsageError>(&parsed))
        return {ExitStatus::wrongUsage, QString(), error->message};
    return carryOut(std::get<CommandLine>(parsed));
}

CommandResult RemoteCommands::carryOut(const CommandLine& commandLine) {
    switch (commandLine.command) {
        case Command::start:
            return showDashboard();
        case Command::startInBackground:
            return alreadyRunning(QCoreApplication::applicationPid());
        case Command::createMask:
            m_state.createMask();
            return {};
        case Command::toggleMasks:
            m_state.toggleVisibilityForAllMasks();
            return {};
        case Command::showMasks:
            return setAreMasksVisible(true);
        case Command::hideMasks:
            return setAreMasksVisible(false);
        case Command::toggleEditing:
            m_state.toggleEditing();
            return {};
        case Command::toggleDashboard:
            return toggleDashboard();
        case Command::applyPreset:
            return applyPreset(commandLine.presetName);
        case Command::undo:
            return undo();
        case Command::status:
            return reportStatus(commandLine.isJson);
        case Command::quit:
            m_quit();
            return {};
        case Command::showHelp:
            return doneWith(commandLineHelp());
        case Command::showVersion:
            return doneWith(commandLineVersion());
    }
    return {};
}

CommandResult RemoteCommands::showDashboard() {
    m_state.openDashboardWindow();
    return alreadyRunning(QCoreApplication::applicationPid());
}

// Through the operation, so that the change is announced; not at all when nothing changes.
CommandResult RemoteCommands::setAreMasksVisible(bool areVisible) {
    if (m_state.areMasksVisible.value() != areVisible) m_state.toggleVisibilityForAllMasks();
    return {};
}

CommandResult RemoteCommands::toggleDashboard() {
    if (!m_state.canOpenDashboardWindow())
        return nothingToActOn(QStringLiteral("There is no dashboard to open."));
    m_state.toggleDashboardWindow();
    return {};
}

CommandResult RemoteCommands::applyPreset(const QString& name) {
    const QList<MaskPreset> presets = m_state.presets.value();
    const auto preset = std::find_if(presets.begin(), presets.end(),
                                     [&](const auto& each) { return each.name == name; });
    if (preset == presets.end())
        return nothingToActOn(QStringLiteral("No preset is named %1.").arg(quotedForMessage(name)));
    m_state.applyPreset(*preset);
    return {};
}

CommandResult RemoteCommands::undo() {
    if (!m_state.undoableAct.value())
        return nothingToActOn(QStringLiteral("There is nothing to undo."));
    m_state.undo();
    return {};
}

CommandResult RemoteCommands::reportStatus(bool isJson) const {
    if (!isJson) return doneWith(statusText(m_state));
    try {
        const QJsonDocument document(statusJson(m_state));
        return doneWith(QString::fromUtf8(document.toJson(QJsonDocument::Compact)));
    } catch (const JsonError& error) {
        return nothingToActOn(QStringLiteral("The status cannot be written: ") + error.message());
    }
}
