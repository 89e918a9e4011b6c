#include "Drawing/PixelCanvas.h"

#include <QTransform>
#include <algorithm>

PixelCanvas::PixelCanvas(QPainter& painter)
    : m_painter(painter), m_scale(painter.deviceTransform().m11()) {
    m_painter.save();
    const QTransform toDevice = m_painter.deviceTransform();
    const QTransform toPixels =
        QTransform::fromTranslate(qRound(toDevice.dx()), qRound(toDevice.dy()));
    // toDevice is the world transform followed by what Qt adds for the device; the product takes
    // that addition back.
    m_painter.setWorldTransform(toPixels * toDevice.inverted() * m_painter.worldTransform());
}

int PixelCanvas::wholePixels(double points, double scale) {
    if (points <= 0) return 0;
    return std::max(1, qRound(points * scale));
}

QSize PixelCanvas::pixels(Size size) const {
    return {pixels(size.width), pixels(size.height)};
}
