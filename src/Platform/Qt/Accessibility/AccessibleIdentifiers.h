#pragma once

#include <QAccessible>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QObject>
#include <QPointer>
#include <QString>
#include <optional>

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
