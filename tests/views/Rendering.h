#pragma once

#include "Models/Color.h"
#include "Models/Geometry.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>

/// The device pixels per point that every rendering is tested at.
inline constexpr double testedScales[] = {1, 1.5, 2};

/// What `content.paint` leaves on a ground of `size` points, one image pixel a device pixel.
template <typename Content>
QImage rendered(const Content& content, Size size, double scale, QColor ground = Qt::transparent) {
    QImage image(qRound(size.width * scale), qRound(size.height * scale),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(ground);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    content.paint(painter, size);
    painter.end();
    image.setDevicePixelRatio(1);
    return image;
}

/// `above` seen over `below`.
inline Color over(const Color& above, const Color& below) {
    const double shown = below.opacity * (1 - above.opacity);
    const double opacity = above.opacity + shown;
    if (opacity == 0) return {0, 0, 0, 0};
    const auto mix = [&](double a, double b) { return (a * above.opacity + b * shown) / opacity; };
    return {mix(above.red, below.red), mix(above.green, below.green), mix(above.blue, below.blue),
            opacity};
}

/// Whether a pixel has that colour, compared premultiplied, within two steps of rounding.
inline testing::AssertionResult hasColor(const QImage& image, QPoint place, const Color& expected) {
    const QRgb pixel = image.pixel(place);
    const auto isNear = [&](int value, double component) {
        return std::abs(value - component * expected.opacity * 255) <= 2;
    };
    if (isNear(qRed(pixel), expected.red) && isNear(qGreen(pixel), expected.green) &&
        isNear(qBlue(pixel), expected.blue) && isNear(qAlpha(pixel), 1))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "pixel " << place.x() << "," << place.y() << " is " << qRed(pixel) << " "
           << qGreen(pixel) << " " << qBlue(pixel) << " " << qAlpha(pixel)
           << " (premultiplied), expected " << expected.red * expected.opacity * 255 << " "
           << expected.green * expected.opacity * 255 << " "
           << expected.blue * expected.opacity * 255 << " " << expected.opacity * 255;
}
