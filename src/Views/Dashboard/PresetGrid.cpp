#include "Views/Dashboard/PresetGrid.h"

#include "Views/Components/SheetArea.h"
#include "Views/Dashboard/PresetRowView.h"
#include "Views/Design/Typography.h"

#include <QApplication>
#include <QLayout>
#include <QScrollArea>
#include <algorithm>
#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int gap = 12;
constexpr int leastCardWidth = 240;
/// Cards are made this far beyond the view, so that scrolling and Tab find them there.
constexpr int overscan = 200;

int scaled(int length) {
    return qRound(length * textScale());
}

bool hasKeyboard(const QWidget* card) {
    const QWidget* const focused = QApplication::focusWidget();
    return focused && card->isAncestorOf(focused);
}

}  // namespace

PresetGrid::PresetGrid(AppState& state, SheetArea& sheets) : m_state(state), m_sheets(sheets) {
    setMinimumWidth(scaled(leastCardWidth));
    // Never by Tab; it is the place in the tab order that the cards come after.
    setFocusPolicy(Qt::ClickFocus);
    setAccessibleName(u"Saved Presets"_s);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void PresetGrid::showPresets(const QList<MaskPreset>& presets) {
    m_presets = presets;
    update();
}

void PresetGrid::update() {
    buildLines();
    showCardsInView();
}

int PresetGrid::columnCount() const {
    return std::max(1, (width() + gap) / (scaled(leastCardWidth) + gap));
}

void PresetGrid::buildLines() {
    if (m_cardHeight == 0 && !m_presets.isEmpty()) {
        const std::unique_ptr<PresetRowView> card(makeCard(m_presets.first()));
        m_cardHeight = card->sizeHint().height();
    }
    m_lines.clear();
    const int columns = columnCount();
    int top = 0;
    for (int first = 0; first < count(); first += columns) {
        int height = m_cardHeight;
        for (int index = first; index < std::min(first + columns, count()); ++index) {
            const auto card = m_cards.find(m_presets[index].id);
            if (card != m_cards.end() && card->second->isEditing())
                height = std::max(height, card->second->sizeHint().height());
        }
        m_lines.push_back({top, height});
        top += height + gap;
    }
    setFixedHeight(m_lines.empty() ? 0 : top - gap);
}

QRect PresetGrid::rectOf(int index) const {
    const int columns = columnCount();
    const int column = index % columns;
    const Line& line = m_lines[static_cast<std::size_t>(index / columns)];
    // Whole points that add up to the width.
    const auto edge = [&](int place) { return (width() + gap) * place / columns; };
    return {edge(column), line.top, edge(column + 1) - edge(column) - gap, line.height};
}

std::pair<int, int> PresetGrid::spanInView() const {
    if (!m_scrollArea) return {0, height()};
    const int top = -mapTo(m_scrollArea->viewport(), QPoint(0, 0)).y();
    return {top - overscan, top + m_scrollArea->viewport()->height() + overscan};
}

void PresetGrid::showCardsInView() {
    // Only then it is known what is in view.
    if (!isVisible()) return;
    const auto [top, bottom] = spanInView();
    std::map<QUuid, PresetRowView*> kept;
    for (int index = 0; index < count(); ++index) {
        const MaskPreset& preset = m_presets[index];
        const QRect place = rectOf(index);
        const auto existing = m_cards.find(preset.id);
        const bool isInView = place.bottom() >= top && place.top() <= bottom;
        const bool isHeld = existing != m_cards.end() &&
                            (existing->second->isInUse() || hasKeyboard(existing->second));
        // A workspace may hold an identity twice.
        if ((!isInView && !isHeld) || kept.contains(preset.id)) continue;
        PresetRowView* const card = existing != m_cards.end() ? existing->second : makeCard(preset);
        card->show(preset);
        card->setGeometry(place);
        card->show();
        kept.emplace(preset.id, card);
    }
    keepFocus(kept);
    const auto leaving = std::exchange(m_cards, std::move(kept));
    for (const auto& [id, card] : leaving) {
        if (m_cards.contains(id)) continue;
        // A card may be the one whose event is being handled.
        card->hide();
        card->deleteLater();
    }
    orderTabs();
}

// When the card that has the keyboard goes, the nearest that stays gets it.
void PresetGrid::keepFocus(const std::map<QUuid, PresetRowView*>& staying) {
    const auto leaving = std::find_if(m_cards.begin(), m_cards.end(),
                                      [](const auto& each) { return hasKeyboard(each.second); });
    if (leaving == m_cards.end() || staying.contains(leaving->first)) return;
    const auto distance = [&](const auto& each) {
        return (each.second->pos() - leaving->second->pos()).manhattanLength();
    };
    const auto nearest = std::min_element(
        staying.begin(), staying.end(),
        [&](const auto& first, const auto& second) { return distance(first) < distance(second); });
    if (nearest != staying.end())
        nearest->second->takeKeyboard();
    else
        setFocus(Qt::OtherFocusReason);
}

// The keyboard walks the grid in reading order.
void PresetGrid::orderTabs() {
    QWidget* previous = this;
    for (const MaskPreset& preset : m_presets) {
        const auto card = m_cards.find(preset.id);
        if (card == m_cards.end()) continue;
        for (QWidget* const inside : card->second->findChildren<QWidget*>()) {
            if (!(inside->focusPolicy() & Qt::TabFocus)) continue;
            QWidget::setTabOrder(previous, inside);
            previous = inside;
        }
    }
}

PresetRowView* PresetGrid::makeCard(const MaskPreset& preset) {
    AppState& state = m_state;
    const QUuid id = preset.id;
    const auto load = [&state, id] {
        for (const MaskPreset& each : state.presets.value())
            if (each.id == id) return state.applyPreset(MaskPreset(each));
    };
    auto* const card = new PresetRowView(
        preset,
        {.onLoad = load,
         .onSave = [&state, id](const QString& name,
                                const QString& trigger) { state.updatePreset(id, name, trigger); },
         .onBindToCurrentApp =
             [&state, id] {
                 state.bindPresetToCurrentApp(id);
                 return state.applicationInFront().has_value();
             },
         .applications = [&state] { return state.applicationsToBind(); },
         .onBind =
             [&state, id](const RunningApplication& application) {
                 state.bindPreset(id, application);
             },
         .onClearBinding = [&state, id] { state.clearPresetAppBinding(id); },
         .onDelete = [&state, id] { state.deletePreset(id); },
         .onResize = [this] { update(); }},
        m_sheets);
    card->setParent(this);
    return card;
}

// Whatever moves the grid below the view.
void PresetGrid::watchScrolling() {
    if (m_scrollArea) return;
    for (QWidget* each = parentWidget(); each && !m_scrollArea; each = each->parentWidget()) {
        each->installEventFilter(this);
        m_scrollArea = qobject_cast<QScrollArea*>(each->parentWidget());
    }
}

bool PresetGrid::eventFilter(QObject* watched, QEvent* event) {
    const bool isMoved = event->type() == QEvent::Move || event->type() == QEvent::Resize;
    if (isMoved) showCardsInView();
    return QWidget::eventFilter(watched, event);
}

void PresetGrid::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    update();
}

void PresetGrid::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    watchScrolling();
    update();
}
