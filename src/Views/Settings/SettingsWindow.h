#pragma once

#include "App/AppState.h"
#include "Platform/LoginItem.h"

#include <QWidget>

/// The window of the settings. Escape and Ctrl+W close it, which hides it.
class SettingsWindow final : public QWidget {
public:
    /// What the window is known by, among the windows of the program too.
    static QString title();

    /// The references must outlive the window.
    SettingsWindow(AppState& state, Scheduler& scheduler, LoginItem& loginItem);
};
