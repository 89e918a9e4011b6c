#include "Drawing/FrostedImage.h"

#include <QPainter>
#include <gtest/gtest.h>

TEST(FrostedImage, KeepsSizeAndColourOfAPlainPicture) {
    for (const QSize size : {QSize(1, 1), {3, 5}, {640, 2}, {321, 181}})
        for (const QColor color : {QColor(255, 255, 255), {0, 0, 0}, {200, 101, 3}})
            for (const double deviation : {1.0, 20.0, 60.0}) {
                QImage plain(size, QImage::Format_RGB32);
                plain.fill(color);
                EXPECT_EQ(frosted(plain, deviation), plain) << size.width() << ", " << deviation;
            }
    EXPECT_TRUE(frosted(QImage(), 20).isNull());
}

TEST(FrostedImage, SpreadsAnEdgeByTheDeviationInBothDirections) {
    QImage halves(400, 400, QImage::Format_RGB32);
    for (const bool isUpright : {true, false}) {
        halves.fill(Qt::black);
        QPainter(&halves).fillRect(isUpright ? QRect(200, 0, 200, 400) : QRect(0, 200, 400, 200),
                                   Qt::white);
        const QImage image = frosted(halves, 20);
        const auto at = [&](int across, int along) {
            return qGray(isUpright ? image.pixel(across, along) : image.pixel(along, across));
        };
        // As much of the light as a Gaussian lets through one and three deviations from the edge.
        for (const int along : {0, 200, 399}) {
            EXPECT_NEAR(at(180, along), 255 * 0.159, 6);
            EXPECT_NEAR(at(200, along), 255 * 0.5, 6);
            EXPECT_NEAR(at(220, along), 255 * 0.841, 6);
            EXPECT_LE(at(130, along), 3);
        }
    }
}
