#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QSize>

/// The glow of a shape: the shape in one colour, blurred.
struct SoftGlow {
    QColor color;
    /// The distance in pixels over which the glow fades on either side of the edge; two standard
    /// deviations of the blur, as style sheets count it.
    double blurRadius = 0;

    /// How far, in pixels, the blur changes anything on either side of an edge.
    int reach() const;

    /// The glow around `shape` on an image of `size` pixels. Inside the shape there is none, so
    /// that a translucent shape keeps its own colour when the glow comes and goes.
    QImage around(const QPainterPath& shape, QSize size) const;
};
