#include "Drawing/SymbolPainter.h"

#include "Drawing/PixelCanvas.h"
#include "Drawing/RecentCache.h"

#include <QByteArray>
#include <QFile>
#include <QSvgRenderer>

// The resources are part of a static library, whose objects are left out unless something refers
// to them.
static void initialiseIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace {

struct CacheKey {
    Symbol symbol;
    double scale;

    bool operator==(const CacheKey&) const = default;
};

QString resourcePath(const QString& name) {
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

/// Stroke width on the grid of the icon set; the drawings themselves say 2.
QByteArray strokeWidth(SymbolWeight weight) {
    switch (weight) {
        case SymbolWeight::light:
            return QByteArrayLiteral("1.5");
        case SymbolWeight::regular:
            return QByteArrayLiteral("2");
        case SymbolWeight::semibold:
            return QByteArrayLiteral("2.5");
        case SymbolWeight::bold:
            return QByteArrayLiteral("3");
    }
    return QByteArrayLiteral("2");
}

QImage draw(const Symbol& symbol, double scale) {
    initialiseIcons();
    QFile file(resourcePath(symbol.name));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QByteArray drawing = file.readAll();
    drawing.replace(QByteArrayLiteral("stroke-width=\"2\""),
                    "stroke-width=\"" + strokeWidth(symbol.weight) + "\"");
    QSvgRenderer renderer(drawing);
    const int side = qRound(symbol.side() * scale);
    if (!renderer.isValid() || side <= 0) return {};

    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(0, 0, side, side));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), symbol.color);
    painter.end();
    image.setDevicePixelRatio(scale);
    return image;
}

}  // namespace

bool SymbolPainter::hasSymbol(const QString& name) {
    initialiseIcons();
    return QFile::exists(resourcePath(name));
}

QImage SymbolPainter::image(const Symbol& symbol, double scale) {
    thread_local RecentCache<CacheKey, QImage> cache(64);
    return cache.findOrMake({symbol, scale}, [&] { return draw(symbol, scale); });
}

void SymbolPainter::paint(QPainter& painter, const Symbol& symbol, QPointF center) {
    const QTransform toDevice = painter.deviceTransform();
    const QPointF deviceCenter = toDevice.map(center);
    PixelCanvas canvas(painter);
    QImage picture = image(symbol, canvas.scale());
    if (picture.isNull()) return;
    picture.setDevicePixelRatio(1);
    const QPointF origin(qRound(toDevice.dx()), qRound(toDevice.dy()));
    const QPointF corner = deviceCenter - origin - QRectF(picture.rect()).center();
    painter.drawImage(QPoint(qRound(corner.x()), qRound(corner.y())), picture);
}
