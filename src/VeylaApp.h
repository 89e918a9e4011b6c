#pragma once

#include "App/AppState.h"
#include "App/RemoteCommands.h"
#include "Platform/Qt/InstanceLock.h"
#include "Platform/Qt/RemoteControlService.h"
#include "Platform/Qt/SignalWatcher.h"

/// The running program on top of a platform: the application state and what drives it from
/// outside.
class VeylaApp {
public:
    /// Shows the masks of the workspace and answers other processes from here on. The references
    /// must outlive the object.
    VeylaApp(const AppPlatform& platform, RemoteControlService& remoteControl);
    VeylaApp(const VeylaApp&) = delete;
    VeylaApp& operator=(const VeylaApp&) = delete;

    /// Runs until a signal or another process asks it to end; returns the exit status.
    int run();

private:
    MainLoop& m_mainLoop;
    AppState m_state;
    RemoteCommands m_commands;
    SignalWatcher m_signalWatcher;
};

/// Puts the program on the desktop of this process and runs it. `lock` must be taken; it is
/// released at the end, before the bus name goes, so that whoever waits for the end by the name
/// can start the program again.
CommandResult runVeyla(InstanceLock& lock, int argc, char** argv);
