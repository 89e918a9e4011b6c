#include "Platform/X11/DesktopSpace.h"

#include "Services/ScreenPlacement.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

int distanceOutside(int value, int low, int high) {
    return std::max({low - value, value - high, 0});
}

int squaredDistance(const QRect& rect, QPoint point) {
    const int dx = distanceOutside(point.x(), rect.left(), rect.right());
    const int dy = distanceOutside(point.y(), rect.top(), rect.bottom());
    return dx * dx + dy * dy;
}

}  // namespace

DesktopSpace::DesktopSpace(QList<NativeScreen> screens, QSize rootSize)
    : m_native(std::move(screens)) {
    const bool hasScreens = !m_native.isEmpty();
    if (!hasScreens) {
        const QRect root(QPoint(0, 0), rootSize);
        m_native.append({QString(), root, root, 1});
    }
    const NativeScreen& primary = m_native.first();
    m_originX = primary.frame.x();
    m_originY = primary.frame.y() + primary.frame.height() / primary.scaleFactor;
    if (!hasScreens) return;
    for (const NativeScreen& screen : std::as_const(m_native))
        m_screens.append({screen.name, toGlobal(screen.frame, screen),
                          toGlobal(screen.visibleFrame, screen), screen.scaleFactor});
    for (const ScreenInfo& screen : std::as_const(m_screens))
        m_frames.append(screen.frame);
}

const NativeScreen& DesktopSpace::screenNear(QPoint native) const {
    return *std::min_element(
        m_native.begin(), m_native.end(), [&](const NativeScreen& a, const NativeScreen& b) {
            return squaredDistance(a.frame, native) < squaredDistance(b.frame, native);
        });
}

Point DesktopSpace::toGlobal(QPoint native) const {
    const NativeScreen& screen = screenNear(native);
    const QPoint inScreen = native - screen.frame.topLeft();
    return {screen.frame.x() + inScreen.x() / screen.scaleFactor - m_originX,
            m_originY - (screen.frame.y() + inScreen.y() / screen.scaleFactor)};
}

Rect DesktopSpace::toGlobal(const QRect& native, const NativeScreen& screen) const {
    const double factor = screen.scaleFactor;
    const QPoint inScreen = native.topLeft() - screen.frame.topLeft();
    const double width = native.width() / factor;
    const double height = native.height() / factor;
    return {screen.frame.x() + inScreen.x() / factor - m_originX,
            m_originY - (screen.frame.y() + inScreen.y() / factor) - height, width, height};
}

Rect DesktopSpace::toGlobal(const QRect& native) const {
    return toGlobal(native, screenNear(native.center()));
}

qsizetype DesktopSpace::screenIndexOf(const Rect& global) const {
    const auto best = bestScreenFrame(global, m_frames);
    return best ? m_frames.indexOf(*best) : 0;
}

QRect DesktopSpace::toNative(const Rect& global) const {
    const NativeScreen& screen = m_native.at(screenIndexOf(global));
    const double factor = screen.scaleFactor;
    // Far beyond what a server can have, and far from what an integer cannot hold.
    const auto rounded = [&](double inScreen) {
        constexpr double farthest = 1e6;
        return static_cast<int>(std::lround(std::clamp(inScreen * factor, -farthest, farthest)));
    };
    const auto horizontal = [&](double x) {
        return screen.frame.x() + rounded(x + m_originX - screen.frame.x());
    };
    const auto vertical = [&](double y) {
        return screen.frame.y() + rounded(m_originY - y - screen.frame.y());
    };
    const QPoint topLeft(horizontal(global.minX()), vertical(global.maxY()));
    const QPoint pastBottomRight(horizontal(global.maxX()), vertical(global.minY()));
    return {topLeft, QSize(std::max(pastBottomRight.x() - topLeft.x(), 1),
                           std::max(pastBottomRight.y() - topLeft.y(), 1))};
}

double DesktopSpace::scaleFactorAt(const Rect& global) const {
    return m_native.at(screenIndexOf(global)).scaleFactor;
}
