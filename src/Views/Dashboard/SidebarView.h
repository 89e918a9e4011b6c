#pragma once

#include "App/AppState.h"
#include "Views/Onboarding/CoachmarkAnchors.h"
#include "Views/TurnUpdate.h"

#include <QWidget>

class FeatureBadge;
class StyledButton;

/// The left column of the dashboard: header, counters, the main button, the two global switches,
/// and the list of layers.
class SidebarView final : public QWidget {
public:
    /// The references must outlive the view.
    SidebarView(AppState& state, Scheduler& scheduler, CoachmarkAnchors& anchors);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* header();
    QWidget* counters();
    QWidget* switches(CoachmarkAnchors& anchors);
    QWidget* layersHeader();
    void update();

    AppState& m_state;
    FeatureBadge* m_masksBadge;
    FeatureBadge* m_presetsBadge;
    FeatureBadge* m_activeBadge;
    StyledButton* m_create;
    StyledButton* m_visibility;
    StyledButton* m_editing;
    TurnUpdate m_turnUpdate;
};
