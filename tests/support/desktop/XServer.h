#pragma once

#include "support/desktop/ChildProcess.h"

#include <QSize>

/// An Xvfb of its own, on a display number that the server chooses.
class XServer {
public:
    struct Options {
        QSize screenSize{1280, 800};
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
