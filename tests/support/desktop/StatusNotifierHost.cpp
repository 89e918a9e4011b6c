#include "support/desktop/StatusNotifierHost.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString watcher = u"org.kde.StatusNotifierWatcher"_s;
const QString watcherPath = u"/StatusNotifierWatcher"_s;
const QString itemInterface = u"org.kde.StatusNotifierItem"_s;

QString newConnectionName() {
    static int number = 0;
    return u"status-notifier-host-%1"_s.arg(++number);
}

}  // namespace

StatusNotifierHost::StatusNotifierHost(const QString& busAddress, bool hasHost)
    : m_connection(QDBusConnection::connectToBus(busAddress, newConnectionName())),
      m_hasHost(hasHost) {
    m_connection.registerVirtualObject(watcherPath, this);
    if (!m_connection.registerService(watcher))
        throw std::runtime_error("the watcher's name cannot be had");
}

StatusNotifierHost::~StatusNotifierHost() {
    m_connection.unregisterService(watcher);
    m_connection.unregisterObject(watcherPath);
    QDBusConnection::disconnectFromBus(m_connection.name());
}

void StatusNotifierHost::setHasHost(bool hasHost) {
    m_hasHost = hasHost;
    m_connection.send(QDBusMessage::createSignal(
        watcherPath, watcher,
        hasHost ? u"StatusNotifierHostRegistered"_s : u"StatusNotifierHostUnregistered"_s));
}

QStringList StatusNotifierHost::items() const {
    QStringList present = m_items;
    present.removeIf([this](const QString& name) {
        return !m_connection.interface()->isServiceRegistered(name).value();
    });
    return present;
}

QVariant StatusNotifierHost::itemProperty(const QString& name) const {
    const auto answer = call(u"/StatusNotifierItem"_s, u"org.freedesktop.DBus.Properties"_s,
                             u"Get"_s, {itemInterface, name});
    return answer.value(0).value<QDBusVariant>().variant();
}

void StatusNotifierHost::callItem(const QString& method, int x, int y) const {
    call(u"/StatusNotifierItem"_s, itemInterface, method, {x, y});
}

QVariantList StatusNotifierHost::callMenu(const QString& method,
                                          const QVariantList& arguments) const {
    const QString path = itemProperty(u"Menu"_s).value<QDBusObjectPath>().path();
    return call(path, u"com.canonical.dbusmenu"_s, method, arguments);
}

QVariantList StatusNotifierHost::call(const QString& path, const QString& interface,
                                      const QString& method, const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(items().value(0), path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage answer = m_connection.call(message);
    if (answer.type() != QDBusMessage::ReplyMessage)
        throw std::runtime_error(method.toStdString() + ": " + answer.errorMessage().toStdString());
    return answer.arguments();
}

bool StatusNotifierHost::handleMessage(const QDBusMessage& message,
                                       const QDBusConnection& connection) {
    if (message.member() == u"RegisterStatusNotifierItem") {
        m_items.removeAll(message.arguments().value(0).toString());
        m_items << message.arguments().value(0).toString();
        connection.send(message.createReply());
        return true;
    }
    if (message.member() == u"Get" &&
        message.arguments().value(1) == u"IsStatusNotifierHostRegistered"_s) {
        connection.send(message.createReply(QVariant::fromValue(QDBusVariant(m_hasHost))));
        return true;
    }
    return false;
}
