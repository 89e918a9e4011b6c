#include "desktop/VeylaSession.h"

#include "support/Files.h"
#include "support/desktop/Wait.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace {

// Before the tests take the environment of their own desktop.
const QString program = qEnvironmentVariable("VEYLA_TEST_PROGRAM", QStringLiteral(VEYLA_PROGRAM));

}  // namespace

VeylaSession::VeylaSession(const DesktopSession::Options& options)
    : programPath(program),
      desktop(options),
      environment(desktop.environment()),
      probe(desktop.displayName()),
      input(desktop.displayName()),
      neighbour(desktop.displayName()),
      monitors(desktop.displayName()) {
    workspace.hasCompletedOnboarding = true;
    workspace.settings.showHelpOnLaunch = false;
    workspace.settings.showDashboardOnLaunch = false;
    input.movePointer({0, 0});
}

QUuid VeylaSession::addMask(const Rect& frame, const QColor& color) {
    const ScreenMask mask{.id = QUuid::createUuid(),
                          .name = u"Mask %1"_s.arg(workspace.masks.size() + 1),
                          .frame = frame,
                          .colorHex = color.name(),
                          .groupID = {}};
    workspace.masks.append(mask);
    return mask.id;
}

void VeylaSession::start() {
    writeFile(documentPath(), workspace.toJsonText());
    restart();
}

void VeylaSession::restart() {
    process.reset();
    process = std::make_unique<ChildProcess>(programPath, startArguments, environment);
    requireSoon("the masks are on screen", [&] {
        if (process->isRunning()) return isEveryMaskShownOnce();
        throw std::runtime_error("veyla ended: " + process->standardError().toStdString());
    });
}

ChildProcess::Outcome VeylaSession::run(const QStringList& arguments) {
    ChildProcess command(programPath, arguments, environment);
    auto outcome = command.waitForOutcome();
    if (!outcome.status) throw std::runtime_error("a veyla command does not end");
    return outcome;
}

QJsonObject VeylaSession::status() {
    return QJsonDocument::fromJson(run({u"status"_s, u"--json"_s}).output).object();
}

Rect VeylaSession::frameOf(const QUuid& mask) {
    const QJsonArray masks = status().value("masks"_L1).toArray();
    for (const QJsonValue& entry : masks) {
        if (QUuid(entry["id"_L1].toString()) != mask) continue;
        const QJsonValue frame = entry["frame"_L1];
        return {frame["x"_L1].toDouble(), frame["y"_L1].toDouble(), frame["width"_L1].toDouble(),
                frame["height"_L1].toDouble()};
    }
    return {};
}

QString VeylaSession::documentPath() {
    return desktop.home().dataFolder() + u"/Veyla/workspace.json"_s;
}

WorkspaceSnapshot VeylaSession::document() {
    return WorkspaceSnapshot::fromJsonText(readFile(documentPath()));
}

std::optional<XWindow> VeylaSession::windowOf(const QUuid& mask) const {
    std::optional<XWindow> found;
    for (const XWindow& window : probe.rootChildren()) {
        const auto id = probe.textOf(window.id, u"_VEYLA_MASK_ID"_s);
        if (!id || QUuid(*id) != mask) continue;
        if (found) return std::nullopt;
        found = window;
    }
    return found;
}

QRect VeylaSession::rectOf(const QUuid& mask) const {
    const auto window = windowOf(mask);
    return window ? window->frame : QRect();
}

qsizetype VeylaSession::maskWindowCount() const {
    return probe.windowsWith(u"_VEYLA_MASK_ID"_s).size();
}

bool VeylaSession::isEveryMaskShownOnce() const {
    return maskWindowCount() == workspace.masks.size() &&
           std::all_of(workspace.masks.begin(), workspace.masks.end(), [&](const auto& mask) {
               const auto window = windowOf(mask.id);
               return window && window->isMapped == (mask.isVisible && workspace.areMasksVisible);
           });
}

QColor VeylaSession::pixel(QPoint position) const {
    return Screenshot(probe).pixel(position);
}

bool VeylaSession::isPainted(const QUuid& mask) const {
    const auto entry = std::find_if(workspace.masks.begin(), workspace.masks.end(),
                                    [&](const ScreenMask& each) { return each.id == mask; });
    const QRect rect = rectOf(mask);
    return !rect.isNull() && pixel(rect.center()) == QColor(entry->colorHex);
}

std::optional<int> VeylaSession::quit() {
    run({u"quit"_s});
    return process->waitForExit(defaultWait);
}
