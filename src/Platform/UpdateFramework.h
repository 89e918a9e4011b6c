#pragma once

#include "Reactive/Source.h"

#include <QString>
#include <QUrl>
#include <optional>

/// Finds, verifies and hands over new versions of the program, with an interface of its own for
/// the user.
class UpdateFramework {
public:
    virtual ~UpdateFramework() = default;

    /// Where the list of releases is; nothing means that there is none to look at.
    virtual void setFeedUrl(const std::optional<QUrl>& url) = 0;
    /// Starts the checks that run by themselves. Nothing on success, else why not.
    virtual std::optional<QString> start() = 0;
    /// Whether a check can be asked for now; false while one runs.
    virtual Source<bool> canCheckForUpdates() const = 0;
    /// Runs a check that the user asked for, and tells its outcome in every case.
    virtual void checkForUpdates() = 0;
};
