#include "Platform/Qt/Tray/StatusNotifierMenu.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

StatusNotifierMenu::StatusNotifierMenu(std::vector<TrayIcon::MenuItem> items)
    : m_items(std::move(items)) {}

QString StatusNotifierMenu::status() const {
    return u"normal"_s;
}

QString StatusNotifierMenu::textDirection() const {
    return u"ltr"_s;
}

QVariantMap StatusNotifierMenu::propertiesOf(int id) const {
    if (id == 0) return {{u"children-display"_s, u"submenu"_s}};
    if (!isItem(id)) return {};
    return {{u"label"_s, m_items.at(static_cast<std::size_t>(id) - 1).title},
            {u"enabled"_s, true},
            {u"visible"_s, true}};
}

uint StatusNotifierMenu::GetLayout(int parentId, int recursionDepth,
                                   const QStringList& /*propertyNames*/,
                                   MenuLayoutItem& layout) const {
    constexpr uint onlyRevision = 1;
    layout = {parentId, propertiesOf(parentId), {}};
    if (parentId == 0 && recursionDepth != 0)
        for (int id = 1; isItem(id); ++id)
            layout.children.append({id, propertiesOf(id), {}});
    return onlyRevision;
}

MenuItemPropertiesList StatusNotifierMenu::GetGroupProperties(
    const QList<int>& ids, const QStringList& /*propertyNames*/) const {
    MenuItemPropertiesList found;
    for (int id = 0; id == 0 || isItem(id); ++id)
        if (ids.isEmpty() || ids.contains(id)) found.append({id, propertiesOf(id)});
    return found;
}

QDBusVariant StatusNotifierMenu::GetProperty(int id, const QString& name) const {
    return QDBusVariant(propertiesOf(id).value(name, QString()));
}

void StatusNotifierMenu::Event(int id, const QString& eventId, const QDBusVariant& /*data*/,
                               uint /*timestamp*/) {
    if (!isItem(id) || eventId != u"clicked") return;
    // An action may end this menu.
    const auto perform = m_items.at(static_cast<std::size_t>(id) - 1).perform;
    perform();
}

QList<int> StatusNotifierMenu::EventGroup(const MenuEvents& events) {
    QList<int> unknown;
    for (const MenuEvent& event : events) {
        if (isItem(event.id) || event.id == 0)
            Event(event.id, event.name, QDBusVariant(event.data), event.timestamp);
        else
            unknown << event.id;
    }
    return unknown;
}

QList<int> StatusNotifierMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) const {
    for (const int id : ids)
        if (id != 0 && !isItem(id)) idErrors << id;
    return {};
}
