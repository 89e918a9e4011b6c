#include "Services/GuideOverlayWindow.h"

#include "Drawing/PixelCanvas.h"
#include "Drawing/SystemColors.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr Color lineColor{0.55, 0.36, 1.0, 0.9};
constexpr double lineWidth = 1;

/// The first pixel of a line of `width` pixels centred on `position`, counted along an axis of
/// `length` pixels. A line that an end of the axis would cut is moved wholly inside; nothing for
/// one that lies outside.
std::optional<int> firstPixel(double position, int width, int length) {
    const double first = position - width / 2.0;
    if (!(first > -width && first < length)) return std::nullopt;
    return std::clamp(static_cast<int>(std::floor(first + 0.5)), 0, std::max(0, length - width));
}

}  // namespace

QList<QRect> GuideView::linesInPixels(QSize ground, double scale) const {
    const int width = PixelCanvas::wholePixels(lineWidth, scale);
    QList<QRect> lines;
    for (const GuideLine& guide : m_guides) {
        const bool isVertical = guide.orientation == GuideLine::Orientation::vertical;
        const int length = isVertical ? ground.width() : ground.height();
        const std::optional<int> first = firstPixel(guide.position * scale, width, length);
        if (!first) continue;
        lines.append(isVertical
                         ? QRect(*first, 0, width, ground.height())
                         : QRect(0, ground.height() - *first - width, ground.width(), width));
    }
    return lines;
}

void GuideView::paint(QPainter& painter, Size size) const {
    PixelCanvas canvas(painter);
    // One path, so that lines that cross or coincide are not painted over each other.
    QPainterPath lines;
    lines.setFillRule(Qt::WindingFill);
    for (const QRect& line : linesInPixels(canvas.pixels(size), canvas.scale()))
        lines.addRect(line);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillPath(lines, paintColor(lineColor));
}

std::optional<QList<QRect>> GuideView::paintedPixels(Size size, double scale) const {
    return linesInPixels(QSize(PixelCanvas::wholePixels(size.width, scale),
                               PixelCanvas::wholePixels(size.height, scale)),
                         scale);
}

GuideOverlayWindow::GuideOverlayWindow(OverlaySurfaces& surfaces)
    : m_surface(surfaces.createSurface(
          {.title = QStringLiteral("Veyla snapping guides"), .maskID = {}, .frame = {}}, nullptr)) {
    m_surface->setIgnoresMouseEvents(true);
}

void GuideOverlayWindow::show(const QList<GuideLine>& guides, const Rect& visibleFrame) {
    if (guides.isEmpty()) {
        m_shownGuides.clear();
        m_surface->orderOut();
        return;
    }
    m_surface->setFrame(visibleFrame);
    QList<GuideLine> inView = guides;
    for (GuideLine& guide : inView) {
        const bool isVertical = guide.orientation == GuideLine::Orientation::vertical;
        guide.position -= isVertical ? visibleFrame.minX() : visibleFrame.minY();
    }
    // A drag asks again at every step; painting a whole screen anew is saved while nothing changes.
    if (inView != m_shownGuides) {
        m_shownGuides = inView;
        m_surface->setContent(std::make_shared<const GuideView>(inView));
    }
    m_surface->orderFront();
}

void GuideOverlayWindow::bringToFront() {
    if (!m_shownGuides.isEmpty()) m_surface->orderFront();
}
