#pragma once

#include "Platform/Headless/HeadlessAnnouncer.h"
#include "Platform/Headless/HeadlessMainLoop.h"
#include "Platform/Headless/HeadlessOverlaySurfaces.h"
#include "Platform/Headless/HeadlessScreens.h"

/// An in-memory desktop: every port, with a control interface for who tests against it.
struct HeadlessDesktop {
    HeadlessMainLoop mainLoop;
    HeadlessScreens screens;
    HeadlessOverlaySurfaces overlaySurfaces{screens};
    HeadlessAnnouncer announcer;
};
