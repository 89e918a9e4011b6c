#include "Drawing/ContinuousRoundedRect.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

/// The part of the quarter turn that the two transitions take; the rest is the arc between them.
constexpr double smoothing = 0.8;
constexpr double fullTransitionAngle = smoothing * std::numbers::pi / 4;

/// One corner in its own frame: it starts at the origin heading along +x, turns towards +y and ends
/// at (extent, extent) heading along +y; its vertex is (extent, 0). It is its own mirror image in
/// the diagonal through the vertex.
///
/// A transition is a clothoid of length L whose curvature grows linearly to 1/R. It turns by
/// a = L / 2R, and integrating the cosine and sine of s^2 / 2RL term by term gives its end:
///     x = L (1 - a^2/10 + a^4/216),  y = L (a/3 - a^3/42 + a^5/1320).
/// The arc of radius R that follows has its centre at (x - R sin a, y + R cos a). The centre lies
/// on the diagonal, which gives the extent as the sum of its coordinates, and the corner comes
/// within sqrt(2) y_centre - R of the vertex, which R is chosen for.
struct Corner {
    double angle = 0;
    double arcRadius = 0;
    double extent = 0;
    QPointF transitionEnd;
};

Corner makeCorner(double radius, double angle) {
    const double length = 2 * angle;
    const double squared = angle * angle;
    const QPointF end(length * (1 - squared / 10 + squared * squared / 216),
                      length * angle * (1.0 / 3 - squared / 42 + squared * squared / 1320));
    const QPointF center(end.x() - std::sin(angle), end.y() + std::cos(angle));
    const double gap = std::numbers::sqrt2 * center.y() - 1;
    const double scale = radius * (std::numbers::sqrt2 - 1) / gap;
    return {angle, scale, scale * (center.x() + center.y()), scale * end};
}

/// The corner with the most smoothing that reaches no further than `room`.
Corner fittingCorner(double radius, double room) {
    const double fittingRadius = std::clamp(radius, 0.0, room);
    Corner corner = makeCorner(fittingRadius, fullTransitionAngle);
    if (corner.extent <= room) return corner;
    double fits = 0;
    double tooLarge = fullTransitionAngle;
    for (int step = 0; step < 24; ++step) {
        const double middle = (fits + tooLarge) / 2;
        (makeCorner(fittingRadius, middle).extent <= room ? fits : tooLarge) = middle;
    }
    return makeCorner(fittingRadius, fits);
}

Corner cornerOf(const ContinuousRoundedRect& shape) {
    return fittingCorner(shape.radius, std::min(shape.rect.width(), shape.rect.height()) / 2);
}

/// The nine control points after the starting point: transition, arc, transition.
///
/// A cubic has curvature (2/3) cross(p1 - p0, p2 - p1) / |p1 - p0|^3 at its start and the like at
/// its end. Zero at the start of the transition puts its third point on the x axis; 1/R at the end
/// then fixes the second. So the pieces meet with equal tangent and curvature.
std::array<QPointF, 9> controlPoints(const Corner& corner) {
    const auto mirrored = [&corner](QPointF point) {
        return QPointF(corner.extent - point.y(), corner.extent - point.x());
    };
    const QPointF heading(std::cos(corner.angle), std::sin(corner.angle));
    const QPointF end = corner.transitionEnd;
    QPointF second(0, 0);
    QPointF third(0, 0);
    if (corner.angle > 1e-6) {
        const double endHandle = end.y() / heading.y();
        third.setX(end.x() - endHandle * heading.x());
        second.setX(third.x() - 1.5 * endHandle * endHandle / (corner.arcRadius * heading.y()));
    }
    const double arcAngle = std::numbers::pi / 2 - 2 * corner.angle;
    const QPointF arcHandle = 4.0 / 3 * std::tan(arcAngle / 4) * corner.arcRadius * heading;
    return {second,
            third,
            end,
            end + arcHandle,
            mirrored(end + arcHandle),
            mirrored(end),
            mirrored(third),
            mirrored(second),
            mirrored(QPointF(0, 0))};
}

}  // namespace

double ContinuousRoundedRect::cornerExtent() const {
    return rect.isEmpty() ? 0 : cornerOf(*this).extent;
}

QPainterPath ContinuousRoundedRect::path() const {
    QPainterPath outline;
    if (rect.isEmpty()) return outline;
    const Corner corner = cornerOf(*this);
    const std::array<QPointF, 9> points = controlPoints(corner);
    struct Side {
        QPointF vertex;
        QPointF arriving;
        QPointF leaving;
    };
    const QPointF right(1, 0);
    const QPointF down(0, 1);
    const std::array<Side, 4> sides{
        Side{rect.topRight(), right, down}, Side{rect.bottomRight(), down, -right},
        Side{rect.bottomLeft(), -right, -down}, Side{rect.topLeft(), -down, right}};
    outline.moveTo(rect.topLeft() + corner.extent * right);
    for (const Side& side : sides) {
        const auto place = [&](QPointF point) {
            return side.vertex + (point.x() - corner.extent) * side.arriving +
                   point.y() * side.leaving;
        };
        outline.lineTo(place(QPointF(0, 0)));
        for (std::size_t i = 0; i < points.size(); i += 3)
            outline.cubicTo(place(points[i]), place(points[i + 1]), place(points[i + 2]));
    }
    outline.closeSubpath();
    return outline;
}

ContinuousRoundedRect ContinuousRoundedRect::insetBy(double distance) const {
    return {rect.adjusted(distance, distance, -distance, -distance),
            std::max(0.0, radius - distance)};
}
