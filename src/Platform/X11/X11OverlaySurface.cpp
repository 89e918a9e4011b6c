#include "Platform/X11/X11OverlaySurface.h"

#include <cmath>
#include <utility>

#include <QPainter>

#include "Platform/X11/X11OverlaySurfaces.h"
#include "Services/ScreenPlacement.h"

namespace {

// The pixels that an area in points covers, even in part.
QRect coveredPixels(const Rect& area, double scaleFactor, QSize limit) {
    const auto low = [&](double value) { return static_cast<int>(std::floor(value * scaleFactor)); };
    const auto high = [&](double value) { return static_cast<int>(std::ceil(value * scaleFactor)); };
    const QRect pixels(QPoint(low(area.minX()), low(area.minY())),
                       QPoint(high(area.maxX()) - 1, high(area.maxY()) - 1));
    return pixels.intersected(QRect(QPoint(0, 0), limit));
}

}  // namespace

X11OverlaySurface::X11OverlaySurface(X11OverlaySurfaces& owner, SurfaceDescription description,
                                     SurfaceDelegate* delegate,
                                     std::unique_ptr<NativeOverlayWindow> window)
    : m_owner(owner),
      m_description(std::move(description)),
      m_delegate(delegate),
      m_window(std::move(window)) {}

X11OverlaySurface::~X11OverlaySurface() {
    m_delegate = nullptr;
    m_owner.forget(*this);
}

void X11OverlaySurface::setFrame(const Rect& frame) {
    const Rect previous = std::exchange(m_description.frame, frame);
    if (previous == frame) return;
    noteChange();
    tellDelegate(previous);
}

void X11OverlaySurface::noteChange() {
    m_needsApplying = true;
    m_owner.noteChange();
}

void X11OverlaySurface::tellDelegate(const Rect& previous) {
    if (!m_delegate) return;
    const Rect& frame = m_description.frame;
    const bool isMoved = previous.x != frame.x || previous.y != frame.y;
    const bool isResized = previous.size() != frame.size();
    if (isMoved) m_delegate->surfaceDidMove();
    if (isResized) m_delegate->surfaceDidResize();
}

void X11OverlaySurface::setContent(std::shared_ptr<const SurfaceContent> content) {
    m_content = std::move(content);
    m_needsPainting = true;
    noteChange();
}

void X11OverlaySurface::setAccessibleDescription(const AccessibleDescription& description) {
    if (m_accessible == description) return;
    m_accessible = description;
    m_owner.describe(*this, m_accessible);
}

void X11OverlaySurface::setIgnoresMouseEvents(bool ignores) {
    if (std::exchange(m_ignoresMouseEvents, ignores) != ignores) noteChange();
}

void X11OverlaySurface::setCursor(CursorShape shape) {
    if (std::exchange(m_cursor, shape) != shape) noteChange();
}

void X11OverlaySurface::orderFront() {
    m_needsApplying |= !std::exchange(m_isShown, true);
    m_raiseNumber = m_owner.nextRaiseNumber();
    m_owner.noteOrder();
}

void X11OverlaySurface::orderOut() {
    if (!std::exchange(m_isShown, false)) return;
    m_owner.endGestureOf(*this);
    m_owner.noteOrder();
}

void X11OverlaySurface::apply(const DesktopSpace& space) {
    if (!std::exchange(m_needsApplying, false)) return;
    const double scaleFactor = space.scaleFactorAt(m_description.frame);
    const QRect rect = space.toNative(m_description.frame);
    const bool isRescaled = std::exchange(m_scaleFactor, scaleFactor) != scaleFactor;
    m_needsPainting |= isRescaled || rect.size() != m_window->rect().size();

    // A hidden window is painted when it is shown.
    const bool isPaintedNow = m_needsPainting && m_isShown && m_content;
    const bool isResized = rect.size() != m_window->rect().size();
    if (isPaintedNow && isResized) {
        paint(rect.size());
        m_window->setRect(rect);
    } else {
        m_window->setRect(rect);
        if (isPaintedNow) paint(rect.size());
    }
    if (std::exchange(m_hasAppliedPassThrough, m_ignoresMouseEvents) != m_ignoresMouseEvents)
        m_window->setInputPassThrough(m_ignoresMouseEvents);
    if (m_appliedCursor != m_cursor && m_isShown) {
        m_window->setCursor(m_owner.cursor(m_cursor));
        m_appliedCursor = m_cursor;
    }
}

void X11OverlaySurface::paint(QSize size) {
    const Size points{size.width() / m_scaleFactor, size.height() / m_scaleFactor};
    const auto areas = m_content->paintedAreas(points);
    QList<QRect> rects;
    if (areas)
        for (const Rect& area : *areas) rects.append(coveredPixels(area, m_scaleFactor, size));
    else
        rects.append(QRect(QPoint(0, 0), size));

    QList<NativeOverlayWindow::Part> parts;
    for (const QRect& rect : std::as_const(rects)) {
        if (rect.isEmpty()) continue;
        QImage image(rect.size(), m_owner.imageFormat());
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-rect.topLeft());
        painter.scale(m_scaleFactor, m_scaleFactor);
        m_content->paint(painter, points);
        painter.end();
        parts.append({rect.topLeft(), image});
    }
    m_window->setPicture(size, parts);
    if (areas || std::exchange(m_hasBoundingAreas, areas.has_value()))
        m_window->setBoundingAreas(areas ? rects : QList<QRect>());
    m_hasBoundingAreas = areas.has_value();
    m_needsPainting = false;
}

void X11OverlaySurface::followScreens(const QList<ScreenInfo>& oldScreens,
                                      const DesktopSpace& space) {
    m_needsApplying = true;
    // Where the screen itself is gone, the window is still where it was in pixels.
    m_description.frame = rectFollowingItsScreen(m_description.frame, oldScreens, space.screens())
                              .value_or(space.toGlobal(m_window->rect()));
}

void X11OverlaySurface::adoptForeignRect(const QRect& rect, const DesktopSpace& space) {
    m_window->noteForeignRect(rect);
    m_needsPainting = true;
    const Rect previous = std::exchange(m_description.frame, space.toGlobal(rect));
    noteChange();
    if (previous != m_description.frame) tellDelegate(previous);
}

std::unique_ptr<NativeOverlayWindow> X11OverlaySurface::replaceWindow(
    std::unique_ptr<NativeOverlayWindow> window) {
    m_needsApplying = true;
    m_needsPainting = true;
    m_hasAppliedPassThrough = false;
    m_hasBoundingAreas = false;
    m_appliedCursor.reset();
    return std::exchange(m_window, std::move(window));
}
