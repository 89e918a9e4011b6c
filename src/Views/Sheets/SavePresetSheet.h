#pragma once

#include "App/AppState.h"
#include "Views/Components/Sheet.h"
#include "Views/TurnUpdate.h"

#include <QWidget>

class PlainTextField;
class SpokenNote;
class StyledButton;
class TextLabel;
class ToggleSwitch;

/// The drafts of a preset that is being made of the current masks.
class SavePresetSheet final : public QWidget {
public:
    /// The references must outlive the view.
    SavePresetSheet(AppState& state, Scheduler& scheduler);

    /// The sheet with a new view in it.
    static SheetContent content(AppState& state, Scheduler& scheduler);

private:
    void bindFields();
    void update();
    void save();

    AppState& m_state;
    PlainTextField* m_name;
    PlainTextField* m_trigger;
    ToggleSwitch* m_autoApply;
    TextLabel* m_target;
    /// Why the preset was not saved.
    SpokenNote* m_hint;
    StyledButton* m_cancel;
    StyledButton* m_save;
    TurnUpdate m_turnUpdate;
};
