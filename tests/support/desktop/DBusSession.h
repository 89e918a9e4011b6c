#pragma once

#include "support/desktop/ChildProcess.h"

#include <QString>
#include <memory>

class TemporaryHome;

/// A session bus of its own. It knows only the services whose files a test puts into the service
/// folder, so that nothing installed on the machine is started by accident.
class DBusSession {
public:
    /// Its socket and configuration are in the home's runtime folder. Throws std::runtime_error
    /// when it does not start.
    DBusSession(const TemporaryHome& home, const QProcessEnvironment& environment);

    /// The value for DBUS_SESSION_BUS_ADDRESS.
    QString address() const { return m_address; }

    /// Service files written here can be activated.
    QString serviceFolder() const { return m_serviceFolder; }

private:
    QString m_serviceFolder;
    std::unique_ptr<ChildProcess> m_process;
    QString m_address;
};
