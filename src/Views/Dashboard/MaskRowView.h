#pragma once

#include "Models/ScreenMask.h"
#include "Views/Components/AccessibleElement.h"

#include <QPoint>
#include <QWidget>
#include <functional>
#include <optional>

class QMimeData;

/// One mask in the list of layers: colour, name, summary and whether it is visible. A click or the
/// Enter or Space key selects it; it can be dragged, as the text of its id.
class MaskRowView final : public QWidget, public AccessibleElement {
public:
    struct Actions {
        std::function<void()> onSelect;
        /// Asks for a context menu at a global position; empty for a row that has none.
        std::function<void(QPoint)> onContextMenu;
    };

    MaskRowView(const ScreenMask& mask, bool isSelected, const Actions& actions);

    /// Shows other values of the mask; repaints only where they differ.
    void show(const ScreenMask& mask, bool isSelected);
    using QWidget::show;

    /// The height of every row, in points.
    static int rowHeight();
    /// For example "320 × 180 px • 86%"; every number is truncated.
    static QString summaryText(const ScreenMask& mask);
    /// The mask that is dragged; nothing for what does not come from a row. Text from another
    /// program may say anything.
    static std::optional<QUuid> maskIDIn(const QMimeData* payload);

    QAccessible::Role accessibleRole() const override { return QAccessible::ListItem; }
    void describeState(QAccessible::State& state) const override;
    bool canBePressed() const override { return true; }
    void pressFromAccessibility() override { m_actions.onSelect(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool event(QEvent* event) override;

private:
    void describe();
    void startDrag();
    QRect textRect() const;

    ScreenMask m_mask;
    bool m_isSelected;
    Actions m_actions;
    std::optional<QPoint> m_pressedAt;
};
