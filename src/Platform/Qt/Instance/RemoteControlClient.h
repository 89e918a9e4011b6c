#pragma once

#include "App/RemoteCommands.h"
#include "Platform/Qt/Instance/InstanceLock.h"
#include "Platform/Qt/SessionBus.h"

#include <QString>
#include <QStringList>
#include <chrono>

/// Sends command lines to the running program. Needs a QCoreApplication. Whatever goes wrong
/// comes back as a result with an error line.
class RemoteControlClient {
public:
    /// How long a process that holds the lock may take to appear on the bus.
    static constexpr std::chrono::milliseconds startPatience{5000};
    static constexpr std::chrono::milliseconds answerPatience{20000};
    static constexpr std::chrono::milliseconds endPatience{20000};

    /// `lock` tells whether there is a running program; it must outlive the client.
    explicit RemoteControlClient(const InstanceLock& lock);

    /// Has the running program perform the arguments that follow the program's name; `command` is
    /// what they ask for. After `Command::quit` it returns when the program has ended, so that a
    /// new one can be started at once.
    CommandResult perform(Command command, const QStringList& arguments);

private:
    QString nameOwner() const;
    QString waitForNameOwner();
    bool waitForEndOf(const QString& owner);
    CommandResult call(const QString& owner, const QStringList& arguments);
    CommandResult notReached() const;
    QString runningVeyla() const;

    const InstanceLock& m_lock;
    SessionBus m_bus;
};
