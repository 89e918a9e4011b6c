#pragma once

#include "support/desktop/ChildProcess.h"

/// An Xvfb of its own, with a screen of 1280 by 800, on a display number that the server chooses.
class XServer {
public:
    struct Options {
        QStringList extraArguments{};
    };

    /// Returns when the server accepts clients. Throws std::runtime_error when it does not start.
    XServer(const QProcessEnvironment& environment, const Options& options);

    /// As in DISPLAY, ":3".
    QString displayName() const { return m_displayName; }

private:
    ChildProcess m_process;
    QString m_displayName;
};
