#include "Views/Components/AppIconView.h"

#include "Drawing/PixelCanvas.h"
#include "Drawing/RecentCache.h"
#include "Models/ApplicationIdentifier.h"

#include <QPainter>
#include <QSvgRenderer>

namespace {

QImage drawIcon(int pixels) {
    QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QSvgRenderer drawing(QStringLiteral(":/app/%1.svg").arg(applicationIdentifier));
    drawing.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&picture);
    drawing.render(&painter, picture.rect());
    return picture;
}

}  // namespace

QIcon applicationIcon() {
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128, 256})
        icon.addPixmap(QPixmap::fromImage(drawIcon(side)));
    return icon;
}

void paintApplicationIcon(QPainter& painter, QPoint topLeft, int side) {
    // Reading and drawing the picture takes longer than all other parts of a small window.
    static RecentCache<int, QImage> pictures(8);
    const PixelCanvas canvas(painter);
    const int pixels = canvas.pixels(side);
    painter.drawImage(canvas.pixels(topLeft.x()), canvas.pixels(topLeft.y()),
                      pictures.findOrMake(pixels, [=] { return drawIcon(pixels); }));
}

AppIconView::AppIconView(int side) {
    setFixedSize(side, side);
}

void AppIconView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintApplicationIcon(painter, {0, 0}, width());
}
