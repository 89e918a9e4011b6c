#include "Views/Sheets/DashboardSheets.h"

#include "Views/Components/SheetArea.h"
#include "Views/Sheets/HelpView.h"
#include "Views/Sheets/SavePresetSheet.h"

DashboardSheets::DashboardSheets(AppState& state, Scheduler& scheduler, SheetArea& area)
    : m_state(state),
      m_scheduler(scheduler),
      m_area(area),
      m_turnUpdate(scheduler, [this] { update(); }) {
    m_turnUpdate.follow(state.isHelpPresented, state.isSavePresetPresented,
                        state.currentFrontmostAppName);
    update();
}

void DashboardSheets::update() {
    updateHelp();
    updateSavePreset();
}

void DashboardSheets::updateHelp() {
    const QString& frontmost = m_state.currentFrontmostAppName.value();
    if (!m_state.isHelpPresented.value()) {
        m_area.dismiss(SheetLevel::help);
    } else if (m_area.isPresented(SheetLevel::help)) {
        m_help->showFrontmostApp(frontmost);
    } else {
        const SheetContent content =
            HelpView::content(frontmost, [this] { m_state.dismissHelp(); });
        m_help = static_cast<HelpView*>(content.view);
        m_area.present(SheetLevel::help, content);
    }
}

void DashboardSheets::updateSavePreset() {
    if (!m_state.isSavePresetPresented.value())
        m_area.dismiss(SheetLevel::savePreset);
    else if (!m_area.isPresented(SheetLevel::savePreset))
        m_area.present(SheetLevel::savePreset, SavePresetSheet::content(m_state, m_scheduler));
}
