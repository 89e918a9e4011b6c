#pragma once

#include "Models/MaskPreset.h"
#include "Models/ScreenMask.h"
#include "support/desktop/DesktopSession.h"

#include <QList>

/// A display without a window manager, on which nothing but what is measured runs.
DesktopSession::Options quietDesktop();

/// Makes these the workspace that Veyla finds when it starts on that desktop.
void storeWorkspace(DesktopSession& desktop, const QList<ScreenMask>& masks,
                    const QList<MaskPreset>& presets = {});

/// Starts the Veyla of this build in the background.
std::unique_ptr<ChildProcess> startVeyla(const DesktopSession& desktop);
