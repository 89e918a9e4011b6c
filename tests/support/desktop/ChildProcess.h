#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QStringList>
#include <chrono>
#include <optional>
#include <sys/types.h>

/// A program that runs as long as this object at most. It leads a process group of its own, and
/// whatever is left in the group ends with it; the test program becomes the reaper of its orphans,
/// so that not even a zombie stays. Should the test program itself die, the kernel sends
/// the child SIGTERM; that is tied to the thread that started it, so start children on a thread
/// that lives as long as they should (the main one).
class ChildProcess {
public:
    /// What a program has come to.
    struct Outcome {
        /// As `exitStatus` tells.
        std::optional<int> status;
        QByteArray output;
        QByteArray error;

        bool operator==(const Outcome&) const = default;
    };

    /// Starts the program, looked up in PATH, with exactly that environment and an empty standard
    /// input. Throws std::runtime_error when it cannot be started.
    ChildProcess(const QString& program, const QStringList& arguments,
                 const QProcessEnvironment& environment);
    /// Ends the group as `end` does.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Also the id of the process group.
    pid_t pid() const { return m_pid; }

    bool isRunning() { return !exitStatus().has_value(); }

    /// The exit code; a signal that ended the program as its negative number; nothing while it
    /// runs.
    std::optional<int> exitStatus();

    /// Waits for the program to end by itself, while Qt events are delivered. Nothing when it still
    /// runs at the end of the time.
    std::optional<int> waitForExit(std::chrono::milliseconds timeout);

    /// Waits in the same way, as long as tests wait.
    Outcome waitForOutcome();

    /// Sends a signal to the program alone; nothing happens when it has ended.
    void sendSignal(int signalNumber);

    /// SIGTERM to the group, then SIGKILL to what is left of it when the program has ended or two
    /// seconds have passed. Does nothing the second time.
    void end();

    /// Everything that the program has written so far.
    QByteArray standardOutput() const { return contents(m_output); }
    QByteArray standardError() const { return contents(m_error); }

    /// The first line of the standard output, without its end. Throws std::runtime_error with the
    /// standard error when the program ends, or the default wait is over, before there is one.
    QByteArray waitForFirstLine();

private:
    static QByteArray contents(int file);
    bool hasExited() const;
    void reap();

    pid_t m_pid = -1;
    int m_output = -1;
    int m_error = -1;
    std::optional<int> m_exitStatus;
};

/// What shell commands print that run in a folder, without the end of the last line. Throws
/// std::runtime_error when one of them fails.
QByteArray shellOutput(const QString& folder, const QString& commands);
