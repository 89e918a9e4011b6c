#pragma once

#include "Platform/Headless/HeadlessAnnouncer.h"
#include "Platform/Headless/HeadlessApplicationHost.h"
#include "Platform/Headless/HeadlessHotKeyCenter.h"
#include "Platform/Headless/HeadlessMainLoop.h"
#include "Platform/Headless/HeadlessOverlaySurfaces.h"
#include "Platform/Headless/HeadlessPointerPresses.h"
#include "Platform/Headless/HeadlessScreens.h"
#include "Platform/Headless/HeadlessTrayIcon.h"
#include "Platform/Headless/HeadlessUpdateFramework.h"
#include "Platform/Headless/HeadlessUrlLoader.h"
#include "Platform/Headless/HeadlessWorkspace.h"

/// An in-memory desktop: every port, with a control interface for who tests against it.
struct HeadlessDesktop {
    HeadlessMainLoop mainLoop;
    HeadlessScreens screens;
    HeadlessOverlaySurfaces overlaySurfaces{screens};
    HeadlessAnnouncer announcer;
    HeadlessApplicationHost applicationHost;
    HeadlessHotKeyCenter hotKeyCenter;
    HeadlessWorkspace workspace{mainLoop};
    HeadlessUrlLoader urlLoader{mainLoop};
    HeadlessUpdateFramework updateFramework;
    HeadlessPointerPresses pointerPresses;
    HeadlessTrayIcon trayIcon;
};
