#include "App/AppState.h"

#include "Reactive/Operators.h"

#include <utility>

AppState::AppState(const AppPlatform& platform)
    : m_platform(platform),
      m_overlayManager(platform.mainLoop, platform.screens, platform.overlaySurfaces),
      m_presetStore(platform.workspaceDirectory, platform.systemLog) {
    loadWorkspace();
    bind();
}

AppState::~AppState() = default;

void AppState::loadWorkspace() {
    auto snapshot = m_presetStore.loadWorkspace();
    if (!snapshot) return;
    masks.set(std::move(snapshot->masks));
    presets.set(std::move(snapshot->presets));
    groups.set(std::move(snapshot->groups));
    settings.set(std::move(snapshot->settings));
    selectedMaskID.set(snapshot->selectedMaskID);
    areMasksVisible.set(snapshot->areMasksVisible);
    isEditingEnabled.set(snapshot->isEditingEnabled);
    hasCompletedOnboarding.set(snapshot->hasCompletedOnboarding);
}

void AppState::bind() {
    const auto frameChanged = m_lifetime.guard(
        [this](const QUuid& maskID, const MaskFrame& frame) { updateMaskFrame(maskID, frame); });
    const auto maskSelected =
        m_lifetime.guard([this](const QUuid& maskID) { selectedMaskID.set(maskID); });

    m_cancellables.keep(
        combineLatest(masks, areMasksVisible, isEditingEnabled, selectedMaskID)
            .subscribe([this, frameChanged, maskSelected](
                           const QList<ScreenMask>& currentMasks, bool currentlyVisible,
                           bool currentlyEditable, const std::optional<QUuid>& currentSelection) {
                m_overlayManager.sync(currentMasks, currentlyVisible, currentlyEditable,
                                      currentSelection, frameChanged, maskSelected);
                activeOverlayCount.set(m_overlayManager.activeOverlayCount.newest());
            }));
    m_cancellables.keep(selectedMaskID.subscribe(
        [this](const std::optional<QUuid>& maskID) { m_overlayManager.setSelectedMask(maskID); }));
    m_cancellables.keep(m_overlayManager.activeOverlayCount.subscribe(
        [this](int count) { activeOverlayCount.set(count); }));

    const auto workspaceChanged =
        combineLatest(masks, presets, groups, selectedMaskID, areMasksVisible, isEditingEnabled,
                      hasCompletedOnboarding, settings);
    m_cancellables.keep(debounce(workspaceChanged, saveDelay, m_platform.mainLoop)
                            .subscribe([this](const auto&...) { saveWorkspace(); }));
}

void AppState::saveWorkspace() {
    m_presetStore.saveWorkspace({masks.value(), presets.value(), groups.value(),
                                 selectedMaskID.value(), areMasksVisible.value(),
                                 isEditingEnabled.value(), hasCompletedOnboarding.value(),
                                 settings.value()});
}

void AppState::announce(const QString& message) {
    m_platform.announcer.announce(message, Announcer::highPriority);
}
