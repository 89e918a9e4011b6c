#pragma once

#include "App/AppState.h"
#include "Views/Components/AccessibleElement.h"
#include "Views/Onboarding/CoachmarkAnchors.h"
#include "Views/Sheets/DashboardSheets.h"
#include "Views/TurnUpdate.h"

#include <QWidget>

class InspectorView;
class OnboardingOverlay;
class QScrollArea;
class QStackedWidget;
class SheetArea;

/// The content of the main window: the sidebar, the inspector of the selected mask or its empty
/// state, what can be undone at the foot, the walkthrough over these, and sheets over everything.
class DashboardView final : public QWidget, public AccessibleElement {
public:
    /// The references must outlive the view.
    DashboardView(AppState& state, Scheduler& scheduler);
    ~DashboardView() override;

    /// Where sheets are presented.
    SheetArea& sheets() { return *m_sheetArea; }

    QAccessible::Role accessibleRole() const override { return QAccessible::Client; }
    QWidget* onlyChild() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void update();
    QWidget* inspectorPane();
    void reveal(QWidget* focused);
    OnboardingOverlay& onboarding();

    AppState& m_state;
    Scheduler& m_scheduler;
    CoachmarkAnchors m_anchors;
    QWidget* m_emptyState;
    QStackedWidget* m_detail;
    SheetArea* m_sheetArea;
    // Made when they are first needed, so that the window is there at once.
    InspectorView* m_inspector = nullptr;
    QScrollArea* m_inspectorPane = nullptr;
    OnboardingOverlay* m_onboarding = nullptr;
    DashboardSheets m_sheets;
    /// Let go of before the view is taken apart, which moves the keyboard.
    QMetaObject::Connection m_focusWatch;
    TurnUpdate m_turnUpdate;
};
