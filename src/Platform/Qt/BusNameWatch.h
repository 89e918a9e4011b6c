#pragma once

#include "Platform/Qt/SessionBus.h"

#include <QObject>
#include <QString>
#include <functional>
#include <sys/types.h>

/// Hears of programs that take a name on the session bus, as services do.
class BusNameWatch final : public QObject {
    Q_OBJECT

public:
    /// Calls back, from the main loop, with the process behind each name that is taken from now on.
    /// Without a bus it never does.
    explicit BusNameWatch(std::function<void(pid_t)> onNameTaken);

private Q_SLOTS:
    void noteOwner(const QDBusMessage& change);

private:
    SessionBus m_bus;
    std::function<void(pid_t)> m_onNameTaken;
};
