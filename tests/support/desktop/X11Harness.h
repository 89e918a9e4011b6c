#pragma once

#include "Platform/Qt/QtMainLoop.h"
#include "Platform/X11/X11Desktop.h"
#include "contract/DesktopHarness.h"
#include "support/RecordingSystemLog.h"
#include "support/desktop/MonitorLayout.h"
#include "support/desktop/XProbe.h"
#include "support/desktop/XTestInput.h"

#include <memory>

/// The X11 back end in this process, on the display of the test's session. Its scale is 1.
class X11Harness final : public DesktopHarness {
public:
    /// Throws std::runtime_error when the back end finds no display.
    X11Harness();

    MainLoop& mainLoop() override { return m_mainLoop; }
    Screens& screens() override { return m_desktop->screens(); }
    OverlaySurfaces& surfaces() override { return m_desktop->overlaySurfaces(); }

    X11Desktop& desktop() { return *m_desktop; }
    XTestInput& input() { return m_input; }
    RecordingSystemLog& log() { return m_log; }

    bool waitUntil(const std::function<bool()>& condition) override;
    void settle() override;
    void movePointer(Point global) override;
    void pressLeft() override { m_input.press(); }
    void releaseLeft() override { m_input.release(); }
    void setScreens(const QList<Rect>& topLeftFrames) override;
    std::vector<QUuid> stack() override;

private:
    QtMainLoop m_mainLoop;
    RecordingSystemLog m_log;
    XProbe m_probe;
    XTestInput m_input;
    MonitorLayout m_monitors;
    std::unique_ptr<X11Desktop> m_desktop;
};
