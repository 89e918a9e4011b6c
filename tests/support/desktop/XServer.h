#pragma once

#include "support/desktop/ChildProcess.h"

#include <QSize>
#include <QStringList>
#include <memory>

/// An Xvfb of its own, on a display number that the server chooses.
class XServer {
public:
    struct Options {
        QSize size{1280, 800};
        int depth = 24;
        QStringList extraArguments{};
    };

    /// Returns when the server accepts clients. Throws std::runtime_error when it does not start.
    XServer(const QProcessEnvironment& environment, Options options);

    /// As in DISPLAY, ":3"; stays the same over a restart.
    QString displayName() const { return m_displayName; }

    pid_t pid() const { return m_process->pid(); }

    /// Ends the server, and with it every connection, and starts it again on the same display.
    void restart();

private:
    void start(const QStringList& display);

    QProcessEnvironment m_environment;
    Options m_options;
    std::unique_ptr<ChildProcess> m_process;
    QString m_displayName;
};
