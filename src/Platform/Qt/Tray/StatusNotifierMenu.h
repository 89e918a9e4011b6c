#pragma once

#include "Platform/Qt/Tray/StatusNotifierTypes.h"
#include "Platform/TrayIcon.h"

#include <QDBusVariant>
#include <QObject>
#include <QStringList>

/// The icon's context menu on the session bus, which the tray draws itself: a flat list that never
/// changes. Item 0 is the menu, and the items follow from 1 on.
class StatusNotifierMenu final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)
public:
    explicit StatusNotifierMenu(std::vector<TrayIcon::MenuItem> items);

    uint version() const { return 3; }
    QString status() const;
    QString textDirection() const;
    QStringList iconThemePath() const { return {}; }

    // NOLINTBEGIN(readability-identifier-naming): the names on the bus are the interface's.
    // The methods on the bus. An unknown item has no properties and does nothing.
    Q_SCRIPTABLE uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                MenuLayoutItem& layout) const;
    Q_SCRIPTABLE MenuItemPropertiesList GetGroupProperties(const QList<int>& ids,
                                                           const QStringList& propertyNames) const;
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString& name) const;
    Q_SCRIPTABLE void Event(int id, const QString& eventId, const QDBusVariant& data,
                            uint timestamp);
    Q_SCRIPTABLE QList<int> EventGroup(const MenuEvents& events);
    Q_SCRIPTABLE bool AboutToShow(int /*id*/) const { return false; }
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) const;

Q_SIGNALS:
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);
    // NOLINTEND(readability-identifier-naming)

private:
    bool isItem(int id) const { return id > 0 && id <= static_cast<int>(m_items.size()); }
    QVariantMap propertiesOf(int id) const;

    std::vector<TrayIcon::MenuItem> m_items;
};
