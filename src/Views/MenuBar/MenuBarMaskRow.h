#pragma once

#include "Models/ScreenMask.h"

#include <QColor>
#include <functional>
#include <optional>

class PanelButton;
class QWidget;

/// A mask in the menu bar panel: a button with its colour and name, which selects it, and beside it
/// the switch of its visibility. A selected mask has a ground that reaches over both.
class MenuBarMaskRow {
public:
    struct Actions {
        std::function<void(const QUuid& maskID)> onSelect;
        std::function<void(const QUuid& maskID, bool isVisible)> onSetVisibility;
    };

    /// The buttons belong to `parent`, which the row must not outlive.
    MenuBarMaskRow(const Actions& actions, QWidget* parent);
    MenuBarMaskRow(const MenuBarMaskRow&) = delete;
    MenuBarMaskRow& operator=(const MenuBarMaskRow&) = delete;
    ~MenuBarMaskRow() = default;

    /// Shows a mask; repaints only what differs.
    void show(const ScreenMask& mask, bool isSelected);

    /// White where the mask's colour cannot be read.
    static QColor dotColor(const ScreenMask& mask);
    PanelButton* nameButton() const;
    PanelButton* visibilityButton() const;

private:
    class NameButton;
    class VisibilityButton;

    NameButton* m_name;
    VisibilityButton* m_visibility;
    std::optional<ScreenMask> m_mask;
    bool m_isSelected = false;
};
