#pragma once

#include "Platform/Screens.h"
#include "Reactive/Notifier.h"

/// Screens and a pointer that are where their owner says.
class HeadlessScreens final : public Screens {
public:
    QList<ScreenInfo> screens() const override { return m_screens; }
    std::optional<ScreenInfo> mainScreen() const override;
    Point pointerLocation() const override { return m_pointer; }
    Subscription onScreensChanged(std::function<void()> callback) override;

    /// Replaces the screens and tells the subscribers when they differ.
    void setScreens(const QList<ScreenInfo>& screens);
    void setPointerLocation(Point location) { m_pointer = location; }

private:
    QList<ScreenInfo> m_screens;
    Point m_pointer;
    Notifier m_changed;
};
