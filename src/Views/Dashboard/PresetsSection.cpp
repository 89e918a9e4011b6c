#include "Views/Dashboard/PresetsSection.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/FormCard.h"
#include "Views/Components/TextLabel.h"
#include "Views/Dashboard/PresetGrid.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaTheme.h"

using namespace Qt::Literals::StringLiterals;

PresetsSection::PresetsSection(AppState& state, Scheduler& scheduler, SheetArea& sheets)
    : m_state(state),
      m_noPresets(new TextLabel(u"No presets yet. Save your current layout."_s, {12},
                                VeylaTheme::textSecondary())),
      m_grid(new PresetGrid(state, sheets)),
      m_turnUpdate(scheduler, [this] { update(); }) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    layout->addWidget(sectionHeader(u"Saved Presets"_s, VeylaTheme::accentBlue()));
    layout->addWidget(m_noPresets);
    layout->addWidget(m_grid);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    m_turnUpdate.follow(state.presets);
    update();
}

void PresetsSection::update() {
    const auto& presets = m_state.presets.value();
    m_noPresets->setVisible(presets.isEmpty());
    m_grid->showPresets(presets);
    m_grid->setVisible(!presets.isEmpty());
}
