#pragma once

#include "Models/ScreenMask.h"

#include <QWidget>
#include <functional>
#include <optional>

class PanelButton;

/// A mask in the menu bar panel: its colour and name, which select it, and the switch of its
/// visibility.
class MenuBarMaskRow final : public QWidget {
public:
    struct Actions {
        std::function<void(const QUuid& maskID)> onSelect;
        std::function<void(const QUuid& maskID, bool isVisible)> onSetVisibility;
    };

    explicit MenuBarMaskRow(const Actions& actions);

    /// Shows a mask; repaints only what differs.
    void show(const ScreenMask& mask, bool isSelected);

    using QWidget::show;
    /// White where the mask's colour cannot be read.
    static QColor dotColor(const ScreenMask& mask);
    PanelButton* nameButton() const;
    PanelButton* visibilityButton() const;

    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class NameButton;
    class VisibilityButton;

    NameButton* m_name;
    VisibilityButton* m_visibility;
    std::optional<ScreenMask> m_mask;
    bool m_isSelected = false;
};
