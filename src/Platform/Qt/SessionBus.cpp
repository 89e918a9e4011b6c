#include "Platform/Qt/SessionBus.h"

#include <QDBusError>
#include <QFile>

namespace {

QString sessionBusAddress() {
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty()) return address;
    const QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
    // The path is quoted as addresses of the bus want it.
    return QFile::exists(socket)
               ? QStringLiteral("unix:path=") +
                     QString::fromLatin1(QFile::encodeName(socket).toPercentEncoding("/"))
               : QString();
}

QDBusConnection connect(const QString& name) {
    const QString address = sessionBusAddress();
    return address.isEmpty() ? QDBusConnection(name) : QDBusConnection::connectToBus(address, name);
}

}  // namespace

SessionBus::SessionBus(const QString& name) : m_connection(connect(name)) {}

SessionBus::~SessionBus() {
    const QString name = m_connection.name();
    m_connection = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);
}
