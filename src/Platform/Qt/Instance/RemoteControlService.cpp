#include "Platform/Qt/Instance/RemoteControlService.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <utility>

RemoteControlService::RemoteControlService(SystemLog& log)
    : m_log(log), m_bus(QStringLiteral("veyla-remote-control-service")) {}

RemoteControlService::~RemoteControlService() = default;

void RemoteControlService::start(Perform perform) {
    m_perform = std::move(perform);
    QDBusConnection& connection = m_bus.connection();
    if (!m_bus.isConnected()) {
        m_log.write(QStringLiteral("Veyla found no session bus and takes no commands from other "
                                   "processes: ") +
                    connection.lastError().message());
        return;
    }
    // The object first: who sees the name may call at once.
    connection.registerObject(QString::fromLatin1(RemoteControl::objectPath), this,
                              QDBusConnection::ExportScriptableInvokables);
    const auto reply = connection.interface()->registerService(
        QString::fromLatin1(RemoteControl::serviceName), QDBusConnectionInterface::QueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (reply.value() != QDBusConnectionInterface::ServiceRegistered) {
        m_log.write(QStringLiteral("Another process has the bus name %1; until it lets go, Veyla "
                                   "takes no commands from other processes.")
                        .arg(QString::fromLatin1(RemoteControl::serviceName)));
    }
}

int RemoteControlService::perform(const QStringList& arguments, QString& output, QString& error) {
    const CommandResult result = m_perform(arguments);
    output = result.output;
    error = result.error;
    return static_cast<int>(result.status);
}
