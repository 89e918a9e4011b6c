#include "Services/ScreenPlacement.h"

#include <algorithm>

QList<Rect> visibleFrames(const Screens& screens) {
    QList<Rect> frames;
    for (const ScreenInfo& screen : screens.screens())
        frames.append(screen.visibleFrame);
    return frames;
}

std::optional<Rect> bestScreenFrame(const Rect& rect, const QList<Rect>& frames) {
    const auto containing = std::find_if(frames.begin(), frames.end(), [&](const Rect& frame) {
        return frame.contains(rect.center());
    });
    if (containing != frames.end()) return *containing;

    // The first of the greatest overlaps; without any overlap the first screen.
    const auto best =
        std::max_element(frames.begin(), frames.end(), [&](const Rect& a, const Rect& b) {
            return a.intersectionArea(rect) < b.intersectionArea(rect);
        });
    if (best == frames.end()) return std::nullopt;
    return *best;
}

Rect resolvedFrame(const Rect& rect, const QList<Rect>& frames) {
    const auto screen = bestScreenFrame(rect, frames);
    if (!screen) return rect;
    const double width = std::min(screen->width, std::max(rect.width, minimumMaskSize.width));
    const double height = std::min(screen->height, std::max(rect.height, minimumMaskSize.height));
    return {std::min(screen->maxX() - width, std::max(screen->minX(), rect.x)),
            std::min(screen->maxY() - height, std::max(screen->minY(), rect.y)), width, height};
}

std::optional<Rect> rectFollowingItsScreen(const Rect& rect, const QList<ScreenInfo>& oldScreens,
                                           const QList<ScreenInfo>& newScreens) {
    const auto old = std::find_if(
        oldScreens.begin(), oldScreens.end(),
        [&](const ScreenInfo& screen) { return screen.frame.contains(rect.center()); });
    if (old == oldScreens.end()) return std::nullopt;
    const auto current =
        std::find_if(newScreens.begin(), newScreens.end(),
                     [&](const ScreenInfo& screen) { return screen.name == old->name; });
    if (current == newScreens.end()) return std::nullopt;
    return Rect{rect.x + current->frame.minX() - old->frame.minX(),
                rect.y + current->frame.maxY() - old->frame.maxY(), rect.width, rect.height};
}
