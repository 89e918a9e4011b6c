#pragma once

#include "App/AppState.h"
#include "App/RemoteCommands.h"
#include "App/VeylaCommands.h"
#include "Platform/Qt/InstanceLock.h"
#include "Platform/Qt/RemoteControlService.h"
#include "Platform/Qt/SignalWatcher.h"

#include <memory>

class ContentView;

/// The running program on top of a platform: the application state and what drives it from
/// outside.
class VeylaApp {
public:
    enum class Start { withDashboard, inBackground };

    /// Shows the masks of the workspace and answers other processes from here on. The references
    /// must outlive the object.
    VeylaApp(const AppPlatform& platform, RemoteControlService& remoteControl, Start start);
    ~VeylaApp();
    VeylaApp(const VeylaApp&) = delete;
    VeylaApp& operator=(const VeylaApp&) = delete;

    /// Runs until a signal or another process asks it to end; returns the exit status.
    int run();

private:
    ContentView& dashboardWindow();

    MainLoop& m_mainLoop;
    AppState m_state;
    VeylaCommands m_menuCommands;
    RemoteCommands m_commands;
    // Made when it is first wanted.
    std::unique_ptr<ContentView> m_dashboardWindow;
    SignalWatcher m_signalWatcher;
};

/// Puts the program on the desktop of this process and runs it. `lock` must be taken; it is
/// released at the end, before the bus name goes, so that whoever waits for the end by the name
/// can start the program again.
CommandResult runVeyla(InstanceLock& lock, VeylaApp::Start start, int argc, char** argv);
