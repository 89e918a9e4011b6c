#include "Platform/X11/Overlays/X11OverlaySurfaces.h"

#include <algorithm>

bool X11OverlaySurfaces::composesPicture(bool isFrosted) const {
    return m_painter.isAvailable() && (!isCompositing() || isFrosted);
}

void X11OverlaySurfaces::updateBackdrops() {
    m_painter.setBlending(isCompositing());
    const bool isNeeded =
        std::any_of(m_surfaces.begin(), m_surfaces.end(), [](const X11OverlaySurface* surface) {
            return surface->isShown() && surface->composedPicture();
        });
    if (!m_painter.follow(isNeeded)) return;
    for (const X11OverlaySurface* surface : m_surfaces)
        m_painter.leaveOut(surface->window());
}

std::vector<BackdropPainter::Mask> X11OverlaySurfaces::shownMasks() const {
    std::vector<BackdropPainter::Mask> masks;
    for (X11OverlaySurface* surface : shownInOrder())
        masks.push_back({&surface->window(), surface->composedPicture()});
    return masks;
}
