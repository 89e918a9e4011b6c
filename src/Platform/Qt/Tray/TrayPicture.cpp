#include "Platform/Qt/Tray/TrayPicture.h"

#include "Drawing/SymbolPainter.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double middleLightness = 0.5;

}  // namespace

QImage TrayPicture::image(bool isOnLight, int side) {
    Symbol symbol{u"MenuBarIcon"_s, 1, SymbolWeight::regular, isOnLight ? Qt::black : Qt::white};
    symbol.size = side / symbol.side();
    QImage picture = SymbolPainter::image(symbol, 1);
    picture.setDevicePixelRatio(1);
    return picture;
}

bool TrayPicture::isLight(const QImage& ground) {
    if (ground.isNull()) return false;
    const QImage pixels = ground.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    // The corners, which the picture leaves free.
    for (const QPoint& corner : {pixels.rect().topLeft(), pixels.rect().topRight(),
                                 pixels.rect().bottomLeft(), pixels.rect().bottomRight()})
        sum += qGray(pixels.pixel(corner)) / 255.0;
    return sum / 4 > middleLightness;
}
