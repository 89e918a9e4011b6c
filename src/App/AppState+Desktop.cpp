#include "App/AppState.h"

#include <algorithm>
#include <utility>

void AppState::registerHotkeysWithCurrentBindings() {
    m_hotkeyManager.registerBindings(
        settings.newest().hotkeyBindings,
        m_lifetime.guard([this](HotkeyAction action) { performHotkey(action); }));
}

void AppState::setHotkeyBinding(HotkeyAction action, const HotkeyBinding& binding) {
    settings.update([&](AppSettings& changed) {
        changed.hotkeyBindings.insert(hotkeyBindingKey(action), binding);
    });
    registerHotkeysWithCurrentBindings();
}

void AppState::resetHotkeyBindings() {
    settings.update(
        [](AppSettings& changed) { changed.hotkeyBindings = HotkeyBinding::defaults(); });
    registerHotkeysWithCurrentBindings();
}

void AppState::performHotkey(HotkeyAction action) {
    switch (action) {
        case HotkeyAction::createMask:
            return createMask();
        case HotkeyAction::toggleAll:
            return toggleVisibilityForAllMasks();
        case HotkeyAction::toggleEditing:
            return toggleEditing();
        case HotkeyAction::toggleDashboard:
            return toggleDashboardWindow();
    }
}

std::optional<HotkeyAction> AppState::hotkeyConflict(const QString& bindingKey,
                                                     const HotkeyBinding& binding) const {
    const auto found =
        std::find_if(allHotkeyActions.begin(), allHotkeyActions.end(), [&](HotkeyAction action) {
            const QString key = hotkeyBindingKey(action);
            return key != bindingKey &&
                   settings.newest().binding(key).value_or(HotkeyBinding{}) == binding;
        });
    return found == allHotkeyActions.end() ? std::nullopt : std::optional(*found);
}

bool AppState::isMenuBarOnly() const {
    return settings.newest().menuBarOnlyMode && !settings.newest().showDashboardOnLaunch &&
           !m_platform.trayIcon.isWithoutTray().newest();
}

void AppState::applyActivationPolicy() {
    m_platform.applicationHost.setActivationPolicy(isMenuBarOnly() ? ActivationPolicy::accessory
                                                                   : ActivationPolicy::regular);
    if (isMenuBarOnly()) hideDashboardWindow();
}

// The window is made by the views, so it is looked for rather than held from its creation.
std::shared_ptr<HostWindow> AppState::dashboardWindow() const {
    if (auto cached = m_cachedDashboardWindow.lock()) return cached;
    const auto windows = m_platform.applicationHost.windows();
    const auto found = std::find_if(windows.begin(), windows.end(), [](const auto& window) {
        return !window->isPanel() && window->hasContentView() &&
               !window->title().contains(QStringLiteral("Settings"), Qt::CaseInsensitive);
    });
    if (found == windows.end()) return nullptr;
    m_cachedDashboardWindow = *found;
    return *found;
}

void AppState::setOpenWindowAction(std::function<void(QLatin1StringView)> action) {
    m_openWindowAction = std::move(action);
}

void AppState::openDashboardWindow() {
    m_isDashboardHeldBack = false;
    m_platform.applicationHost.setActivationPolicy(ActivationPolicy::regular);
    m_platform.applicationHost.activateIgnoringOtherApps();
    if (const auto window = dashboardWindow()) {
        window->makeKeyAndOrderFront();
    } else if (const auto open = m_openWindowAction) {
        open(dashboardWindowID);
    }
}

void AppState::hideDashboardWindow() {
    if (const auto window = dashboardWindow()) window->orderOut();
}

void AppState::toggleDashboardWindow() {
    isDashboardWindowVisible() ? hideDashboardWindow() : openDashboardWindow();
}

bool AppState::canOpenDashboardWindow() const {
    return m_openWindowAction || dashboardWindow();
}

bool AppState::isDashboardWindowVisible() const {
    const auto window = dashboardWindow();
    return window && window->isVisible();
}

void AppState::startedWithoutDashboard() {
    if (isMenuBarOnly()) m_hasHandledInitialDashboardWindow = true;
}

void AppState::handleDashboardWindowAppearance() {
    if (std::exchange(m_hasHandledInitialDashboardWindow, true)) return;
    applyActivationPolicy();
    m_isDashboardHeldBack = isMenuBarOnly() && !m_platform.trayIcon.isInTray().newest();
    isMenuBarOnly() ? hideDashboardWindow() : openDashboardWindow();
    if (isHelpPresented.newest() || isWhatsNewPresented.newest() || hasCompletedOnboarding.newest())
        return;
    m_onboardingStart =
        m_platform.mainLoop.after(onboardingDelay, [this] { startOnboardingIfNeeded(); });
}
