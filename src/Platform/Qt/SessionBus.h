#pragma once

#include "Models/ApplicationIdentifier.h"

#include <QDBusConnection>
#include <QString>

/// What the running program is called on the session bus.
namespace RemoteControl {
inline constexpr const char* serviceName = applicationIdentifier.data();
inline constexpr const char* objectPath = "/app/veyla/Veyla";
inline constexpr const char* interfaceName = applicationIdentifier.data();
}  // namespace RemoteControl

/// A connection of its own to the session bus that is there, closed at the end. It never starts a
/// bus: without $DBUS_SESSION_BUS_ADDRESS it tries the user's bus in $XDG_RUNTIME_DIR only, unless
/// others can write there.
class SessionBus {
public:
    /// Without a bus, the toolkit and other libraries of this process start one for themselves as
    /// soon as they look for it, and leave it behind. This keeps them from it.
    static void keepFromStarting();

    /// `name` tells the connections of one process apart.
    explicit SessionBus(const QString& name);
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;
    ~SessionBus();

    bool isConnected() const { return m_connection.isConnected(); }
    /// Not connected when there is no bus.
    const QDBusConnection& connection() const { return m_connection; }
    QDBusConnection& connection() { return m_connection; }

private:
    QDBusConnection m_connection;
};
