#pragma once

#include <QString>
#include <memory>
#include <vector>

/// How the program takes part in the desktop.
enum class ActivationPolicy : int {
    /// An ordinary program, listed in task bar and pager while it has windows.
    regular = 0,
    /// Listed nowhere; known by its tray icon.
    accessory = 1,
};

/// A top-level window of the program.
class HostWindow {
public:
    virtual ~HostWindow() = default;

    virtual QString title() const = 0;
    /// Whether it is an auxiliary window: a panel, menu, dialog or tool window.
    virtual bool isPanel() const = 0;
    virtual bool hasContentView() const = 0;
    virtual bool isVisible() const = 0;
    /// Hides the window and keeps it.
    virtual void orderOut() = 0;
    /// Shows the window in front of others and gives it the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
};

/// The program as the desktop sees it.
class ApplicationHost {
public:
    virtual ~ApplicationHost() = default;

    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    /// Takes the front, away from whatever program has it.
    virtual void activateIgnoringOtherApps() = 0;
    /// In the order in which they were first shown. A window that is destroyed lets go of its
    /// object, so a weak pointer to one tells whether it is still there.
    virtual std::vector<std::shared_ptr<HostWindow>> windows() = 0;
};
