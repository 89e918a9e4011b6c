#include "VeylaApp.h"

#include "App/WorkspaceLocation.h"
#include "Platform/Qt/AccessibleIdentifiers.h"
#include "Platform/Qt/AppcastUpdateFramework.h"
#include "Platform/Qt/AtSpiAnnouncer.h"
#include "Platform/Qt/OverlayAccessibility.h"
#include "Platform/Qt/QtApplicationHost.h"
#include "Platform/Qt/QtMainLoop.h"
#include "Platform/Qt/QtUpdateDialogs.h"
#include "Platform/Qt/QtUrlLoader.h"
#include "Platform/Qt/SessionBus.h"
#include "Platform/Qt/StderrLog.h"
#include "Platform/X11/X11Desktop.h"
#include "Views/Components/AccessibleElement.h"
#include "Views/ContentView.h"
#include "Views/Design/ApplicationLook.h"

#include <QApplication>
#include <memory>

namespace {

// Qt reads these when the application object is made.
void prepareToolkit() {
    SessionBus::keepFromStarting();
    // Screen readers that come later would not find Veyla otherwise.
    qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    // Masks are windows of the X server; the toolkit must be on the same one.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Veyla"));
    QGuiApplication::setDesktopFileName(QStringLiteral("app.veyla.Veyla"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

// The toolkit aborts where there is no display, so this is asked first.
bool hasDisplay(int argc, char** argv, QString* error) {
    const QCoreApplication application(argc, argv);
    return XcbConnection::open(error) != nullptr;
}

CommandResult noDisplay(const QString& reason) {
    return {ExitStatus::nothingToActOn, QString(),
            QStringLiteral("Veyla finds no display to show masks on: ") + reason};
}

}  // namespace

VeylaApp::VeylaApp(const AppPlatform& platform, RemoteControlService& remoteControl, Start start)
    : m_mainLoop(platform.mainLoop),
      m_state(platform),
      m_menuCommands(m_state, nullptr),
      m_commands(m_state, [this] { m_mainLoop.quit(0); }),
      m_signalWatcher([this] { m_mainLoop.quit(0); }) {
    remoteControl.start(
        [this](const QStringList& arguments) { return m_commands.perform(arguments); });
    m_state.setOpenWindowAction([this](QLatin1StringView) { dashboardWindow().show(); });
    if (start == Start::inBackground) {
        m_state.startedWithoutDashboard();
        return;
    }
    // Decided before the window is shown, so that one that is not wanted does not flash.
    dashboardWindow();
    m_state.handleDashboardWindowAppearance();
}

VeylaApp::~VeylaApp() = default;

ContentView& VeylaApp::dashboardWindow() {
    if (!m_dashboardWindow) {
        m_dashboardWindow = std::make_unique<ContentView>(m_state, m_mainLoop, m_menuCommands,
                                                          [this] { m_mainLoop.quit(0); });
    }
    return *m_dashboardWindow;
}

int VeylaApp::run() {
    return m_mainLoop.run();
}

CommandResult runVeyla(InstanceLock& lock, VeylaApp::Start start, int argc, char** argv) {
    QString error;
    if (!hasDisplay(argc, argv, &error)) return noDisplay(error);

    prepareToolkit();
    QApplication application(argc, argv);
    applyVeylaLook(application);
    installAccessibleElements();
    StderrLog log;
    QtMainLoop mainLoop;
    RemoteControlService remoteControl(log);
    int status = 0;
    {
        const AccessibleIdentifiers identifiers;
        OverlayAccessibility accessibility;
        const auto desktop = X11Desktop::open(mainLoop, log, &accessibility, &error);
        if (!desktop) return noDisplay(error);
        AtSpiAnnouncer announcer;
        QtApplicationHost applicationHost(desktop->windowManagement());
        QtUrlLoader urlLoader(mainLoop);
        QtUpdateDialogs updateDialogs;
        AppcastUpdateFramework updateFramework(urlLoader, mainLoop, updateDialogs, log,
                                               AppcastUpdateFramework::Setup::ofThisBuild());
        VeylaApp app({mainLoop, desktop->screens(), desktop->overlaySurfaces(), announcer, log,
                      applicationHost, desktop->hotKeyCenter(), desktop->workspace(), urlLoader,
                      updateFramework, workspaceDirectory()},
                     remoteControl, start);
        desktop->overlaySurfaces().releaseLeftovers();
        const Subscription connectionLost = desktop->connection().onConnectionLost([&] {
            log.write(QStringLiteral("Veyla has lost the X server, and its masks with it"));
            mainLoop.quit(static_cast<int>(ExitStatus::nothingToActOn));
        });
        status = app.run();
    }
    lock.release();
    return {static_cast<ExitStatus>(status), QString(), QString()};
}
