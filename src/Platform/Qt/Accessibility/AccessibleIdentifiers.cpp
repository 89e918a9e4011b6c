#include "Platform/Qt/Accessibility/AccessibleIdentifiers.h"

#include "Platform/AccessibleIdentifier.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariant>

namespace {

// The names of the accessibility bus: https://gitlab.gnome.org/GNOME/at-spi2-core, folder xml.
constexpr QLatin1StringView treePath("/org/a11y/atspi/accessible");
constexpr QLatin1StringView accessibleInterface("org.a11y.atspi.Accessible");
constexpr QLatin1StringView propertiesInterface("org.freedesktop.DBus.Properties");

QDBusConnection accessibilityBus() {
    // The name under which Qt keeps its connection.
    return QDBusConnection(QStringLiteral("a11y"));
}

struct Target {
    // Null for the application and for an element that is gone.
    const QAccessibleInterface* element = nullptr;
    bool isGone = false;

    QString identifier() const {
        const QObject* const object = element ? element->object() : nullptr;
        return object ? accessibleIdentifier(*object) : QString();
    }
};

Target targetOf(const QDBusMessage& message) {
    bool isNumber = false;
    const auto id = message.path().section(u'/', -1).toUInt(&isNumber);
    if (!isNumber) return {};
    const QAccessibleInterface* const element = QAccessible::accessibleInterface(id);
    if (!element || !element->isValid()) return {nullptr, true};
    return {element, false};
}

QVariant attributes(const QString& identifier) {
    QDBusArgument map;
    map.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QString>());
    if (!identifier.isEmpty()) {
        map.beginMapEntry();
        map << QStringLiteral("id") << identifier;
        map.endMapEntry();
    }
    map.endMap();
    return QVariant::fromValue(map);
}

}  // namespace

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
    if (const auto answer = answerTo(message)) {
        connection.send(*answer);
        return true;
    }
    return m_toolkit && m_toolkit->handleMessage(message, connection);
}

std::optional<QDBusMessage> AccessibleIdentifiers::answerTo(const QDBusMessage& message) {
    // A client may ask for what it has not yet heard to be gone. Qt would complain of it.
    const Target target = targetOf(message);
    if (target.isGone)
        return message.createErrorReply(QDBusError::UnknownObject,
                                        QStringLiteral("The element is gone."));

    const QString member = message.member();
    if (message.interface() == accessibleInterface) {
        // Qt knows no attributes.
        if (member == QLatin1StringView("GetAttributes"))
            return message.createReply(attributes(target.identifier()));
    } else if (message.interface() == propertiesInterface) {
        const QVariantList arguments = message.arguments();
        const bool isGet = member == QLatin1StringView("Get") && arguments.size() == 2;
        const bool isSet = member == QLatin1StringView("Set") && arguments.size() == 3;
        // Qt 6.4 reads past the end of the arguments of any other call, and crashes.
        if (!isGet && !isSet)
            return message.createErrorReply(QDBusError::UnknownMethod,
                                            QStringLiteral("Properties can be read one by one."));
        if (isGet && arguments.at(0).toString() == accessibleInterface &&
            arguments.at(1).toString() == QLatin1StringView("AccessibleId"))
            return message.createReply(
                QVariant::fromValue(QDBusVariant(QVariant(target.identifier()))));
    }
    return std::nullopt;
}
