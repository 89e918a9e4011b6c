#pragma once

#include <QPainterPath>
#include <QRectF>

/// A rectangle whose corners are rounded with continuous curvature: along the outline the
/// curvature grows linearly from 0 on the straight edge to its greatest value, holds it on a short
/// arc and falls back, so that light and outline show no kink where edge and corner meet.
struct ContinuousRoundedRect {
    QRectF rect;
    /// The radius of the plain circular corner that has the same distance from the vertex.
    double radius = 0;

    /// How far a corner reaches along its edges, measured from the vertex: 1.38 radii when there is
    /// room. Where there is less, the smoothing gives way first and then the radius, so that a
    /// rectangle lower than two radii is a capsule.
    double cornerExtent() const;

    /// The outline, clockwise on a y-down surface; empty for an empty rectangle.
    QPainterPath path() const;

    /// The shape that runs inside this one at a distance.
    ContinuousRoundedRect insetBy(double distance) const;
};
