#pragma once

#include "App/AppState.h"
#include "Views/Onboarding/CoachmarkAnchors.h"
#include "Views/TurnUpdate.h"

#include <QWidget>
#include <array>

class CheckBox;
class HotkeyRecorderView;
class TextLabel;

/// The card with the behaviour of the program and the shortcuts that work everywhere. Every change
/// is written to the settings at once.
class SettingsCard final : public QWidget {
public:
    /// The references must outlive the view.
    SettingsCard(AppState& state, Scheduler& scheduler, CoachmarkAnchors& anchors);

private:
    static constexpr std::size_t behaviorCount = 4;

    QWidget* behaviorRows();
    QWidget* hotkeyRows(Scheduler& scheduler);
    void showConflict(HotkeyAction action, HotkeyAction conflicting);
    void resetHotkeys();
    void update();

    AppState& m_state;
    std::array<CheckBox*, behaviorCount> m_behaviors{};
    std::array<HotkeyRecorderView*, allHotkeyActions.size()> m_recorders{};
    TextLabel* m_hotkeyConflictMessage;
    TurnUpdate m_turnUpdate;
};
