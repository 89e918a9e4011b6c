#pragma once

#include "App/AppState.h"
#include "Views/TurnUpdate.h"

#include <QWidget>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>

class MenuBarButton;
class MenuBarMaskRow;
class MenuBarPresetRow;
class PanelButton;
class PanelHead;

/// The content of the menu bar panel: what is on screen, and the operations that are wanted most
/// often. It keeps nothing of its own. Up and Down move between the rows, Left and Right within
/// one, Home and End to the ends.
class MenuBarView final : public QWidget {
public:
    /// In points of the design.
    static constexpr int panelWidth = 250;
    /// From opening the dashboard to what is shown in it.
    static constexpr std::chrono::milliseconds dashboardDelay{300};
    /// Later ones are not shown.
    static constexpr qsizetype shownPresets = 6;
    static constexpr qsizetype shownMasks = 5;

    struct Actions {
        /// Brings the program forward and opens its settings; empty where there are none to open.
        std::function<void()> openSettings;
        /// Another window or the desktop is wanted now.
        std::function<void()> close;
        /// Rows have come, gone or changed, and with them the height.
        std::function<void()> contentChanged;
    };

    /// The references must outlive the view.
    MenuBarView(AppState& state, Scheduler& scheduler, const Actions& actions);
    ~MenuBarView() override;

    /// Brings everything up to date, before the view is shown: it follows the fields only while it
    /// is on screen.
    void refresh();
    /// What is shown now, in full.
    int neededHeight() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// The buttons of a row, from left to right.
    using Row = std::vector<PanelButton*>;

    /// A part of the panel with its own rule above it, which takes no room while that is hidden.
    struct Block {
        QWidget* rule;
        int spacing;
        std::vector<QWidget*> rows;
        /// What the first row is smaller by.
        QMargins firstMargin{};
    };

    Block actionRows();
    Block presetRows();
    Block maskRows();
    Block selectionRows();
    void addBlock(const Block& block);

    MenuBarButton* menuButton(const QString& icon, const QString& title,
                              std::function<void()> action);
    MenuBarButton* menuButtonDestructive(const QString& icon, const QString& title,
                                         std::function<void()> action);
    MenuBarButton* addButton(MenuBarButton* button, const QString& identifier);
    /// An action after which the panel is in the way.
    std::function<void()> closing(std::function<void()> action);
    std::function<void()> openingDashboard(std::function<void()> thenPerform);
    /// Tells the place of every view that is shown, top to bottom, and returns the height of all.
    int stack(const std::function<void(QWidget* view, const QRect& place)>& tell) const;
    void arrange();
    void update();
    void updatePresets();
    void updateMasks();
    void moveFocus(int rowStep, int columnStep);

    AppState& m_state;
    Scheduler& m_scheduler;
    Actions m_actions;
    PanelHead* m_head;
    MenuBarButton* m_visibility = nullptr;
    MenuBarButton* m_editing = nullptr;
    MenuBarButton* m_updates = nullptr;
    std::vector<Block> m_blocks;
    mutable std::optional<int> m_neededHeight;
    bool m_isArranged = false;
    // What goes with the rows of a block.
    std::vector<QWidget*> m_presetParts;
    std::vector<MenuBarPresetRow*> m_presetRows;
    QWidget* m_maskRule = nullptr;
    std::vector<MenuBarMaskRow*> m_maskRows;
    std::vector<QWidget*> m_selectionParts;
    /// Top to bottom, hidden ones included.
    std::vector<Row> m_rows;
    TurnUpdate m_turnUpdate;
};
