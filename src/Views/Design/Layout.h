#pragma once

#include <QBoxLayout>
#include <QMargins>
#include <QWidget>
#include <initializer_list>

/// One place of a column or row: a view, or room that takes what is left.
struct LayoutItem {
    LayoutItem(QWidget* view, int stretchFactor = 0, Qt::Alignment alignmentInside = {})
        : widget(view), stretch(stretchFactor), alignment(alignmentInside) {}

    static LayoutItem space() { return {nullptr, 1}; }

    QWidget* widget;
    int stretch;
    Qt::Alignment alignment;
};

/// Puts the views one after the other into a view of their own; lengths are in points.
inline QWidget* stack(QBoxLayout::Direction direction, int spacing,
                      std::initializer_list<LayoutItem> items, const QMargins& padding = {}) {
    auto* const view = new QWidget;
    auto* const layout = new QBoxLayout(direction, view);
    layout->setSpacing(spacing);
    layout->setContentsMargins(padding);
    for (const LayoutItem& item : items) {
        if (item.widget)
            layout->addWidget(item.widget, item.stretch, item.alignment);
        else
            layout->addStretch(item.stretch);
    }
    return view;
}

inline QWidget* column(int spacing, std::initializer_list<LayoutItem> items,
                       const QMargins& padding = {}) {
    return stack(QBoxLayout::TopToBottom, spacing, items, padding);
}

inline QWidget* row(int spacing, std::initializer_list<LayoutItem> items,
                    const QMargins& padding = {}) {
    return stack(QBoxLayout::LeftToRight, spacing, items, padding);
}

/// The same length on two sides.
inline QMargins padding(int horizontal, int vertical) {
    return {horizontal, vertical, horizontal, vertical};
}
