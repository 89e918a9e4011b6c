#include "Views/MenuBar/MenuBarView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/MenuBar/MenuBarButton.h"
#include "Views/MenuBar/MenuBarMaskRow.h"
#include "Views/MenuBar/MenuBarPresetRow.h"
#include "Views/MenuBar/PanelHead.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int blockPadding = 6;
constexpr int ruleHeight = 1;

/// Also right for a view that is not shown only because the panel has not been yet.
bool isLeftOut(const QWidget& view) {
    return view.isHidden() && view.testAttribute(Qt::WA_WState_ExplicitShowHide);
}

/// Views show themselves with the panel, at less cost, unless they are hidden.
void setLeftOut(QWidget& view, bool isOut) {
    if (isOut != isLeftOut(view)) view.setVisible(!isOut);
}

/// Shows the first rows and leaves out the others.
void showRows(const std::vector<std::vector<QWidget*>>& rows, qsizetype count) {
    for (const auto& row : rows) {
        for (QWidget* const view : row)
            setLeftOut(*view, count <= 0);
        --count;
    }
}

}  // namespace

MenuBarView::MenuBarView(AppState& state, Scheduler& scheduler, const Actions& actions)
    : m_state(state),
      m_scheduler(scheduler),
      m_actions(actions),
      m_head(new PanelHead(this)),
      m_actionBlock(actionRows()),
      m_presetBlock(presetRows()),
      m_maskBlock(maskRows()),
      m_selectionBlock(selectionRows()),
      m_turnUpdate(scheduler, [this] {
          if (isVisible()) update();
      }) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::ClickFocus);
    setAccessibleName(u"Veyla Panel"_s);
    m_turnUpdate.follow(state.activeOverlayCount, state.currentFrontmostAppName,
                        state.areMasksVisible, state.isEditingEnabled, state.presets, state.masks,
                        state.selectedMaskID, state.updaterManager().canCheckForUpdates());
}

MenuBarView::~MenuBarView() = default;

void MenuBarView::refresh() {
    update();
}

int MenuBarView::neededHeight() const {
    if (!m_neededHeight) m_neededHeight = placesIn(0).height;
    return *m_neededHeight;
}

QSize MenuBarView::sizeHint() const {
    return {panelWidth, neededHeight()};
}

QSize MenuBarView::minimumSizeHint() const {
    return {0, neededHeight()};
}

void MenuBarView::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void MenuBarView::showEvent(QShowEvent* /*event*/) {
    if (!m_isArranged) arrange();
}

std::array<const MenuBarView::Block*, 4> MenuBarView::blocks() const {
    return {&m_actionBlock, &m_presetBlock, &m_maskBlock, &m_selectionBlock};
}

// The toolkit's layouts would ask every row for its sizes many times.
MenuBarView::Places MenuBarView::placesIn(int width) const {
    Places places;
    int top = 0;
    const auto put = [&](const Row& row, const QMargins& margin) {
        top += margin.top();
        int right = width - margin.right();
        const int height = row.front()->sizeHint().height();
        for (auto view = row.rbegin(); view != row.rend(); ++view) {
            const bool isFirst = *view == row.front();
            const int left = isFirst ? margin.left() : right - (*view)->sizeHint().width();
            places.views.push_back({*view, {left, top, right - left, height}});
            right = left;
        }
        top += height + margin.bottom();
    };
    put({m_head}, {});
    for (const Block* const block : blocks()) {
        if (isLeftOut(*block->rows.front().front())) continue;
        places.rules.push_back({0, top, width, ruleHeight});
        top += ruleHeight;
        int above = blockPadding;
        for (const Row& row : block->rows) {
            if (isLeftOut(*row.front())) continue;
            QMargins margin(blockPadding, above, blockPadding, 0);
            if (row == block->rows.front()) margin += block->firstMargin;
            put(row, margin);
            above = block->spacing;
        }
        top += blockPadding;
    }
    places.height = top;
    return places;
}

void MenuBarView::arrange() {
    Places places = placesIn(width());
    for (const auto& [view, place] : places.views)
        view->setGeometry(place);
    if (std::exchange(m_rules, std::move(places.rules)) != m_rules) QWidget::update();
    m_isArranged = true;
}

MenuBarView::Block MenuBarView::actionRows() {
    AppState& state = m_state;
    Block block{0, {}};
    const auto add = [&](MenuBarButton* button, const QString& identifier) {
        setAccessibleIdentifier(*button, identifier);
        block.rows.push_back({button});
        return button;
    };
    // It appears at the pointer, which is here.
    add(menuButton(u"plus.circle"_s, u"New Mask"_s, closing([&state] { state.createMask(); })),
        u"panel-new-mask"_s);
    m_visibility = add(menuButton({}, {}, [&state] { state.toggleVisibilityForAllMasks(); }),
                       u"panel-toggle-all"_s);
    m_editing =
        add(menuButton({}, {}, [&state] { state.toggleEditing(); }), u"panel-toggle-editing"_s);
    add(menuButton(u"macwindow"_s, u"Open Dashboard"_s,
                   closing([&state] { state.openDashboardWindow(); })),
        u"panel-open-dashboard"_s);
    add(menuButton(u"square.and.arrow.down"_s, u"Save Layout as Preset"_s,
                   openingDashboard([&state] { state.beginSavePresetFlow(); })),
        u"panel-save-preset"_s);
    auto* const settings = add(menuButton(u"gearshape"_s, u"Open Settings"_s,
                                          closing([this] { m_actions.openSettings(); })),
                               u"panel-open-settings"_s);
    settings->setEnabled(m_actions.openSettings != nullptr);
    m_updates = add(menuButton(u"arrow.triangle.2.circlepath"_s, u"Check for Updates…"_s,
                               closing([&state] { state.updaterManager().checkForUpdates(); })),
                    u"panel-check-for-updates"_s);
    add(menuButton(u"sparkles"_s, u"What's New"_s,
                   openingDashboard([&state] { state.presentWhatsNew(); })),
        u"panel-whats-new"_s);
    add(menuButton(u"figure.walk"_s, u"Show Walkthrough"_s,
                   openingDashboard([&state] { state.replayOnboarding(); })),
        u"panel-show-walkthrough"_s);
    return block;
}

MenuBarView::Block MenuBarView::presetRows() {
    const TextStyle style{.size = 9, .weight = QFont::Bold, .tracking = 0.6, .isUpperCase = true};
    auto* const heading = new TextLabel(u"Presets"_s, style, VeylaTheme::textMuted());
    heading->setParent(this);
    Block block{2, {{heading}}, {10, 4, 10, 2}};
    for (qsizetype index = 0; index < shownPresets; ++index) {
        auto* const row = new MenuBarPresetRow(this);
        // Other masks make the panel another height, and another row would come to the pointer.
        connect(row, &QPushButton::clicked, this, closing([this, index] {
                    const auto presets = m_state.presets.value();
                    if (index < presets.size()) m_state.applyPreset(presets.at(index));
                }));
        block.rows.push_back({row});
        m_presetRows.push_back(row);
    }
    return block;
}

MenuBarView::Block MenuBarView::maskRows() {
    Block block{1, {}};
    const MenuBarMaskRow::Actions actions{
        [this](const QUuid& id) { m_state.selectMask(id); },
        [this](const QUuid& id, bool isVisible) { m_state.setVisibility(id, isVisible); }};
    for (qsizetype index = 0; index < shownMasks; ++index) {
        const auto& row = m_maskRows.emplace_back(std::make_unique<MenuBarMaskRow>(actions, this));
        block.rows.push_back({row->nameButton(), row->visibilityButton()});
    }
    return block;
}

MenuBarView::Block MenuBarView::selectionRows() {
    AppState& state = m_state;
    Block block{0, {}};
    const std::pair<MenuBarButton*, QString> buttons[] = {
        {menuButton(u"doc.on.doc"_s, u"Duplicate Selected"_s,
                    [&state] { state.duplicateSelectedMask(); }),
         u"panel-duplicate-selected"_s},
        {menuButton(u"eye.slash"_s, u"Toggle Visibility"_s,
                    [&state] { state.toggleSelectedMaskVisibility(); }),
         u"panel-toggle-selected"_s},
        {menuButtonDestructive(u"trash"_s, u"Delete Selected"_s,
                               [&state] { state.deleteSelectedMask(); }),
         u"panel-delete-selected"_s}};
    for (const auto& [button, identifier] : buttons) {
        setAccessibleIdentifier(*button, identifier);
        block.rows.push_back({button});
    }
    return block;
}

MenuBarButton* MenuBarView::menuButton(const QString& icon, const QString& title,
                                       std::function<void()> action) {
    return new MenuBarButton(icon, title, VeylaTheme::accentBlue(), VeylaTheme::textPrimary(),
                             std::move(action), this);
}

MenuBarButton* MenuBarView::menuButtonDestructive(const QString& icon, const QString& title,
                                                  std::function<void()> action) {
    return new MenuBarButton(icon, title, VeylaTheme::accentRed(), VeylaTheme::accentRed(),
                             std::move(action), this);
}

std::function<void()> MenuBarView::closing(std::function<void()> action) {
    return [this, action = std::move(action)] {
        if (m_actions.close) m_actions.close();
        action();
    };
}

std::function<void()> MenuBarView::openingDashboard(std::function<void()> thenPerform) {
    return closing(
        [this, perform = std::move(thenPerform), pending = std::make_shared<Subscription>()] {
            m_state.openDashboardWindow();
            *pending = m_scheduler.after(dashboardDelay, perform);
        });
}

void MenuBarView::update() {
    const bool areVisible = m_state.areMasksVisible.value();
    m_head->show(m_state.activeOverlayCount.value(), areVisible,
                 m_state.currentFrontmostAppName.value());
    m_visibility->show(areVisible ? u"eye.slash"_s : u"eye"_s,
                       areVisible ? u"Hide All Masks"_s : u"Show All Masks"_s);
    const bool isEditing = m_state.isEditingEnabled.value();
    m_editing->show(isEditing ? u"lock"_s : u"lock.open"_s,
                    isEditing ? u"Lock Editing"_s : u"Unlock Editing"_s);
    m_updates->setEnabled(m_state.updaterManager().canCheckForUpdates().value());
    updatePresets();
    updateMasks();
    showRows(m_selectionBlock.rows, m_state.activeMask() ? std::ssize(m_selectionBlock.rows) : 0);
    m_neededHeight.reset();
    m_isArranged = false;
    if (isVisible()) arrange();
    updateGeometry();
    if (m_actions.contentChanged) m_actions.contentChanged();
}

void MenuBarView::updatePresets() {
    const auto& presets = m_state.presets.value();
    const qsizetype count = std::min(presets.size(), shownPresets);
    for (qsizetype index = 0; index < count; ++index)
        m_presetRows.at(static_cast<std::size_t>(index))->show(presets.at(index));
    constexpr qsizetype heading = 1;
    showRows(m_presetBlock.rows, count > 0 ? heading + count : 0);
}

void MenuBarView::updateMasks() {
    const auto& masks = m_state.masks.value();
    const auto& selected = m_state.selectedMaskID.value();
    const qsizetype count = std::min(masks.size(), shownMasks);
    for (qsizetype index = 0; index < count; ++index) {
        const ScreenMask& mask = masks.at(index);
        m_maskRows.at(static_cast<std::size_t>(index))->show(mask, mask.id == selected);
    }
    showRows(m_maskBlock.rows, count);
}

void MenuBarView::keyPressEvent(QKeyEvent* event) {
    constexpr int last = std::numeric_limits<int>::max() / 2;
    switch (event->key()) {
        case Qt::Key_Up:
            return moveFocus(-1, 0);
        case Qt::Key_Down:
            return moveFocus(1, 0);
        case Qt::Key_Left:
            return moveFocus(0, -1);
        case Qt::Key_Right:
            return moveFocus(0, 1);
        case Qt::Key_Home:
            return moveFocus(-last, 0);
        case Qt::Key_End:
            return moveFocus(last, 0);
        default:
            QWidget::keyPressEvent(event);
    }
}

void MenuBarView::moveFocus(int rowStep, int columnStep) {
    std::vector<Row> rows;
    for (const Block* const block : blocks())
        std::copy_if(block->rows.begin(), block->rows.end(), std::back_inserter(rows),
                     [this](const Row& row) {
                         const QWidget& first = *row.front();
                         return first.isVisibleTo(this) && first.isEnabled() &&
                                first.focusPolicy() != Qt::NoFocus;
                     });
    int rowIndex = rowStep > 0 ? -1 : static_cast<int>(rows.size());
    int columnIndex = 0;
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const auto focused = std::find_if(rows[index].begin(), rows[index].end(),
                                          [](const auto* view) { return view->hasFocus(); });
        if (focused == rows[index].end()) continue;
        rowIndex = static_cast<int>(index);
        columnIndex = static_cast<int>(focused - rows[index].begin());
    }
    // Nothing has the keyboard yet, and there is no row to move within.
    if (rowStep == 0 && rowIndex == static_cast<int>(rows.size())) return;
    rowIndex = std::clamp(rowIndex + rowStep, 0, static_cast<int>(rows.size()) - 1);
    const Row& row = rows.at(static_cast<std::size_t>(rowIndex));
    columnIndex = std::clamp(columnIndex + columnStep, 0, static_cast<int>(row.size()) - 1);
    row.at(static_cast<std::size_t>(columnIndex))->setFocus(Qt::TabFocusReason);
}

void MenuBarView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), VeylaTheme::panel());
    for (const QRect& rule : m_rules)
        painter.fillRect(rule, VeylaTheme::softBorder());
}
