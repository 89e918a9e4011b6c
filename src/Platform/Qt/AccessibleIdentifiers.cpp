#include "Platform/Qt/AccessibleIdentifiers.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariant>

namespace {

// Where Qt 6.9 keeps it for widgets.
constexpr const char* identifierProperty = "accessibleIdentifier";

// The names of the accessibility bus: https://gitlab.gnome.org/GNOME/at-spi2-core, folder xml.
constexpr QLatin1StringView treePath("/org/a11y/atspi/accessible");
constexpr QLatin1StringView accessibleInterface("org.a11y.atspi.Accessible");
constexpr QLatin1StringView propertiesInterface("org.freedesktop.DBus.Properties");

QDBusConnection accessibilityBus() {
    // The name under which Qt keeps its connection.
    return QDBusConnection(QStringLiteral("a11y"));
}

/// Null for the application itself and for paths that lead nowhere.
QAccessibleInterface* elementAt(const QString& path) {
    bool isNumber = false;
    const auto id = path.section(u'/', -1).toUInt(&isNumber);
    return isNumber ? QAccessible::accessibleInterface(id) : nullptr;
}

QString identifierAt(const QString& path) {
    const QAccessibleInterface* const element = elementAt(path);
    const QObject* const object = element && element->isValid() ? element->object() : nullptr;
    return object ? accessibleIdentifier(*object) : QString();
}

}  // namespace

void setAccessibleIdentifier(QObject& object, const QString& identifier) {
    object.setProperty(identifierProperty, identifier);
}

QString accessibleIdentifier(const QObject& object) {
    return object.property(identifierProperty).toString();
}

AccessibleIdentifiers::AccessibleIdentifiers() {
    QAccessible::installActivationObserver(this);
    accessibilityActiveChanged(QAccessible::isActive());
}

AccessibleIdentifiers::~AccessibleIdentifiers() {
    QAccessible::removeActivationObserver(this);
    QDBusConnection bus = accessibilityBus();
    if (bus.objectRegisteredAt(treePath) != this) return;
    bus.unregisterObject(treePath);
    if (m_toolkit) bus.registerVirtualObject(treePath, m_toolkit, QDBusConnection::SubPath);
}

void AccessibleIdentifiers::accessibilityActiveChanged(bool isActive) {
    // Qt tells of it just before it puts its object on the bus.
    if (isActive)
        QMetaObject::invokeMethod(this, &AccessibleIdentifiers::standInFront, Qt::QueuedConnection);
}

void AccessibleIdentifiers::standInFront() {
    QDBusConnection bus = accessibilityBus();
    if (!bus.isConnected()) return;
    auto* const toolkit = qobject_cast<QDBusVirtualObject*>(bus.objectRegisteredAt(treePath));
    if (!toolkit || toolkit == this) return;
    m_toolkit = toolkit;
    bus.unregisterObject(treePath);
    bus.registerVirtualObject(treePath, this, QDBusConnection::SubPath);
}

QString AccessibleIdentifiers::introspect(const QString& path) const {
    return m_toolkit ? m_toolkit->introspect(path) : QString();
}

bool AccessibleIdentifiers::handleMessage(const QDBusMessage& message,
                                          const QDBusConnection& connection) {
    if (message.interface() == propertiesInterface && answerProperties(message, connection))
        return true;
    if (message.interface() == accessibleInterface &&
        message.member() == QLatin1StringView("GetAttributes")) {
        // Qt knows none.
        const QString identifier = identifierAt(message.path());
        QDBusArgument attributes;
        attributes.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QString>());
        if (!identifier.isEmpty()) {
            attributes.beginMapEntry();
            attributes << QStringLiteral("id") << identifier;
            attributes.endMapEntry();
        }
        attributes.endMap();
        connection.send(message.createReply(QVariant::fromValue(attributes)));
        return true;
    }
    return m_toolkit && m_toolkit->handleMessage(message, connection);
}

bool AccessibleIdentifiers::answerProperties(const QDBusMessage& message,
                                             const QDBusConnection& connection) const {
    const QVariantList arguments = message.arguments();
    if (message.member() != QLatin1StringView("Get") || arguments.size() != 2 ||
        arguments.at(0).toString() != accessibleInterface ||
        arguments.at(1).toString() != QLatin1StringView("AccessibleId"))
        return false;
    const QDBusVariant identifier(identifierAt(message.path()));
    connection.send(message.createReply(QVariant::fromValue(identifier)));
    return true;
}
