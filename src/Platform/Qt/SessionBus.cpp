#include "Platform/Qt/SessionBus.h"

#include "Platform/OwnFolder.h"

#include <QDBusError>
#include <QFile>

namespace {

// An address of no known kind.
constexpr const char* noBus = "disabled:";

QString sessionBusAddress() {
    QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (address == QLatin1StringView(noBus)) return QString();
    if (!address.isEmpty()) return address;
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString socket = folder + QStringLiteral("/bus");
    // Who else can write to the folder could listen there and give orders. The path is quoted as
    // addresses of the bus want it.
    return isOwnFolder(folder) && QFile::exists(socket)
               ? QStringLiteral("unix:path=") +
                     QString::fromLatin1(QFile::encodeName(socket).toPercentEncoding("/"))
               : QString();
}

QDBusConnection connect(const QString& name) {
    const QString address = sessionBusAddress();
    return address.isEmpty() ? QDBusConnection(name) : QDBusConnection::connectToBus(address, name);
}

}  // namespace

void SessionBus::keepFromStarting() {
    if (sessionBusAddress().isEmpty()) qputenv("DBUS_SESSION_BUS_ADDRESS", noBus);
}

SessionBus::SessionBus(const QString& name) : m_connection(connect(name)) {}

// Qt closes connections in a thread of its own and does not wait. Were a message to come just then,
// with the process ending, that thread would find Qt's static data gone and complain. It answers
// requests in order, so once it has failed to connect to nothing, the connection is closed.
SessionBus::~SessionBus() {
    const QString name = m_connection.name();
    m_connection = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);
    QDBusConnection::connectToBus(QStringLiteral("unix:path=/"), name);
    QDBusConnection::disconnectFromBus(name);
}
