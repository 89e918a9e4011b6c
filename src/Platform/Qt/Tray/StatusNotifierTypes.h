#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

/// The service of the session bus that items announce themselves to and hosts ask; its interface is
/// called as it is.
namespace StatusNotifierWatcher {
inline constexpr QLatin1StringView name{"org.kde.StatusNotifierWatcher"};
inline constexpr QLatin1StringView path{"/StatusNotifierWatcher"};
}  // namespace StatusNotifierWatcher

// What travels over the bus for the icon in the tray and for its menu. Names and order of the
// members are those of the protocols.

struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    /// ARGB, not premultiplied, most significant byte first.
    QByteArray data;
};
using StatusNotifierPixmaps = QList<StatusNotifierPixmap>;

struct StatusNotifierToolTip {
    QString iconName;
    StatusNotifierPixmaps iconPixmaps;
    QString title;
    QString text;
};

struct MenuLayoutItem {
    int id = 0;
    QVariantMap properties;
    QList<MenuLayoutItem> children;
};

struct MenuItemProperties {
    int id = 0;
    QVariantMap properties;
};
using MenuItemPropertiesList = QList<MenuItemProperties>;

struct MenuEvent {
    int id = 0;
    QString name;
    QVariant data;
    uint timestamp = 0;
};
using MenuEvents = QList<MenuEvent>;

Q_DECLARE_METATYPE(StatusNotifierPixmap)
Q_DECLARE_METATYPE(StatusNotifierToolTip)
Q_DECLARE_METATYPE(MenuLayoutItem)
Q_DECLARE_METATYPE(MenuItemProperties)
Q_DECLARE_METATYPE(MenuEvent)

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayoutItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayoutItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event);

/// Makes the types known to the bus. May be called more than once.
void registerStatusNotifierTypes();
