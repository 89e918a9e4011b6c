#pragma once

#include "Platform/UpdateFramework.h"
#include "Reactive/Published.h"
#include "Reactive/Subscription.h"

/// Points the update framework at Veyla's releases, starts it, and tells whether the user can ask
/// for a check.
class UpdaterManager {
public:
    /// The framework must outlive the manager. One that does not start is used all the same, and
    /// then normally never offers a check.
    explicit UpdaterManager(UpdateFramework& framework);
    UpdaterManager(const UpdaterManager&) = delete;
    UpdaterManager& operator=(const UpdaterManager&) = delete;

    const Published<bool>& canCheckForUpdates() const { return m_canCheckForUpdates; }

    /// Runs a check that the user asked for.
    void checkForUpdates() { m_framework.checkForUpdates(); }

private:
    UpdateFramework& m_framework;
    Published<bool> m_canCheckForUpdates{false};
    Subscription m_canCheckObserver;
};
