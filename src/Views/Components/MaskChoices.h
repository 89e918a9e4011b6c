#pragma once

#include <QColor>
#include <QStringList>
#include <algorithm>
#include <span>
#include <vector>

// What a ChoiceRow of a mask's looks consists of.

/// The names of `ScreenMask::allStyles`, in its order.
QStringList maskStyleNames();

/// The colours of those hexadecimal texts, black for one that cannot be read.
std::vector<QColor> swatchColors(std::span<const QString> hexTexts);

/// The place of an item, -1 when it is none of them.
template <typename Items, typename Item>
int choiceOf(const Item& item, const Items& items) {
    const auto found = std::find(items.begin(), items.end(), item);
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}
