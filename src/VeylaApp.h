#pragma once

#include "App/AppState.h"
#include "App/RemoteCommands.h"
#include "App/VeylaCommands.h"
#include "Models/AppearanceWishes.h"
#include "Platform/LoginItem.h"
#include "Platform/PointerPresses.h"
#include "Platform/Qt/Instance/InstanceLock.h"
#include "Platform/Qt/Instance/RemoteControlService.h"
#include "Platform/TrayIcon.h"
#include "Views/MenuBar/MenuBarExtra.h"
#include "Views/TurnUpdate.h"

#include <memory>

class ContentView;
class SettingsWindow;

/// The running program on top of a platform: the application state and what drives it from
/// outside.
class VeylaApp {
public:
    enum class Start { withDashboard, inBackground };

    /// What the windows need from the platform.
    struct Surroundings {
        PointerPresses& pointerPresses;
        LoginItem& loginItem;
        /// From the two places where desktops tell of them.
        const Published<AppearanceWishes>& serverWishes;
        const Published<AppearanceWishes>& portalWishes;
    };

    /// Shows the masks of the workspace and answers other processes from here on. The references
    /// must outlive the object.
    VeylaApp(const AppPlatform& platform, const Surroundings& surroundings,
             RemoteControlService& remoteControl, Start start);
    ~VeylaApp();
    VeylaApp(const VeylaApp&) = delete;
    VeylaApp& operator=(const VeylaApp&) = delete;

    /// Runs until the main loop is asked to quit; returns the exit status.
    int run();

private:
    ContentView& dashboardWindow();
    SettingsWindow& settingsWindow();
    void openSettings();
    void updateLook();
    void remakeWindows();

    MainLoop& m_mainLoop;
    ApplicationHost& m_applicationHost;
    Surroundings m_surroundings;
    AppearanceWishes m_wishes;
    AppState m_state;
    VeylaCommands m_menuCommands;
    RemoteCommands m_commands;
    MenuBarExtra m_menuBarExtra;
    // Made when they are first wanted.
    std::unique_ptr<ContentView> m_dashboardWindow;
    std::unique_ptr<SettingsWindow> m_settingsWindow;
    Subscription m_remaking;
    TurnUpdate m_lookUpdate;
};

/// Puts the program on the desktop of this process and runs it. `lock` must be taken; it is
/// released at the end, before the bus name goes, so that whoever waits for the end by the name
/// can start the program again.
CommandResult runVeyla(InstanceLock& lock, VeylaApp::Start start, int argc, char** argv);
