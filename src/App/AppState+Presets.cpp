#include "App/AppState.h"

void AppState::applyPreset(const MaskPreset& preset) {
    QList<ScreenMask> copies = preset.masks;
    for (ScreenMask& copy : copies) {
        copy.id = QUuid::createUuid();
        copy.groupID.reset();
    }
    const auto firstID = copies.isEmpty() ? std::nullopt : std::optional(copies.first().id);
    masks.set(std::move(copies));
    selectedMaskID.set(firstID);
    areMasksVisible.set(true);
}
