#pragma once

#include "App/AppState.h"
#include "Views/Onboarding/CoachmarkAnchors.h"
#include "Views/TurnUpdate.h"

#include <QWidget>

class InspectorView;
class OnboardingOverlay;
class QScrollArea;
class QStackedWidget;

/// The content of the main window: the sidebar, the inspector of the selected mask or its empty
/// state, and the walkthrough over both.
class DashboardView final : public QWidget {
public:
    /// The references must outlive the view.
    DashboardView(AppState& state, Scheduler& scheduler);
    ~DashboardView() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void update();
    QWidget* inspectorPane();
    OnboardingOverlay& onboarding();

    AppState& m_state;
    Scheduler& m_scheduler;
    CoachmarkAnchors m_anchors;
    QWidget* m_emptyState;
    QStackedWidget* m_detail;
    // Made when they are first needed, so that the window is there at once.
    InspectorView* m_inspector = nullptr;
    QScrollArea* m_inspectorPane = nullptr;
    OnboardingOverlay* m_onboarding = nullptr;
    TurnUpdate m_turnUpdate;
};
