#include "Drawing/MaskPanel.h"

#include "Drawing/ContinuousRoundedRect.h"
#include "Drawing/RecentCache.h"
#include "Drawing/SoftGlow.h"
#include "Drawing/StretchTile.h"
#include "Drawing/SystemColors.h"

#include <QImage>
#include <cmath>

namespace {

struct CacheKey {
    MaskPanel panel;
    double scale;
    QSize size;

    bool operator==(const CacheKey&) const = default;
};

ContinuousRoundedRect shapeOf(const MaskPanel& panel, double scale, QSize ground) {
    const int inset = PixelCanvas::wholePixels(panel.inset, scale);
    return {QRectF(QPointF(0, 0), ground).adjusted(inset, inset, -inset, -inset),
            panel.cornerRadius * scale};
}

/// The ground for the panel: its glow alone. Kept apart from the panel, since it takes longest and
/// stays the same while the user changes colour or opacity.
QImage drawGlow(const MaskPanel& panel, const PixelCanvas& canvas, QSize size) {
    MaskPanel key = panel;
    key.fill = {};
    key.outline.reset();
    thread_local RecentCache<CacheKey, QImage> cache(4);
    return cache.findOrMake({key, canvas.scale(), size}, [&] {
        const SoftGlow glow{paintColor(panel.glow->color), panel.glow->blurRadius * canvas.scale()};
        return glow.around(shapeOf(panel, canvas.scale(), size).path(), size);
    });
}

QImage drawTile(const MaskPanel& panel, const PixelCanvas& canvas, QSize size) {
    const ContinuousRoundedRect shape = shapeOf(panel, canvas.scale(), size);
    const QPainterPath edge = shape.path();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (panel.glow)
        image = drawGlow(panel, canvas, size);
    else
        image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(edge, paintColor(panel.fill));
    if (panel.outline) {
        QPainterPath ring = edge;
        ring.setFillRule(Qt::OddEvenFill);
        ring.addPath(shape.insetBy(canvas.pixels(panel.outline->width)).path());
        painter.fillPath(ring, paintColor(panel.outline->color));
    }
    return image;
}

/// How far from the ends of an edge something may change along it.
int borderOf(const MaskPanel& panel, const PixelCanvas& canvas) {
    const QSize unbounded(1 << 20, 1 << 20);
    const double corner = shapeOf(panel, canvas.scale(), unbounded).cornerExtent();
    int reach = 1;
    if (panel.glow) reach += SoftGlow{{}, panel.glow->blurRadius * canvas.scale()}.reach();
    return canvas.pixels(panel.inset) + static_cast<int>(std::ceil(corner)) + reach;
}

}  // namespace

void MaskPanel::paint(PixelCanvas& canvas, QSize ground) const {
    if (shapeOf(*this, canvas.scale(), ground).rect.isEmpty()) return;
    const QSize size = StretchTile::tileSize(ground, borderOf(*this, canvas));
    thread_local RecentCache<CacheKey, StretchTile> cache(16);
    cache
        .findOrMake({*this, canvas.scale(), size},
                    [&] { return StretchTile(drawTile(*this, canvas, size)); })
        .draw(canvas.painter(), ground);
}

QPainterPath MaskPanel::edge(QSize ground, double scale) const {
    return shapeOf(*this, scale, ground).path();
}
