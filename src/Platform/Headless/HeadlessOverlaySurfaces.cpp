#include "Platform/Headless/HeadlessOverlaySurfaces.h"

#include "Services/ScreenPlacement.h"

#include <algorithm>
#include <utility>

HeadlessSurface::HeadlessSurface(HeadlessOverlaySurfaces& owner, SurfaceDescription description,
                                 SurfaceDelegate* delegate)
    : m_owner(owner), m_description(std::move(description)), m_delegate(delegate) {}

HeadlessSurface::~HeadlessSurface() {
    m_owner.forget(this);
}

void HeadlessSurface::setFrame(const Rect& frame) {
    const Rect previous = std::exchange(m_description.frame, frame);
    if (previous == frame) return;
    m_owner.noteChange();
    if (!m_delegate) return;
    const bool isMoved = previous.x != frame.x || previous.y != frame.y;
    const bool isResized = previous.size() != frame.size();
    if (isMoved) m_delegate->surfaceDidMove();
    if (isResized) m_delegate->surfaceDidResize();
}

void HeadlessSurface::setContent(std::shared_ptr<const SurfaceContent> content) {
    m_content = std::move(content);
    m_owner.noteChange();
}

void HeadlessSurface::setAccessibleDescription(const AccessibleDescription& description) {
    if (m_accessible == description) return;
    m_accessible = description;
    m_owner.noteChange();
}

void HeadlessSurface::setIgnoresMouseEvents(bool ignores) {
    if (std::exchange(m_ignoresMouseEvents, ignores) != ignores) m_owner.noteChange();
}

void HeadlessSurface::orderFront() {
    m_isShown = true;
    m_raised = ++m_owner.m_lastRaise;
    m_owner.restackUnlessBatched();
}

void HeadlessSurface::orderOut() {
    if (!std::exchange(m_isShown, false)) return;
    m_owner.restackUnlessBatched();
    m_owner.endGestureOf(this);
}

HeadlessOverlaySurfaces::HeadlessOverlaySurfaces(HeadlessScreens& screens)
    : m_screens(screens), m_knownScreens(screens.screens()) {
    m_screensChanged = screens.onScreensChanged([this] { followScreens(); });
}

std::unique_ptr<OverlaySurface> HeadlessOverlaySurfaces::createSurface(
    const SurfaceDescription& description, SurfaceDelegate* delegate) {
    auto surface = std::make_unique<HeadlessSurface>(*this, description, delegate);
    m_all.push_back(surface.get());
    noteChange();
    return surface;
}

void HeadlessOverlaySurfaces::endBatch() {
    if (--m_openBatches == 0 && std::exchange(m_needsRestack, false)) restack();
}

HeadlessSurface* HeadlessOverlaySurfaces::surfaceOf(const QUuid& maskID) const {
    const auto found = std::find_if(m_all.begin(), m_all.end(), [&](const HeadlessSurface* each) {
        return each->maskID() == maskID;
    });
    return found == m_all.end() ? nullptr : *found;
}

void HeadlessOverlaySurfaces::forget(HeadlessSurface* surface) {
    surface->m_isShown = false;
    surface->m_delegate = nullptr;
    endGestureOf(surface);
    if (m_hovered == surface) m_hovered = nullptr;
    std::erase(m_all, surface);
    std::erase(m_shown, surface);
    noteChange();
}

void HeadlessOverlaySurfaces::restackUnlessBatched() {
    m_needsRestack = m_openBatches > 0;
    if (!m_needsRestack) restack();
}

void HeadlessOverlaySurfaces::restack() {
    std::vector<HeadlessSurface*> shown;
    shown.reserve(m_all.size());
    std::copy_if(m_all.begin(), m_all.end(), std::back_inserter(shown),
                 [](const HeadlessSurface* each) { return each->m_isShown; });
    std::sort(shown.begin(), shown.end(), [](const HeadlessSurface* a, const HeadlessSurface* b) {
        return a->m_raised < b->m_raised;
    });
    if (shown == m_shown) return;
    m_shown = std::move(shown);
    noteChange();
}

void HeadlessOverlaySurfaces::moveMouse(Point global) {
    m_screens.setPointerLocation(global);
    if (m_pressed) {
        m_pressed->m_delegate->mouseDragged(global);
        return;
    }
    HeadlessSurface* const under = surfaceAt(global);
    HeadlessSurface* const left = std::exchange(m_hovered, under);
    if (left && left != under) left->m_delegate->mouseExited();
    if (under) under->m_delegate->mouseMoved(positionIn(*under, global));
}

void HeadlessOverlaySurfaces::pressMouse() {
    const Point global = m_screens.pointerLocation();
    m_pressed = surfaceAt(global);
    if (m_pressed) m_pressed->m_delegate->mouseDown(positionIn(*m_pressed, global), global);
}

void HeadlessOverlaySurfaces::releaseMouse() {
    endGestureOf(m_pressed);
}

void HeadlessOverlaySurfaces::endGestureOf(const HeadlessSurface* surface) {
    if (!surface || m_pressed != surface) return;
    SurfaceDelegate* const delegate = std::exchange(m_pressed, nullptr)->m_delegate;
    if (delegate) delegate->mouseUp();
}

void HeadlessOverlaySurfaces::followScreens() {
    const QList<ScreenInfo> oldScreens = std::exchange(m_knownScreens, m_screens.screens());
    for (HeadlessSurface* surface : m_all) {
        Rect& frame = surface->m_description.frame;
        frame = rectFollowingItsScreen(frame, oldScreens, m_knownScreens).value_or(frame);
    }
}

HeadlessSurface* HeadlessOverlaySurfaces::surfaceAt(Point global) const {
    const auto found =
        std::find_if(m_shown.rbegin(), m_shown.rend(), [&](const HeadlessSurface* each) {
            return !each->m_ignoresMouseEvents && each->m_delegate &&
                   each->frame().contains(global);
        });
    return found == m_shown.rend() ? nullptr : *found;
}

Point HeadlessOverlaySurfaces::positionIn(const HeadlessSurface& surface, Point global) {
    return {global.x - surface.frame().x, global.y - surface.frame().y};
}
