#include "Views/DashboardView.h"

#include "Views/Dashboard/EmptyInspectorView.h"
#include "Views/Dashboard/InspectorView.h"
#include "Views/Dashboard/SidebarView.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Onboarding/OnboardingOverlay.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QScrollArea>
#include <QStackedWidget>

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
    // The window is never narrower than what its controls need.
    pane->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    pane->setMinimumWidth(inside->minimumSizeHint().width() + 12);
    inside->setAutoFillBackground(false);
    return pane;
}

}  // namespace

DashboardView::DashboardView(AppState& state, Scheduler& scheduler)
    : m_state(state),
      m_scheduler(scheduler),
      m_emptyState(new EmptyInspectorView(state)),
      m_detail(new QStackedWidget),
      m_turnUpdate(scheduler, [this] { update(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    auto* const sidebar = new SidebarView(state, scheduler, m_anchors);
    sidebar->setFixedWidth(qRound(sidebarWidth * textScale()));
    m_detail->addWidget(m_emptyState);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(sidebar);
    layout->addWidget(m_detail, 1);
    // The keyboard starts here, without a ring around any control.
    setFocusPolicy(Qt::ClickFocus);
    m_turnUpdate.follow(state.masks, state.selectedMaskID, state.isOnboardingPresented,
                        state.onboardingStepIndex);
    update();
}

// While it is shown it looks for the anchors, which go before the views in this one do.
DashboardView::~DashboardView() {
    delete m_onboarding;
}

void DashboardView::update() {
    const bool hasMask = m_state.activeMask().has_value();
    m_detail->setCurrentWidget(hasMask ? inspectorPane() : m_emptyState);
    if (m_state.isOnboardingPresented.value())
        onboarding().present(m_state.onboardingStepIndex.value());
    else if (m_onboarding)
        m_onboarding->dismiss();
}

QWidget* DashboardView::inspectorPane() {
    if (!m_inspectorPane) {
        m_inspector = new InspectorView(m_state, m_scheduler, m_anchors);
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
