#pragma once

#include "App/AppState.h"
#include "Views/TurnUpdate.h"

#include <QPointer>

class HelpView;
class SheetArea;

/// Presents the sheets of the dashboard, help and the saving of a preset, as the state says.
class DashboardSheets {
public:
    /// The references must outlive the object.
    DashboardSheets(AppState& state, Scheduler& scheduler, SheetArea& area);

private:
    void update();
    void updateHelp();
    void updateSavePreset();

    AppState& m_state;
    Scheduler& m_scheduler;
    SheetArea& m_area;
    QPointer<HelpView> m_help;
    TurnUpdate m_turnUpdate;
};
