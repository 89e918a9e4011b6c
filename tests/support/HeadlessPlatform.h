#pragma once

#include "App/AppState.h"
#include "Platform/Headless/HeadlessDesktop.h"

/// The application's platform on an in-memory desktop.
inline AppPlatform headlessPlatform(HeadlessDesktop& desktop, SystemLog& log,
                                    const QString& workspaceDirectory) {
    return {desktop.mainLoop,
            desktop.screens,
            desktop.overlaySurfaces,
            desktop.announcer,
            log,
            desktop.applicationHost,
            desktop.hotKeyCenter,
            desktop.workspace,
            desktop.urlLoader,
            desktop.updateFramework,
            desktop.trayIcon,
            workspaceDirectory};
}
