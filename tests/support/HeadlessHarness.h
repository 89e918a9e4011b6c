#pragma once

#include "Platform/Headless/HeadlessDesktop.h"
#include "contract/DesktopHarness.h"

/// The in-memory desktop, driven through its control interface.
class HeadlessHarness final : public DesktopHarness {
public:
    HeadlessHarness() { setScreens({{0, 0, 1280, 800}}); }

    MainLoop& mainLoop() override { return m_desktop.mainLoop; }
    Screens& screens() override { return m_desktop.screens; }
    OverlaySurfaces& surfaces() override { return m_desktop.overlaySurfaces; }

    bool waitUntil(const std::function<bool()>& condition) override;
    void settle() override { m_desktop.mainLoop.advanceBy(std::chrono::milliseconds(0)); }
    void movePointer(Point global) override { m_desktop.overlaySurfaces.moveMouse(global); }
    void pressLeft() override { m_desktop.overlaySurfaces.pressMouse(); }
    void releaseLeft() override { m_desktop.overlaySurfaces.releaseMouse(); }
    void setScreens(const QList<Rect>& topLeftFrames) override;
    std::vector<QUuid> stack() override;

    HeadlessDesktop& desktop() { return m_desktop; }

private:
    HeadlessDesktop m_desktop;
};
