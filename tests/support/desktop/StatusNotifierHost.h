#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariant>

/// The part of a desktop that shows items of the session bus in its tray: the watcher that they
/// register with and the host that uses them, in this process.
class StatusNotifierHost final : public QDBusVirtualObject {
public:
    /// Takes the watcher's name on the bus of that address. Throws std::runtime_error when it
    /// cannot.
    explicit StatusNotifierHost(const QString& busAddress, bool hasHost = true);
    /// Leaves the bus.
    ~StatusNotifierHost() override;

    /// A watcher may be there without anything that shows its items.
    void setHasHost(bool hasHost);

    /// The bus names of the items that have registered and not left since.
    QStringList items() const;
    /// A property of the only item.
    QVariant itemProperty(const QString& name) const;
    /// Calls a method of the only item. Throws std::runtime_error when it fails.
    void callItem(const QString& method, int x, int y) const;
    /// Calls a method of its menu, and returns all of the answer.
    QVariantList callMenu(const QString& method, const QVariantList& arguments) const;

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    QVariantList call(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments) const;

    QDBusConnection m_connection;
    bool m_hasHost;
    QStringList m_items;
};
