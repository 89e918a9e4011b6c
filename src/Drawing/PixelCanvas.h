#pragma once

#include "Models/Geometry.h"

#include <QPainter>
#include <QSize>

/// Lets code draw on whole device pixels: during its life one unit of the painter is one device
/// pixel, counted from the pixel nearest to the painter's origin. The painter may be scaled (by its
/// own transform or by the ratio of its device) and moved, but not turned.
class [[nodiscard]] PixelCanvas {
public:
    explicit PixelCanvas(QPainter& painter);
    PixelCanvas(const PixelCanvas&) = delete;
    PixelCanvas& operator=(const PixelCanvas&) = delete;
    ~PixelCanvas() { m_painter.restore(); }

    /// The same rounding without a painter.
    static int wholePixels(double points, double scale);

    QPainter& painter() { return m_painter; }
    /// Device pixels in a point.
    double scale() const { return m_scale; }
    /// A length in whole pixels; no length above 0 vanishes.
    int pixels(double points) const { return wholePixels(points, m_scale); }
    QSize pixels(Size size) const;

private:
    QPainter& m_painter;
    double m_scale;
};
