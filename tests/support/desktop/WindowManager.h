#pragma once

#include "support/desktop/ChildProcess.h"

/// A window manager on the display that the environment names.
class WindowManager {
public:
    /// Returns when it manages the display: the root names a supporting window, other than before,
    /// that names itself, and a window that is mapped gets managed. Throws std::runtime_error when
    /// that does not happen.
    explicit WindowManager(const QProcessEnvironment& environment,
                           const QStringList& command = {QStringLiteral("openbox")});

private:
    /// The window that speaks for the current manager, XCB_NONE without one.
    static unsigned supportingWindow(const QProcessEnvironment& environment);

    unsigned m_former;
    ChildProcess m_process;
};
