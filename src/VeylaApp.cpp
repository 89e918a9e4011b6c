#include "VeylaApp.h"

#include "App/WorkspaceLocation.h"
#include "Models/ApplicationIdentifier.h"
#include "Platform/Qt/Accessibility/AccessibleIdentifiers.h"
#include "Platform/Qt/Accessibility/AtSpiAnnouncer.h"
#include "Platform/Qt/Accessibility/OverlayAccessibility.h"
#include "Platform/Qt/AutostartEntry.h"
#include "Platform/Qt/Instance/SignalWatcher.h"
#include "Platform/Qt/PortalSettings.h"
#include "Platform/Qt/QtApplicationHost.h"
#include "Platform/Qt/QtMainLoop.h"
#include "Platform/Qt/QtUrlLoader.h"
#include "Platform/Qt/SessionBus.h"
#include "Platform/Qt/SessionLock.h"
#include "Platform/Qt/StderrLog.h"
#include "Platform/Qt/Tray/DesktopTrayIcon.h"
#include "Platform/Qt/Updates/AppcastUpdateFramework.h"
#include "Platform/Qt/Updates/QtUpdateDialogs.h"
#include "Platform/X11/X11Desktop.h"
#include "Views/CommandShortcuts.h"
#include "Views/Components/AccessibleElement.h"
#include "Views/ContentView.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Settings/SettingsWindow.h"

#include <QApplication>
#include <chrono>
#include <memory>
#include <utility>

namespace {

constexpr std::chrono::milliseconds remakingDelay{300};

// Qt reads these when the application object is made.
void prepareToolkit() {
    SessionBus::keepFromStarting();
    // Screen readers that come later would not find Veyla otherwise.
    qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    // The library for session managers ends the process when its manager dies, and a manager would
    // restore Veyla beside the start at login.
    qunsetenv("SESSION_MANAGER");
    // Masks are windows of the X server; the toolkit must be on the same one.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Veyla"));
    QGuiApplication::setDesktopFileName(applicationIdentifier);
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

VeylaApp::VeylaApp(const AppPlatform& platform, const Surroundings& surroundings,
                   RemoteControlService& remoteControl, Start start)
    : m_mainLoop(platform.mainLoop),
      m_applicationHost(platform.applicationHost),
      m_surroundings(surroundings),
      m_wishes(surroundings.serverWishes.value() | surroundings.portalWishes.value()),
      m_state(platform),
      m_menuCommands(m_state, [this] { openSettings(); }),
      m_commands(m_state, [this] { m_mainLoop.quit(0); }),
      m_menuBarExtra(m_state, m_mainLoop, platform.trayIcon, surroundings.pointerPresses,
                     {[this] {
                          // Without a window until now, the program may be in no task bar.
                          m_applicationHost.setActivationPolicy(ActivationPolicy::regular);
                          m_applicationHost.activateIgnoringOtherApps();
                          openSettings();
                      },
                      [this] { m_mainLoop.quit(0); }}),
      m_lookUpdate(m_mainLoop, [this] { updateLook(); }) {
    applyVeylaLook(m_wishes);
    m_lookUpdate.follow(surroundings.serverWishes, surroundings.portalWishes);
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
        m_dashboardWindow->offerPanel(m_menuBarExtra.isInTray(), [this](const QRect& anchor) {
            m_menuBarExtra.togglePanel(anchor);
        });
    }
    return *m_dashboardWindow;
}

SettingsWindow& VeylaApp::settingsWindow() {
    if (!m_settingsWindow) {
        m_settingsWindow =
            std::make_unique<SettingsWindow>(m_state, m_mainLoop, m_surroundings.loginItem);
        addCommandShortcuts(*m_settingsWindow, m_menuCommands);
    }
    return *m_settingsWindow;
}

void VeylaApp::openSettings() {
    settingsWindow();
    for (const auto& window : m_applicationHost.windows())
        if (window->title() == SettingsWindow::title()) window->makeKeyAndOrderFront();
}

void VeylaApp::updateLook() {
    const AppearanceWishes wishes =
        m_surroundings.serverWishes.value() | m_surroundings.portalWishes.value();
    const AppearanceWishes previous = std::exchange(m_wishes, wishes);
    if (wishes == previous) return;
    applyVeylaLook(wishes);
    if (wishes.isContrastIncreased != previous.isContrastIncreased) remakeWindows();
}

// Their controls have the colours that they were made with. Who changes the contrast is in another
// program, and stays there.
void VeylaApp::remakeWindows() {
    // Somebody drags something in one of them.
    if (QGuiApplication::mouseButtons() != Qt::NoButton) {
        m_remaking = m_mainLoop.after(remakingDelay, [this] { remakeWindows(); });
        return;
    }
    m_menuBarExtra.closePanel();
    const auto showAgain = [](QWidget& window, bool wasMinimized) {
        window.setAttribute(Qt::WA_ShowWithoutActivating);
        wasMinimized ? window.showMinimized() : window.show();
        window.setAttribute(Qt::WA_ShowWithoutActivating, false);
    };
    if (const auto former = std::exchange(m_dashboardWindow, nullptr)) {
        const QByteArray place = former->saveGeometry();
        dashboardWindow().restoreGeometry(place);
        if (former->isVisible()) showAgain(dashboardWindow(), former->isMinimized());
    }
    if (const auto former = std::exchange(m_settingsWindow, nullptr); former && former->isVisible())
        showAgain(settingsWindow(), former->isMinimized());
}

int VeylaApp::run() {
    return m_mainLoop.run();
}

CommandResult runVeyla(InstanceLock& lock, VeylaApp::Start start, int argc, char** argv) {
    QString error;
    if (!hasDisplay(argc, argv, &error)) return noDisplay(error);

    prepareToolkit();
    const QApplication application(argc, argv);
    installAccessibleElements();
    StderrLog log;
    if (!lock.errorText().isEmpty()) log.write(lock.errorText());
    QtMainLoop mainLoop;
    // Around everything that shows masks, which no signal may leave without a process.
    const SignalWatcher signalWatcher([&] { mainLoop.quit(0); });
    RemoteControlService remoteControl(log);
    int status = 0;
    {
        const AccessibleIdentifiers identifiers;
        OverlayAccessibility accessibility;
        const SessionLock sessionLock;
        const auto desktop =
            X11Desktop::open({mainLoop, log, &accessibility, &sessionLock.isLocked()}, &error);
        if (!desktop) return noDisplay(error);
        AtSpiAnnouncer announcer;
        QtApplicationHost applicationHost(desktop->windowManagement());
        AutostartEntry loginItem = AutostartEntry::ofThisProgram();
        QtUrlLoader urlLoader(mainLoop);
        QtUpdateDialogs updateDialogs;
        AppcastUpdateFramework updateFramework(urlLoader, mainLoop, updateDialogs, log,
                                               AppcastUpdateFramework::Setup::ofThisBuild());
        const PortalSettings portalSettings;
        DesktopTrayIcon trayIcon(desktop->trayOwner().owner(), portalSettings.prefersLightColors(),
                                 mainLoop);
        VeylaApp app({mainLoop, desktop->screens(), desktop->overlaySurfaces(), announcer, log,
                      applicationHost, desktop->hotKeyCenter(), desktop->workspace(), urlLoader,
                      updateFramework, trayIcon, workspaceDirectory()},
                     {desktop->pointerPresses(), loginItem, desktop->settings().wishes(),
                      portalSettings.wishes()},
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
