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
    void showTarget();
    void chooseApplication();
    void save();

    AppState& m_state;
    PlainTextField* m_name;
    PlainTextField* m_trigger;
    ToggleSwitch* m_autoApply;
    /// Which application it will be bound to, and the way to another one.
    TextLabel* m_target;
    StyledButton* m_choose;
    QWidget* m_targetRow;
    SpokenNote* m_targetHint;
    /// Why the preset was not saved.
    SpokenNote* m_hint;
    StyledButton* m_cancel;
    StyledButton* m_save;
    TurnUpdate m_turnUpdate;
};
