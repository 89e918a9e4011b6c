#pragma once

#include "App/AppState.h"
#include "Views/TurnUpdate.h"

#include <QWidget>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class MenuBarButton;
class MenuBarMaskRow;
class MenuBarPresetRow;
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
    /// From left to right; the first is as wide as the others leave room for.
    using Row = std::vector<QWidget*>;

    /// A part of the panel with a rule above it, which takes no room while no row is shown.
    struct Block {
        int spacing;
        std::vector<Row> rows;
        /// What the first row is smaller by.
        QMargins firstMargin{};
    };

    /// Where everything is that is shown.
    struct Places {
        std::vector<std::pair<QWidget*, QRect>> views;
        std::vector<QRect> rules;
        int height = 0;
    };

    Block actionRows();
    Block presetRows();
    Block maskRows();
    Block selectionRows();
    std::array<const Block*, 4> blocks() const;

    MenuBarButton* menuButton(const QString& icon, const QString& title,
                              std::function<void()> action);
    MenuBarButton* menuButtonDestructive(const QString& icon, const QString& title,
                                         std::function<void()> action);
    MenuBarButton* addButton(MenuBarButton* button, const QString& identifier);
    /// An action after which the panel is in the way.
    std::function<void()> closing(std::function<void()> action);
    std::function<void()> openingDashboard(std::function<void()> thenPerform);
    Places placesIn(int width) const;
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
    std::vector<MenuBarPresetRow*> m_presetRows;
    std::vector<std::unique_ptr<MenuBarMaskRow>> m_maskRows;
    Block m_actionBlock;
    Block m_presetBlock;
    Block m_maskBlock;
    Block m_selectionBlock;
    mutable std::optional<int> m_neededHeight;
    std::vector<QRect> m_rules;
    bool m_isArranged = false;
    TurnUpdate m_turnUpdate;
};
