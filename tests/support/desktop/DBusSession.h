#pragma once

#include "support/desktop/ChildProcess.h"

#include <QString>

class TemporaryHome;

/// A session bus of its own. It starts no services, so that nothing installed on the machine runs
/// by accident.
class DBusSession {
public:
    /// Its socket is in the home's runtime folder. Throws std::runtime_error when it does not
    /// start.
    DBusSession(const TemporaryHome& home, const QProcessEnvironment& environment);

    /// The value for DBUS_SESSION_BUS_ADDRESS.
    QString address() const { return m_address; }

private:
    ChildProcess m_process;
    QString m_address;
};
