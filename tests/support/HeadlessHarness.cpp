#include "support/HeadlessHarness.h"

bool HeadlessHarness::waitUntil(const std::function<bool()>& condition) {
    for (int i = 0; i < 1000 && !condition(); ++i)
        m_desktop.mainLoop.advanceBy(std::chrono::milliseconds(1));
    return condition();
}

void HeadlessHarness::setScreens(const QList<Rect>& topLeftFrames) {
    QList<ScreenInfo> screens;
    const Rect& primary = topLeftFrames.first();
    for (const Rect& frame : topLeftFrames) {
        const Rect global{frame.x - primary.x, primary.maxY() - frame.maxY(), frame.width,
                          frame.height};
        const QChar name(static_cast<char16_t>(u'A' + screens.size()));
        screens.append({name, global, global, 1});
    }
    m_desktop.screens.setScreens(screens);
}

std::vector<QUuid> HeadlessHarness::stack() {
    std::vector<QUuid> ids;
    for (const HeadlessSurface* surface : m_desktop.overlaySurfaces.shownSurfaces())
        if (surface->maskID()) ids.push_back(*surface->maskID());
    return ids;
}
