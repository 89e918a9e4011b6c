#pragma once

#include "App/AppState.h"
#include "Views/Onboarding/CoachmarkAnchors.h"
#include "Views/TurnUpdate.h"

#include <QWidget>
#include <array>
#include <optional>

class AmountSlider;
class ChoiceRow;
class FormCard;
class PlainTextField;
class StyledButton;
class TextLabel;
class ToggleSwitch;

/// The cards that edit the selected mask. Every edit is an operation of the application state; the
/// view keeps nothing but the text that is being typed as a name.
class InspectorView final : public QWidget {
public:
    /// In the order of the swatches.
    static const std::array<QString, 6>& palette();

    /// The references must outlive the view.
    InspectorView(AppState& state, Scheduler& scheduler, CoachmarkAnchors& anchors);

    /// Adds a section below the cards of the mask, above the footer.
    void addSection(QWidget* section);

    /// The pane comes on screen again: typed text that was not submitted is dropped.
    void reloadName();

private:
    QWidget* header();
    FormCard* appearanceCard(CoachmarkAnchors& anchors);
    FormCard* positionCard();
    QWidget* footer();
    QWidget* styleRow();
    QWidget* opacityRow();
    QWidget* colorRow();
    QWidget* toggles();

    void update();
    void showMask(const ScreenMask& mask);
    void submitName();

    AppState& m_state;
    std::optional<QUuid> m_maskID;
    PlainTextField* m_name;
    TextLabel* m_summary;
    StyledButton* m_duplicate;
    StyledButton* m_visibility;
    ChoiceRow* m_styles;
    AmountSlider* m_opacity;
    TextLabel* m_opacityText;
    ChoiceRow* m_colors;
    ToggleSwitch* m_clickThrough;
    ToggleSwitch* m_isVisible;
    TextLabel* m_position;
    TextLabel* m_maskIDText;
    StyledButton* m_remove = nullptr;
    TurnUpdate m_turnUpdate;
};
