#pragma once

#include "App/AppState.h"
#include "Views/TurnUpdate.h"

#include <QPointer>

class SheetArea;
class WhatsNewView;

/// Presents the release notes as the state says, and follows them while they are presented.
class WhatsNewSheet {
public:
    /// The references must outlive the object.
    WhatsNewSheet(AppState& state, Scheduler& scheduler, SheetArea& area);

private:
    void update();

    AppState& m_state;
    SheetArea& m_area;
    QPointer<WhatsNewView> m_view;
    TurnUpdate m_turnUpdate;
};
