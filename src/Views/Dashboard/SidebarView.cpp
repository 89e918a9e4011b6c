#include "Views/Dashboard/SidebarView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/AppIconView.h"
#include "Views/Components/FormCard.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Dashboard/FeatureBadge.h"
#include "Views/Dashboard/LayerList.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Layout.h"
#include "Views/Design/Panel.h"
#include "Views/Design/VeylaTheme.h"

#include <QMenu>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int columnPadding = 16;
constexpr int iconSide = 36;

}  // namespace

SidebarView::SidebarView(AppState& state, Scheduler& scheduler, CoachmarkAnchors& anchors)
    : m_state(state),
      m_masksBadge(new FeatureBadge(u"Masks"_s)),
      m_presetsBadge(new FeatureBadge(u"Presets"_s)),
      m_activeBadge(new FeatureBadge(u"Active"_s)),
      m_create(primaryButton(u"Create New Mask"_s, u"plus"_s)),
      m_visibility(secondaryButton({}, {})),
      m_editing(secondaryButton({}, {})),
      m_turnUpdate(scheduler, [this] { update(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_create->setAccessibleName(u"Create new mask"_s);
    setAccessibleIdentifier(*m_create, u"create-mask-button"_s);
    anchors.mark(m_create, CoachmarkAnchor::createMask);
    connect(m_create, &QPushButton::clicked, this, [this] { m_state.createMask(); });

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(columnPadding, columnPadding, columnPadding, columnPadding);
    layout->setSpacing(12);
    layout->addWidget(header());
    layout->addWidget(counters());
    layout->addWidget(m_create);
    layout->addWidget(switches(anchors));
    layout->addWidget(layersHeader());
    layout->addWidget(new LayerList(state, scheduler), 1);

    m_turnUpdate.follow(state.activeOverlayCount, state.presets, state.isEditingEnabled,
                        state.areMasksVisible);
    update();
}

QWidget* SidebarView::header() {
    const TextStyle tagline{.size = 8, .weight = QFont::Bold, .tracking = 0.8, .isUpperCase = true};
    return row(
        10,
        {new AppIconView(iconSide),
         column(1, {new TextLabel(u"Veyla"_s, {16, QFont::Bold}, VeylaTheme::textPrimary()),
                    new TextLabel(u"Screen Privacy Tool"_s, tagline, VeylaTheme::accentIndigo())}),
         LayoutItem::space()});
}

QWidget* SidebarView::counters() {
    constexpr double cornerRadius = 10;
    auto* const panel =
        new Panel({cornerRadius, VeylaTheme::panelMuted(), VeylaTheme::softBorder()});
    auto* const layout = new QHBoxLayout(panel);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->setSpacing(0);
    for (FeatureBadge* const badge : {m_masksBadge, m_presetsBadge, m_activeBadge})
        layout->addWidget(badge, 1);
    return panel;
}

QWidget* SidebarView::switches(CoachmarkAnchors& anchors) {
    setAccessibleIdentifier(*m_visibility, u"toggle-all-visibility-button"_s);
    anchors.mark(m_visibility, CoachmarkAnchor::visibilityToggle);
    connect(m_visibility, &QPushButton::clicked, this,
            [this] { m_state.toggleVisibilityForAllMasks(); });
    connect(m_editing, &QPushButton::clicked, this, [this] { m_state.toggleEditing(); });
    return row(8, {{m_visibility, 1}, {m_editing, 1}});
}

QWidget* SidebarView::layersHeader() {
    auto* const button = bareIconButton(
        u"Layer options"_s,
        {u"line.3.horizontal.decrease"_s, 10, SymbolWeight::semibold, VeylaTheme::textMuted()},
        {24, 20});
    connect(button, &QPushButton::clicked, this, [this, button] {
        auto* const menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        styleMenus(*menu);
        menu->addAction(u"New Group…"_s, this, [this] {
            m_state.createGroup(u"Group %1"_s.arg(m_state.groups.value().size() + 1));
        });
        menu->popup(button->mapToGlobal(QPoint(0, button->height())));
    });
    return row(8, {sectionHeader(u"Active Layers"_s), LayoutItem::space(), button});
}

void SidebarView::update() {
    m_masksBadge->showValue(QString::number(m_state.activeOverlayCount.value()));
    m_presetsBadge->showValue(QString::number(m_state.presets.value().size()));
    const bool isEditing = m_state.isEditingEnabled.value();
    m_activeBadge->showValue(isEditing ? u"ON"_s : u"OFF"_s,
                             isEditing ? VeylaTheme::accentGreen() : VeylaTheme::textSecondary());
    const bool areVisible = m_state.areMasksVisible.value();
    m_visibility->show(areVisible ? u"Hide All"_s : u"Show All"_s,
                       areVisible ? u"eye.slash"_s : u"eye"_s);
    m_editing->show(isEditing ? u"Lock Editing"_s : u"Unlock Editing"_s,
                    isEditing ? u"lock"_s : u"lock.open"_s);
}

void SidebarView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), VeylaTheme::sidebar());
    painter.fillRect(QRect(width() - 1, 0, 1, height()), VeylaTheme::border());
}
