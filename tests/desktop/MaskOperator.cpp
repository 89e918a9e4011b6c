#include "desktop/MaskOperator.h"

#include "App/WorkspaceLocation.h"
#include "Platform/Qt/Instance/RemoteControlService.h"
#include "Platform/Qt/QtMainLoop.h"
#include "Platform/Qt/StderrLog.h"
#include "Platform/X11/X11Desktop.h"
#include "support/HeadlessPlatform.h"

#include <QApplication>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {

bool operate(AppState& state, const QStringList& arguments) {
    const qsizetype index = arguments.value(1).toInt();
    const QString value = arguments.value(2);
    // By copy: the operations change the lists.
    const auto mask = [&]() -> QUuid { return state.masks.newest().at(index).id; };
    const auto group = [&]() -> QUuid { return state.groups.newest().at(index).id; };
    const QMap<QString, std::function<void()>> operations{
        {u"select"_s, [&] { state.selectMask(mask()); }},
        {u"opacity"_s, [&] { state.setOpacity(mask(), value.toDouble()); }},
        {u"style"_s, [&] { state.setStyle(mask(), *ScreenMask::styleFromStoredText(value)); }},
        {u"color"_s, [&] { state.setColorHex(mask(), value); }},
        {u"visible"_s, [&] { state.setVisibility(mask(), value == "1"_L1); }},
        {u"nudge"_s, [&] { state.nudgeSelectedMask(value.toDouble(), 0); }},
        {u"resize"_s, [&] { state.resizeSelectedMask(value.toDouble(), value.toDouble()); }},
        {u"duplicate"_s, [&] { state.duplicateSelectedMask(); }},
        {u"delete"_s, [&] { state.deleteSelectedMask(); }},
        {u"group-visible"_s, [&] { state.toggleGroupVisibility(group()); }},
    };
    const auto operation = operations.value(arguments.first());
    if (operation) operation();
    return operation != nullptr;
}

}  // namespace

int runMaskOperator(int argc, char** argv) {
    const QApplication application(argc, argv);
    StderrLog log;
    QtMainLoop mainLoop;
    RemoteControlService remoteControl(log);
    QString error;
    const auto desktop = X11Desktop::open({mainLoop, log}, &error);
    if (!desktop) {
        std::fprintf(stderr, "no display: %s\n", error.toLocal8Bit().constData());
        return 1;
    }
    HeadlessDesktop others;
    AppState state({mainLoop, desktop->screens(), desktop->overlaySurfaces(), others.announcer, log,
                    others.applicationHost, others.hotKeyCenter, others.workspace, others.urlLoader,
                    others.updateFramework, others.trayIcon, workspaceDirectory()});
    RemoteCommands commands(state, [&] { mainLoop.quit(0); });
    remoteControl.start([&](const QStringList& arguments) {
        return operate(state, arguments) ? CommandResult() : commands.perform(arguments);
    });
    desktop->overlaySurfaces().releaseLeftovers();
    return mainLoop.run();
}
