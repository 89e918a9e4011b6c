#pragma once

#include <QAccessible>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QObject>
#include <QPointer>
#include <QString>
#include <optional>

/// Gives an object the name by which tools find its element in the accessibility tree. Unlike the
/// label it is never shown or spoken, does not change with the language, and tells elements apart.
/// An identifier may be given, replaced or emptied at any time.
void setAccessibleIdentifier(QObject& object, const QString& identifier);

/// Empty for an object that has none.
QString accessibleIdentifier(const QObject& object);

/// Puts the identifiers of objects on the accessibility bus, which Qt before 6.9 does not do: as
/// the property `AccessibleId` and the attribute `id` of their elements. It stands in front of the
/// object by which Qt answers on that bus, from when Qt has put it there; without the bus it does
/// nothing. What Qt cannot answer without harm is answered with an error. Elements that are no
/// objects of their own, such as table cells, have no identifier. The application object must exist
/// before and after it.
class AccessibleIdentifiers final : public QDBusVirtualObject,
                                    private QAccessible::ActivationObserver {
    Q_OBJECT
public:
    AccessibleIdentifiers();
    ~AccessibleIdentifiers() override;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    void accessibilityActiveChanged(bool isActive) override;
    void standInFront();
    static std::optional<QDBusMessage> answerTo(const QDBusMessage& message);

    // Qt's own object, while this one stands in front of it.
    QPointer<QDBusVirtualObject> m_toolkit;
};
