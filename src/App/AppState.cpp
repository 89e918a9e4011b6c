#include "App/AppState.h"

#include "Reactive/Operators.h"

#include <utility>

AppState::AppState(const AppPlatform& platform)
    : m_platform(platform),
      m_overlayManager(platform.mainLoop, platform.screens, platform.overlaySurfaces),
      m_hotkeyManager(platform.hotKeyCenter, platform.mainLoop),
      m_updaterManager(platform.updateFramework),
      m_presetStore(platform.workspaceDirectory, platform.systemLog),
      m_changelogService(platform.urlLoader),
      m_frontmostAppMonitor(platform.workspace, platform.mainLoop),
      m_screenShareMonitor(platform.workspace, platform.mainLoop) {
    loadWorkspace();
    bind();
    registerHotkeysWithCurrentBindings();
    applyActivationPolicy();
    evaluateHelpOnLaunch();
    evaluateWhatsNewOnLaunch();
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

// The order is part of what subscribers see: the overlays follow a change before it is saved.
void AppState::bind() {
    bindMonitors();
    bindOverlays();

    const auto workspaceChanged =
        combineLatest(masks, presets, groups, selectedMaskID, areMasksVisible, isEditingEnabled,
                      hasCompletedOnboarding, settings);
    m_cancellables.keep(debounce(workspaceChanged, saveDelay, m_platform.mainLoop)
                            .subscribe([this](const auto&...) { saveWorkspace(); }));
    followActivationPolicy();
}

void AppState::followActivationPolicy() {
    // Any other setting may be changed in the dashboard, which must not hide for it.
    using Deciding = std::pair<bool, bool>;
    m_cancellables.keep(settings.subscribe(
        [this, former = std::optional<Deciding>()](const AppSettings& current) mutable {
            const Deciding deciding(current.menuBarOnlyMode, current.showDashboardOnLaunch);
            const auto previous = std::exchange(former, deciding);
            if (previous && previous != deciding) applyActivationPolicy();
        }));
    // A tray that goes away later, as one that starts again does, brings no window up.
    m_cancellables.keep(m_platform.trayIcon.isInTray().subscribe(
        [this](bool isInTray) { m_isDashboardHeldBack &= !isInTray; }));
    m_cancellables.keep(m_platform.trayIcon.isWithoutTray().subscribe([this](bool isWithoutTray) {
        if (isWithoutTray && m_isDashboardHeldBack) openDashboardWindow();
    }));
}

void AppState::bindMonitors() {
    MainLoop& mainLoop = m_platform.mainLoop;
    m_cancellables.keep(
        deliverOnNextTurn(m_frontmostAppMonitor.appName(), mainLoop)
            .subscribe([this](const QString& name) { currentFrontmostAppName.set(name); }));
    m_cancellables.keep(deliverOnNextTurn(m_frontmostAppMonitor.bundleIdentifier(), mainLoop)
                            .subscribe([this](const std::optional<QString>& identifier) {
                                currentFrontmostBundleIdentifier.set(identifier);
                                applyMatchingAutoProfile(identifier);
                            }));
    m_cancellables.keep(
        deliverOnNextTurn(m_screenShareMonitor.isLikelyScreenSharing().source(), mainLoop)
            .subscribe([this](bool isSharing) {
                const bool isWanted = settings.newest().autoShowMasksOnScreenShare.value_or(false);
                if (!isSharing || !isWanted || areMasksVisible.newest()) return;
                areMasksVisible.set(true);
                announce(QStringLiteral("Screen sharing detected — masks shown"));
            }));
}

void AppState::bindOverlays() {
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
