#include "Views/DashboardView.h"

#include "Views/Dashboard/EmptyInspectorView.h"
#include "Views/Dashboard/InspectorView.h"
#include "Views/Dashboard/SidebarView.h"
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
      m_inspector(new InspectorView(state, scheduler, m_anchors)),
      m_inspectorPane(scrollingPane(m_inspector)),
      m_emptyState(new EmptyInspectorView(state)),
      m_detail(new QStackedWidget),
      m_onboarding(nullptr),
      m_turnUpdate(scheduler, [this] { update(); }) {
    auto* const sidebar = new SidebarView(state, scheduler, m_anchors);
    sidebar->setFixedWidth(qRound(sidebarWidth * textScale()));
    m_detail->addWidget(m_emptyState);
    m_detail->addWidget(m_inspectorPane);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(sidebar);
    layout->addWidget(m_detail, 1);
    m_onboarding = new OnboardingOverlay(
        state.onboardingSteps(), m_anchors,
        {[&state] { state.showNextOnboardingStep(); }, [&state] { state.finishOnboarding(); }},
        this);
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
    m_detail->setCurrentWidget(m_state.activeMask() ? static_cast<QWidget*>(m_inspectorPane)
                                                    : m_emptyState);
    if (m_state.isOnboardingPresented.value())
        m_onboarding->present(m_state.onboardingStepIndex.value());
    else
        m_onboarding->dismiss();
}

void DashboardView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_inspector->reloadName();
}

void DashboardView::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), VeylaTheme::background());
}
