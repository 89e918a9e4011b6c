#include "Platform/Qt/Instance/RemoteControlClient.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QTimer>

namespace {

QString serviceName() {
    return QString::fromLatin1(RemoteControl::serviceName);
}

CommandResult failure(const QString& reason) {
    return {ExitStatus::nothingToActOn, QString(), reason};
}

/// The answer to a call, or nothing when it is not one that this program understands.
std::optional<CommandResult> readAnswer(const QDBusMessage& message) {
    if (message.signature() != QStringLiteral("iss")) return std::nullopt;
    const QVariantList values = message.arguments();
    const int status = values.at(0).toInt();
    const bool isKnown = status >= static_cast<int>(ExitStatus::done) &&
                         status <= static_cast<int>(ExitStatus::wrongUsage);
    if (!isKnown) return std::nullopt;
    return CommandResult{static_cast<ExitStatus>(status), values.at(1).toString(),
                         values.at(2).toString()};
}

}  // namespace

RemoteControlClient::RemoteControlClient(const InstanceLock& lock)
    : m_lock(lock), m_bus(QStringLiteral("veyla-remote-control-client")) {}

CommandResult RemoteControlClient::perform(Command command, const QStringList& arguments) {
    QString owner = nameOwner();
    if (owner.isEmpty() && m_bus.isConnected() && m_lock.isHeldByAnother())
        owner = waitForNameOwner();
    if (owner.isEmpty()) return notReached();

    CommandResult result = call(owner, arguments);
    if (command != Command::quit) return result;
    const bool mayBeEnding = result.status == ExitStatus::done || nameOwner() != owner;
    if (!mayBeEnding) return result;
    if (!waitForEndOf(owner)) return failure(runningVeyla() + QStringLiteral(" does not end."));
    return {};
}

/// The unique name of the running program's connection, empty when it is not on the bus.
QString RemoteControlClient::nameOwner() const {
    if (!m_bus.isConnected()) return QString();
    const QDBusReply<QString> reply = m_bus.connection().interface()->serviceOwner(serviceName());
    return reply.isValid() ? reply.value() : QString();
}

QString RemoteControlClient::waitForNameOwner() {
    QEventLoop loop;
    const QDBusServiceWatcher watcher(serviceName(), m_bus.connection(),
                                      QDBusServiceWatcher::WatchForRegistration);
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop, &QEventLoop::quit);
    // It may have come before the watch began.
    if (QString owner = nameOwner(); !owner.isEmpty()) return owner;
    QTimer::singleShot(startPatience, &loop, &QEventLoop::quit);
    loop.exec();
    return nameOwner();
}

bool RemoteControlClient::waitForEndOf(const QString& owner) {
    QEventLoop loop;
    const QDBusServiceWatcher watcher(serviceName(), m_bus.connection(),
                                      QDBusServiceWatcher::WatchForOwnerChange);
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, &loop, &QEventLoop::quit);
    if (nameOwner() != owner) return true;
    QTimer::singleShot(endPatience, &loop, &QEventLoop::quit);
    loop.exec();
    return nameOwner() != owner;
}

CommandResult RemoteControlClient::call(const QString& owner, const QStringList& arguments) {
    // To the unique name, so that no other process answers should the owner go meanwhile.
    QDBusMessage message = QDBusMessage::createMethodCall(
        owner, QString::fromLatin1(RemoteControl::objectPath),
        QString::fromLatin1(RemoteControl::interfaceName), QStringLiteral("perform"));
    message.setArguments({arguments});
    const QDBusMessage reply =
        m_bus.connection().call(message, QDBus::Block, int(answerPatience.count()));
    if (reply.type() == QDBusMessage::ReplyMessage) {
        if (const auto result = readAnswer(reply)) return *result;
        return failure(QStringLiteral("Veyla gave an answer that this version does not know."));
    }
    if (nameOwner() != owner) return failure(QStringLiteral("Veyla ended before it answered."));
    return failure(runningVeyla() + QStringLiteral(" does not answer: ") +
                   reply.errorMessage().simplified());
}

CommandResult RemoteControlClient::notReached() const {
    if (!m_lock.isHeldByAnother()) return failure(QStringLiteral("Veyla is not running."));
    const QString reason = m_bus.isConnected()
                               ? QStringLiteral(" is not on the session bus.")
                               : QStringLiteral(" cannot be reached: there is no session bus.");
    return failure(runningVeyla() + reason);
}

QString RemoteControlClient::runningVeyla() const {
    const auto pid = m_lock.ownerPid();
    return pid ? QStringLiteral("The running Veyla (pid %1)").arg(*pid)
               : QStringLiteral("The running Veyla");
}
