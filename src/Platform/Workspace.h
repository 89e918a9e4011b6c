#pragma once

#include "Reactive/Subscription.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

/// A program of the session as a person knows it.
struct RunningApplication {
    /// In the user's language.
    std::optional<QString> localizedName;
    /// The identity that presets are bound to; the same for every window and every run.
    std::optional<QString> bundleIdentifier;

    bool operator==(const RunningApplication&) const = default;
};

/// The programs of the session, and which of them has the keyboard. Callbacks come from the main
/// loop; an application may be gone by then.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Nothing when no application is in front.
    virtual std::optional<RunningApplication> frontmostApplication() const = 0;
    /// Each application once, with or without a window.
    virtual QList<RunningApplication> runningApplications() const = 0;

    /// Calls back each time an application comes to the front, with that application, or with
    /// nothing when it cannot be told which.
    virtual Subscription onApplicationActivated(
        std::function<void(const std::optional<RunningApplication>&)> callback) = 0;
    virtual Subscription onApplicationLaunched(std::function<void()> callback) = 0;
    virtual Subscription onApplicationTerminated(std::function<void()> callback) = 0;
};
