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

    AppState& m_state;
    CoachmarkAnchors m_anchors;
    InspectorView* m_inspector;
    QScrollArea* m_inspectorPane;
    QWidget* m_emptyState;
    QStackedWidget* m_detail;
    OnboardingOverlay* m_onboarding;
    TurnUpdate m_turnUpdate;
};
