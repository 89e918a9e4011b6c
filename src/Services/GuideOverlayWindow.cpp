#include "Services/GuideOverlayWindow.h"

#include "Drawing/PixelCanvas.h"
#include "Drawing/SystemColors.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

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

void GuideView::paint(QPainter& painter, Size size) const {
    PixelCanvas canvas(painter);
    const QSize ground = canvas.pixels(size);
    const int width = canvas.pixels(lineWidth);
    // One path, so that lines that cross or coincide are not painted over each other.
    QPainterPath lines;
    lines.setFillRule(Qt::WindingFill);
    for (const GuideLine& guide : m_guides) {
        const bool isVertical = guide.orientation == GuideLine::Orientation::vertical;
        const int length = isVertical ? ground.width() : ground.height();
        const std::optional<int> first = firstPixel(guide.position * canvas.scale(), width, length);
        if (!first) continue;
        lines.addRect(isVertical
                          ? QRect(*first, 0, width, ground.height())
                          : QRect(0, ground.height() - *first - width, ground.width(), width));
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillPath(lines, paintColor(lineColor));
}

std::optional<QList<Rect>> GuideView::paintedAreas(Size size) const {
    // A line lies within its own width of the guide, however it falls on the pixels.
    const auto strip = [](double position, double length) {
        const double first = std::clamp(position - lineWidth, 0.0, length);
        return std::pair(first, std::clamp(position + lineWidth, 0.0, length) - first);
    };
    QList<Rect> areas;
    for (const GuideLine& guide : m_guides) {
        if (guide.orientation == GuideLine::Orientation::vertical) {
            const auto [x, width] = strip(guide.position, size.width);
            areas.append({x, 0, width, size.height});
        } else {
            const auto [y, height] = strip(size.height - guide.position, size.height);
            areas.append({0, y, size.width, height});
        }
    }
    return areas;
}

GuideOverlayWindow::GuideOverlayWindow(OverlaySurfaces& surfaces)
    : m_surface(surfaces.createSurface(
          {.title = QStringLiteral("Veyla snapping guides"), .maskID = {}, .frame = {}}, nullptr)) {
    m_surface->setIgnoresMouseEvents(true);
}

void GuideOverlayWindow::show(const QList<GuideLine>& guides, const Rect& visibleFrame) {
    if (guides.isEmpty()) {
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
