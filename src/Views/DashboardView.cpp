#include "Views/DashboardView.h"

#include "Views/Components/SheetArea.h"
#include "Views/Dashboard/EmptyInspectorView.h"
#include "Views/Dashboard/InspectorView.h"
#include "Views/Dashboard/PresetsSection.h"
#include "Views/Dashboard/SettingsCard.h"
#include "Views/Dashboard/SidebarView.h"
#include "Views/Dashboard/UndoBar.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Onboarding/OnboardingOverlay.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>
#include <algorithm>
#include <utility>

namespace {

constexpr int sidebarWidth = 300;
constexpr int panePadding = 28;
constexpr int widestContent = 860;

/// The inspector in the middle of the pane, no wider than its rows are easy to read.
QScrollArea* scrollingPane(QWidget* content) {
    auto* const inside = new QWidget;
    auto* const layout = new QHBoxLayout(inside);
    layout->setContentsMargins(panePadding, panePadding, panePadding, panePadding);
    content->setMaximumWidth(qRound(widestContent * textScale()));
    layout->addWidget(content);
    auto* const pane = new QScrollArea;
    pane->setFrameShape(QFrame::NoFrame);
    styleScrollBar(*pane);
    pane->setWidgetResizable(true);
    pane->setFocusPolicy(Qt::NoFocus);
    pane->viewport()->setAutoFillBackground(false);
    pane->setWidget(inside);
    // The window is never narrower than what its controls need, unless the screen is.
    constexpr int scrollBarWidth = 12;
    const int needed = inside->minimumSizeHint().width() + scrollBarWidth;
    const int room = pane->screen()->availableSize().width() - qRound(sidebarWidth * textScale());
    pane->setHorizontalScrollBarPolicy(needed <= room ? Qt::ScrollBarAlwaysOff
                                                      : Qt::ScrollBarAsNeeded);
    pane->setMinimumWidth(std::min(needed, room));
    inside->setAutoFillBackground(false);
    return pane;
}

}  // namespace

DashboardView::DashboardView(AppState& state, Scheduler& scheduler)
    : m_state(state),
      m_scheduler(scheduler),
      m_emptyState(new EmptyInspectorView(state)),
      m_detail(new QStackedWidget),
      m_sheetArea(new SheetArea(this)),
      m_sheets(state, scheduler, *m_sheetArea),
      m_turnUpdate(scheduler, [this] { update(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(QStringLiteral("Dashboard"));
    auto* const sidebar = new SidebarView(state, scheduler, m_anchors);
    sidebar->setFixedWidth(qRound(sidebarWidth * textScale()));
    m_detail->addWidget(m_emptyState);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* const panes = new QHBoxLayout;
    panes->addWidget(sidebar);
    panes->addWidget(m_detail, 1);
    layout->addLayout(panes, 1);
    layout->addWidget(new UndoBar(state, scheduler));
    m_sheetArea->raise();
    m_focusWatch = connect(qApp, &QApplication::focusChanged, this,
                           [this](const QWidget*, QWidget* now) { reveal(now); });
    // The keyboard starts here, without a ring around any control.
    setFocusPolicy(Qt::ClickFocus);
    m_turnUpdate.follow(state.masks, state.selectedMaskID, state.isOnboardingPresented,
                        state.onboardingStepIndex);
    update();
}

// While it is shown the walkthrough looks for the anchors, which go before the views in this one
// do. A card that goes ends its sheet, which would give the keyboard to this view.
DashboardView::~DashboardView() {
    disconnect(m_focusWatch);
    delete m_onboarding;
    delete std::exchange(m_sheetArea, nullptr);
}

void DashboardView::update() {
    const bool hasMask = m_state.activeMask().has_value();
    m_detail->setCurrentWidget(hasMask ? inspectorPane() : m_emptyState);
    if (m_state.isOnboardingPresented.value())
        onboarding().present(m_state.onboardingStepIndex.value());
    else if (m_onboarding)
        m_onboarding->dismiss();
    // A walkthrough that starts meanwhile is behind the sheet.
    m_sheetArea->raise();
}

// From beside the pane, Tab comes to what may be scrolled out of view.
void DashboardView::reveal(QWidget* focused) {
    if (m_inspectorPane && focused && m_inspectorPane->isAncestorOf(focused))
        m_inspectorPane->ensureWidgetVisible(focused);
}

QWidget* DashboardView::onlyChild() const {
    return m_sheetArea && m_sheetArea->isPresenting.value() ? m_sheetArea : nullptr;
}

QWidget* DashboardView::inspectorPane() {
    if (!m_inspectorPane) {
        m_inspector = new InspectorView(m_state, m_scheduler, m_anchors);
        m_inspector->addSection(new PresetsSection(m_state, m_scheduler, *m_sheetArea));
        m_inspector->addSection(new SettingsCard(m_state, m_scheduler, m_anchors));
        m_inspectorPane = scrollingPane(m_inspector);
        m_detail->addWidget(m_inspectorPane);
    }
    return m_inspectorPane;
}

OnboardingOverlay& DashboardView::onboarding() {
    if (!m_onboarding) {
        const OnboardingOverlay::Actions actions{[this] { m_state.showNextOnboardingStep(); },
                                                 [this] { m_state.finishOnboarding(); }};
        m_onboarding = new OnboardingOverlay(m_state.onboardingSteps(), m_anchors, actions, this);
    }
    return *m_onboarding;
}

void DashboardView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_inspector) m_inspector->reloadName();
}

void DashboardView::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), VeylaTheme::background());
}
