#include "Platform/X11/Overlays/X11OverlaySurfaces.h"

#include <algorithm>
#include <utility>

bool X11OverlaySurfaces::usesBackdrop(const X11OverlaySurface& surface) const {
    return surface.isShown() && (!isCompositing() || surface.isFrosted());
}

void X11OverlaySurfaces::updateBackdrops() {
    const bool wasActive = m_backdrops.isActive();
    m_backdrops.setBlending(isCompositing());
    m_backdrops.setActive(
        std::any_of(m_surfaces.begin(), m_surfaces.end(),
                    [&](const X11OverlaySurface* surface) { return usesBackdrop(*surface); }));
    if (wasActive || !m_backdrops.isActive()) return;
    for (const X11OverlaySurface* surface : m_surfaces) {
        m_backdrops.leaveOut(surface->window().id());
        noteBackdropChange(surface->window().rect());
    }
}

std::optional<QImage> X11OverlaySurfaces::backdropOf(const X11OverlaySurface& surface,
                                                     const QRect& rect) {
    // Before a window is mapped, the masks that are to lie below it may not be there yet, and what
    // they are to hide would show through.
    if (!m_backdrops.isActive() || !surface.window().isMapped() || !usesBackdrop(surface))
        return std::nullopt;
    if (!m_layers) m_layers = m_backdrops.readLayers();
    return m_backdrops.capture(rect, surface.window().id(), *m_layers);
}

void X11OverlaySurfaces::noteBackdropChange(const QRect& rect) {
    if (!m_backdrops.isActive()) return;
    const bool isBelowSurface =
        std::any_of(m_surfaces.begin(), m_surfaces.end(), [&](const X11OverlaySurface* surface) {
            return usesBackdrop(*surface) && surface->window().rect().intersects(rect);
        });
    if (!isBelowSurface) return;
    m_changedBackdrop.push_back(rect);
    if (m_pendingRefresh.isActive()) return;
    using namespace std::chrono;
    const auto due = m_lastRefresh + displayFrame;
    const auto wait = duration_cast<milliseconds>(due - steady_clock::now());
    m_pendingRefresh =
        m_services.scheduler.after(std::max(wait, milliseconds(0)), [this] { refreshBackdrops(); });
}

void X11OverlaySurfaces::refreshBackdrops() {
    m_pendingRefresh.reset();
    m_lastRefresh = std::chrono::steady_clock::now();
    auto changed = std::exchange(m_changedBackdrop, {});
    if (!m_backdrops.isActive()) return;
    m_layers = m_backdrops.readLayers();
    // From the bottom up, because a picture changes those of the surfaces above it.
    for (X11OverlaySurface* surface : shownInOrder()) {
        const QRect& rect = surface->window().rect();
        const bool isOutOfDate =
            std::any_of(changed.begin(), changed.end(),
                        [&](const QRect& each) { return each.intersects(rect); });
        if (!isOutOfDate || !usesBackdrop(*surface)) continue;
        surface->repaint();
        changed.push_back(rect);
    }
    m_layers.reset();
    m_connection.flush();
}
