#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <sys/types.h>

/// The unit of the service manager that a desktop started an application in.
struct ApplicationScope {
    /// The desktop-entry id of the application.
    QString id;
    /// Whether nothing but the application can be in it. A scope that a desktop made also holds
    /// whatever the application started, as a terminal does.
    bool isSandbox = false;

    bool operator==(const ApplicationScope&) const = default;
};

/// What /proc tells of a process.
struct ProcessFacts {
    uid_t user = 0;
    /// The file name of the program; of a script's interpreter. Empty for a program that does not
    /// let itself be looked at.
    QString executable;
    /// What the process calls itself; for a script the name of its file, also when "env" started
    /// the interpreter. The kernel cuts it after 15 bytes; a name that was cut is completed where
    /// that can be done.
    QString commandName;
    std::optional<ApplicationScope> scope;

    bool operator==(const ProcessFacts&) const = default;
};

/// Nothing when there is no such process, or when it has ended and only waits to be collected.
std::optional<ProcessFacts> readProcess(pid_t process);

/// The application of a process from the text of /proc/PID/cgroup.
std::optional<ApplicationScope> applicationScopeFrom(const QByteArray& cgroups);

/// Whether the environment that the process was started with names another X display than
/// `display`. False when it names none or cannot be read.
bool isOnOtherDisplay(pid_t process, const QByteArray& display);
