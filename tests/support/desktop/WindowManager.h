#pragma once

#include "support/desktop/ChildProcess.h"

/// A window manager on the display that the environment names.
class WindowManager {
public:
    /// Returns when it manages the display: it owns the manager selection, and a window that is
    /// mapped gets managed. Throws std::runtime_error when that does not happen.
    explicit WindowManager(const QProcessEnvironment& environment,
                           const QStringList& command = {QStringLiteral("openbox")});

private:
    /// The window that holds the selection for the current manager, XCB_NONE without one.
    static unsigned owner(const QProcessEnvironment& environment);

    /// Whether a window that is mapped now gets managed, and is forgotten when it goes.
    static bool isManaging(const QProcessEnvironment& environment);

    unsigned m_former;
    ChildProcess m_process;
};
