#include "Views/Dashboard/LayerList.h"

#include "Views/Dashboard/MaskGroupRowView.h"
#include "Views/Dashboard/MaskRowView.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QHash>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int gapBetweenRows = 6;
constexpr int groupPadding = 6;
constexpr double groundCornerRadius = 10;
/// Rows are made this far beyond the view, so that scrolling finds them there.
constexpr int overscan = 120;

bool hasKeyboard(const QWidget* row) {
    const QWidget* const focused = QApplication::focusWidget();
    return focused && (focused == row || row->isAncestorOf(focused));
}

}  // namespace

/// What is scrolled: the rows, and the grounds of the groups behind them.
class LayerList::Content final : public QWidget {
public:
    explicit Content(LayerList& list) : m_list(list) {
        setAcceptDrops(true);
        // Never by Tab; it is the place in the tab order that the rows come after.
        setFocusPolicy(Qt::ClickFocus);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        for (const GroupGround& ground : m_list.m_grounds) {
            const QRect rect(0, ground.top, width(), ground.bottom - ground.top);
            if (rect.intersects(event->rect()))
                paintPanel(painter, rect, groundCornerRadius, VeylaTheme::panelMuted(),
                           m_dropTarget == ground.groupID ? VeylaTheme::accentBlue()
                                                          : VeylaTheme::softBorder());
        }
    }

    // The headers take drops themselves; here they come to a group's masks.
    void dragEnterEvent(QDragEnterEvent* event) override {
        if (event->mimeData()->hasText()) event->acceptProposedAction();
    }

    void dragMoveEvent(QDragMoveEvent* event) override {
        setDropTarget(groupAt(event->position().y()));
        m_dropTarget ? event->acceptProposedAction() : event->ignore();
    }

    void dragLeaveEvent(QDragLeaveEvent* /*event*/) override { setDropTarget(std::nullopt); }

    void dropEvent(QDropEvent* event) override {
        setDropTarget(std::nullopt);
        const auto groupID = groupAt(event->position().y());
        const auto maskID = MaskRowView::maskIDIn(event->mimeData());
        if (!groupID || !maskID) return event->ignore();
        event->acceptProposedAction();
        m_list.m_state.addMaskToGroup(*maskID, *groupID);
    }

private:
    std::optional<QUuid> groupAt(double y) const {
        for (const GroupGround& ground : m_list.m_grounds)
            if (y >= ground.top && y < ground.bottom) return ground.groupID;
        return std::nullopt;
    }

    void setDropTarget(const std::optional<QUuid>& groupID) {
        if (groupID == m_dropTarget) return;
        m_dropTarget = groupID;
        update();
    }

    LayerList& m_list;
    std::optional<QUuid> m_dropTarget;
};

LayerList::LayerList(AppState& state, Scheduler& scheduler)
    : m_state(state), m_content(new Content(*this)), m_turnUpdate(scheduler, [this] { update(); }) {
    setFrameShape(QFrame::NoFrame);
    styleScrollBar(*this);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(u"Layers"_s);
    viewport()->setAutoFillBackground(false);
    m_content->setAccessibleName(u"Layers"_s);
    setWidget(m_content);
    m_content->setAutoFillBackground(false);
    m_turnUpdate.follow(state.masks, state.groups, state.selectedMaskID);
    update();
}

LayerList::~LayerList() = default;

void LayerList::update() {
    const auto formerGrounds = m_grounds;
    buildLines();
    showRowsInView();
    if (m_grounds != formerGrounds) m_content->update();
    revealSelection();
}

void LayerList::addLine(Line line, int height, int gapAbove) {
    const int above = m_lines.empty() ? 0 : m_lines.back().top + m_lines.back().height + gapAbove;
    line.top = above;
    line.height = height;
    m_lines.push_back(line);
}

void LayerList::buildLines() {
    const auto& masks = m_state.masks.value();
    const auto& groups = m_state.groups.value();
    // One pass, so that many groups cost no more than few.
    QHash<QUuid, std::vector<qsizetype>> members;
    std::vector<qsizetype> ungrouped;
    for (const MaskGroup& group : groups)
        members[group.id] = {};
    for (qsizetype index = 0; index < masks.size(); ++index) {
        // A mask must be in the list, even if a file names a group for it that is not there.
        const auto inside = members.find(masks[index].groupID.value_or(QUuid()));
        (inside != members.end() ? *inside : ungrouped).push_back(index);
    }

    const int maskHeight = MaskRowView::rowHeight();
    m_lines.clear();
    m_grounds.clear();
    for (qsizetype index = 0; index < groups.size(); ++index) {
        const MaskGroup& group = groups[index];
        const auto& inside = members[group.id];
        addLine({group.id, true, group.id, index, 0, 0, static_cast<qsizetype>(inside.size())},
                MaskGroupRowView::rowHeight(), m_grounds.empty() ? 0 : gapBetweenRows);
        GroupGround ground{group.id, m_lines.back().top, 0};
        bool isFirst = true;
        if (group.isExpanded) {
            for (const qsizetype mask : inside)
                addLine({masks[mask].id, false, group.id, mask, 0, 0, 0}, maskHeight,
                        std::exchange(isFirst, false) ? 0 : gapBetweenRows);
        }
        // Room below the last mask, which the next line must not take.
        if (!isFirst) addLine({QUuid(), false, group.id, -1, 0, 0, 0}, groupPadding, 0);
        ground.bottom = m_lines.back().top + m_lines.back().height;
        m_grounds.push_back(ground);
    }
    for (const qsizetype mask : ungrouped)
        addLine({masks[mask].id, false, QUuid(), mask, 0, 0, 0}, maskHeight, gapBetweenRows);

    const int height = m_lines.empty() ? 0 : m_lines.back().top + m_lines.back().height;
    m_content->resize(viewport()->width(), height);
}

QRect LayerList::rectOf(const Line& line) const {
    const bool isInGroup = !line.isGroup && !line.groupID.isNull();
    const int inset = isInGroup ? groupPadding : 0;
    return {inset, line.top, m_content->width() - 2 * inset, line.height};
}

void LayerList::showRowsInView() {
    const int top = verticalScrollBar()->value() - overscan;
    const int bottom = verticalScrollBar()->value() + viewport()->height() + overscan;
    std::map<QUuid, QWidget*> kept;
    const auto keep = [&](const Line& each) {
        // A workspace may hold an identity twice.
        if (each.index < 0 || kept.contains(each.id)) return;
        const auto existing = m_rows.find(each.id);
        QWidget* const row = existing != m_rows.end() ? existing->second : makeRow(each);
        if (existing != m_rows.end()) m_rows.erase(existing);
        refreshRow(row, each);
        row->setGeometry(rectOf(each));
        row->QWidget::show();
        kept.emplace(each.id, row);
    };
    auto line = std::lower_bound(m_lines.begin(), m_lines.end(), top, [](const Line& each, int y) {
        return each.top + each.height < y;
    });
    for (; line != m_lines.end() && line->top <= bottom; ++line)
        keep(*line);
    // The row that has the keyboard stays out of view, too: what is typed there is not lost.
    for (const Line& each : m_lines) {
        const auto existing = m_rows.find(each.id);
        if (existing != m_rows.end() && hasKeyboard(existing->second)) keep(each);
    }
    keepFocus(kept);
    for (const auto& [id, row] : m_rows) {
        // A row may be the one whose event is being handled.
        row->removeEventFilter(this);
        row->hide();
        row->deleteLater();
    }
    m_rows = std::move(kept);
    orderTabs();
}

// When the row that has the keyboard goes, the nearest that stays gets it. Hiding a row that has
// the keyboard would scroll the list to wherever Qt takes it.
void LayerList::keepFocus(const std::map<QUuid, QWidget*>& staying) {
    const auto leaving = std::find_if(m_rows.begin(), m_rows.end(),
                                      [](const auto& each) { return hasKeyboard(each.second); });
    if (leaving == m_rows.end()) return;
    const auto distance = [&](const auto& each) {
        return std::abs(each.second->y() - leaving->second->y());
    };
    const auto nearest = std::min_element(
        staying.begin(), staying.end(),
        [&](const auto& first, const auto& second) { return distance(first) < distance(second); });
    QWidget* const heir = nearest == staying.end() ? m_content : nearest->second;
    heir->setFocus(Qt::OtherFocusReason);
}

// The keyboard walks the list from top to bottom.
void LayerList::orderTabs() {
    QWidget* previous = m_content;
    const auto append = [&](QWidget* view) {
        if (!(view->focusPolicy() & Qt::TabFocus)) return;
        QWidget::setTabOrder(previous, view);
        previous = view;
    };
    for (const Line& each : m_lines) {
        const auto found = m_rows.find(each.id);
        if (each.index < 0 || found == m_rows.end()) continue;
        append(found->second);
        for (QWidget* const inside : found->second->findChildren<QWidget*>())
            append(inside);
    }
}

QWidget* LayerList::makeRow(const Line& line) {
    const QUuid id = line.id;
    AppState& state = m_state;
    QWidget* row = nullptr;
    if (line.isGroup) {
        row = new MaskGroupRowView(
            state.groups.value()[line.index], line.maskCount,
            {[&state, id] { state.toggleGroupExpanded(id); },
             [&state, id] { state.toggleGroupVisibility(id); },
             [&state, id] { state.toggleGroupLock(id); }, [&state, id] { state.deleteGroup(id); },
             [&state, id](const QString& name) { state.renameGroup(id, name); },
             [&state, id](const QUuid& mask) { state.addMaskToGroup(mask, id); }});
    } else {
        row = new MaskRowView(state.masks.value()[line.index], false,
                              {[&state, id] { state.selectMask(id); },
                               [this, id](QPoint position) { showMaskMenu(id, position); }});
    }
    row->setParent(m_content);
    row->installEventFilter(this);
    return row;
}

void LayerList::refreshRow(QWidget* row, const Line& line) {
    if (line.isGroup)
        static_cast<MaskGroupRowView*>(row)->show(m_state.groups.value()[line.index],
                                                  line.maskCount);
    else
        static_cast<MaskRowView*>(row)->show(m_state.masks.value()[line.index],
                                             m_state.selectedMaskID.value() == line.id);
}

// A mask that was created or chosen elsewhere is scrolled into view, once.
void LayerList::revealSelection() {
    // Before that it has no size to scroll in.
    if (!isVisible()) return;
    const auto& selection = m_state.selectedMaskID.value();
    if (selection == m_revealedSelection) return;
    m_revealedSelection = selection;
    const auto line = std::find_if(m_lines.begin(), m_lines.end(), [&](const Line& each) {
        return !each.isGroup && each.index >= 0 && selection == each.id;
    });
    if (line != m_lines.end()) ensureVisible(0, line->top + line->height / 2, 0, line->height);
}

void LayerList::showMaskMenu(const QUuid& maskID, QPoint position) {
    const auto& masks = m_state.masks.value();
    const auto mask = std::find_if(masks.begin(), masks.end(),
                                   [&](const ScreenMask& each) { return each.id == maskID; });
    const auto& groups = m_state.groups.value();
    if (mask == masks.end() || mask->groupID || groups.isEmpty()) return;
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    styleMenus(*menu);
    QMenu* const targets = menu->addMenu(u"Move to Group"_s);
    for (const MaskGroup& group : groups) {
        targets->addAction(menuTitle(group.name), this, [this, maskID, groupID = group.id] {
            m_state.addMaskToGroup(maskID, groupID);
        });
    }
    menu->popup(position);
}

bool LayerList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QScrollArea::eventFilter(watched, event);
    const auto row = std::find_if(m_rows.begin(), m_rows.end(),
                                  [&](const auto& each) { return each.second == watched; });
    if (row == m_rows.end() || !row->second->hasFocus()) return false;
    const auto count = static_cast<int>(m_lines.size());
    switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Down:
            moveFocus(row->first, 1);
            return true;
        case Qt::Key_Up:
            moveFocus(row->first, -1);
            return true;
        case Qt::Key_Home:
            moveFocus(row->first, -count);
            return true;
        case Qt::Key_End:
            moveFocus(row->first, count);
            return true;
        default:
            return false;
    }
}

void LayerList::moveFocus(const QUuid& from, int step) {
    const auto line = std::find_if(m_lines.begin(), m_lines.end(), [&](const Line& each) {
        return each.id == from && each.index >= 0;
    });
    if (line == m_lines.end()) return;
    const int last = static_cast<int>(m_lines.size()) - 1;
    int target = std::clamp(static_cast<int>(line - m_lines.begin()) + step, 0, last);
    const int direction = step > 0 ? 1 : -1;
    const auto isRow = [&] { return m_lines[static_cast<std::size_t>(target)].index >= 0; };
    while (target > 0 && target < last && !isRow())
        target += direction;
    // The list may end with the room below a group.
    while (target > 0 && !isRow())
        --target;
    const Line& chosen = m_lines[static_cast<std::size_t>(target)];
    ensureVisible(0, chosen.top + chosen.height / 2, 0, chosen.height);
    showRowsInView();
    const auto row = m_rows.find(chosen.id);
    if (row != m_rows.end()) row->second->setFocus(Qt::OtherFocusReason);
}

void LayerList::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    m_content->resize(viewport()->width(), m_content->height());
    showRowsInView();
}

void LayerList::showEvent(QShowEvent* event) {
    QScrollArea::showEvent(event);
    revealSelection();
}

void LayerList::scrollContentsBy(int dx, int dy) {
    QScrollArea::scrollContentsBy(dx, dy);
    showRowsInView();
}
