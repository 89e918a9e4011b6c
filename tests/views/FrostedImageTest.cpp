#include "Drawing/FrostedImage.h"

#include <QPainter>
#include <gtest/gtest.h>
#include <random>

TEST(FrostedImage, KeepsAPlainColour) {
    for (const QSize size : {QSize(1, 1), {3, 5}, {640, 2}, {321, 181}})
        for (const QColor color : {QColor(255, 255, 255), {0, 0, 0}, {200, 101, 3}})
            for (const double deviation : {1.0, 20.0, 60.0}) {
                QImage plain(size, QImage::Format_RGB32);
                plain.fill(color);
                EXPECT_EQ(frosted(plain, plain.rect(), deviation), plain)
                    << size.width() << ", " << deviation;
            }
}

TEST(FrostedImage, SpreadsAnEdgeByTheDeviationInBothDirections) {
    QImage halves(100, 100, QImage::Format_RGB32);
    for (const bool isUpright : {true, false}) {
        halves.fill(Qt::black);
        QPainter(&halves).fillRect(isUpright ? QRect(50, 0, 50, 100) : QRect(0, 50, 100, 50),
                                   Qt::white);
        const QImage image = frosted(halves, halves.rect(), 20);
        const auto at = [&](int across, int along) {
            return qGray(isUpright ? image.pixel(across, along) : image.pixel(along, across));
        };
        // As much of the light as a Gaussian lets through one and three deviations from the edge,
        // in the middle of pixels.
        for (const int along : {0, 50, 99}) {
            EXPECT_NEAR(at(45, along), 255 * 0.184, 6);
            EXPECT_NEAR((at(49, along) + at(50, along)) / 2, 255 * 0.5, 6);
            EXPECT_NEAR(at(54, along), 255 * 0.816, 6);
            EXPECT_LE(at(32, along), 3);
        }
    }
}

TEST(FrostedImage, APartIsAsItIsInTheWhole) {
    QImage noise(90, 70, QImage::Format_RGB32);
    std::mt19937 random(1);
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, static_cast<QRgb>(random()) | 0xFF000000U);
    for (const double deviation : {7.0, 20.0}) {
        const QImage whole = frosted(noise, noise.rect(), deviation);
        for (const QRect& part : {QRect(40, 30, 5, 4), {0, 0, 10, 70}, {80, 60, 10, 10}})
            EXPECT_EQ(frosted(noise, part, deviation), whole.copy(part)) << deviation;
    }
}
