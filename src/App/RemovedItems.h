#pragma once

#include <QList>
#include <QUuid>
#include <algorithm>
#include <optional>

/// What has been taken out of a list, and between which neighbours it was. The list may change
/// before it comes back.
template <typename Item>
class RemovedItems {
public:
    /// Takes every item of that id out of the list.
    static RemovedItems take(const QUuid& id, QList<Item>& list) {
        RemovedItems removed;
        const auto isWanted = [&](const Item& item) { return item.id == id; };
        const auto first = std::find_if(list.begin(), list.end(), isWanted);
        const auto next = std::find_if_not(first, list.end(), isWanted);
        removed.m_index = first - list.begin();
        if (first != list.begin()) removed.m_previous = std::prev(first)->id;
        if (next != list.end()) removed.m_next = next->id;
        std::copy_if(list.begin(), list.end(), std::back_inserter(removed.m_items), isWanted);
        list.removeIf(isWanted);
        return removed;
    }

    const QList<Item>& items() const { return m_items; }

    /// Puts the items where they were: beside the neighbour that is still there, else as far from
    /// the start as before.
    void putBack(QList<Item>& list) const {
        const auto previous = find(m_previous, list);
        const auto next = find(m_next, list);
        qsizetype index = previous ? *previous + 1 : next.value_or(std::min(m_index, list.size()));
        for (const Item& item : m_items)
            list.insert(index++, item);
    }

private:
    static std::optional<qsizetype> find(const std::optional<QUuid>& id, const QList<Item>& list) {
        const auto found =
            std::find_if(list.begin(), list.end(), [&](const Item& item) { return item.id == id; });
        return found == list.end() ? std::nullopt : std::optional(found - list.begin());
    }

    QList<Item> m_items;
    qsizetype m_index = 0;
    std::optional<QUuid> m_previous;
    std::optional<QUuid> m_next;
};
