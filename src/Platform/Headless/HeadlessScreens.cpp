#include "Platform/Headless/HeadlessScreens.h"

#include <utility>

std::optional<ScreenInfo> HeadlessScreens::mainScreen() const {
    return m_screens.isEmpty() ? std::nullopt : std::optional(m_screens.first());
}

Subscription HeadlessScreens::onScreensChanged(std::function<void()> callback) {
    return m_changed.subscribe(std::move(callback));
}

void HeadlessScreens::setScreens(const QList<ScreenInfo>& screens) {
    if (screens == m_screens) return;
    m_screens = screens;
    m_changed.notify();
}
