#pragma once

#include "App/AppState.h"
#include "Views/TurnUpdate.h"

#include <QWidget>

class PresetGrid;
class SheetArea;
class TextLabel;

/// The saved layouts, below the inspector.
class PresetsSection final : public QWidget {
public:
    /// The references must outlive the view.
    PresetsSection(AppState& state, Scheduler& scheduler, SheetArea& sheets);

private:
    void update();

    AppState& m_state;
    TextLabel* m_noPresets;
    PresetGrid* m_grid;
    TurnUpdate m_turnUpdate;
};
