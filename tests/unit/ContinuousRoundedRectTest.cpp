#include "Drawing/ContinuousRoundedRect.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

struct End {
    QPointF place;
    double heading;
    double curvature;
};

struct Piece {
    End start;
    End end;
};

double cross(QPointF a, QPointF b) {
    return a.x() * b.y() - a.y() * b.x();
}

/// The start of the cubic with these control points, from the definition of curvature.
End startOf(QPointF p0, QPointF p1, QPointF p2, QPointF p3) {
    if (p1 == p0) return {p0, std::atan2(p3.y() - p0.y(), p3.x() - p0.x()), 0};
    const QPointF speed = 3 * (p1 - p0);
    const QPointF acceleration = 6 * (p0 - 2 * p1 + p2);
    return {p0, std::atan2(speed.y(), speed.x()),
            cross(speed, acceleration) / std::pow(std::hypot(speed.x(), speed.y()), 3)};
}

std::vector<Piece> piecesOf(const QPainterPath& path) {
    std::vector<Piece> pieces;
    for (int i = 1; i < path.elementCount(); ++i) {
        const QPointF from = path.elementAt(i - 1);
        const QPointF to = path.elementAt(i);
        if (path.elementAt(i).isLineTo()) {
            if (from == to) continue;
            const double heading = std::atan2(to.y() - from.y(), to.x() - from.x());
            pieces.push_back({{from, heading, 0}, {to, heading, 0}});
        } else {
            const QPointF second = path.elementAt(i + 1);
            const QPointF last = path.elementAt(i + 2);
            End end = startOf(last, second, to, from);
            end.heading += M_PI;
            end.curvature = -end.curvature;
            pieces.push_back({startOf(from, to, second, last), end});
            i += 2;
        }
    }
    return pieces;
}

TEST(ContinuousRoundedRect, RunsWithoutAKinkOrAJumpOfCurvature) {
    const ContinuousRoundedRect shapes[] = {
        {QRectF(3, 3, 314, 174), 18}, {QRectF(0, 0, 100, 44), 18}, {QRectF(-5, 9, 60, 40), 15}};
    for (const ContinuousRoundedRect& shape : shapes) {
        const std::vector<Piece> pieces = piecesOf(shape.path());
        ASSERT_GE(pieces.size(), 12U);
        double greatest = 0;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            const End& end = pieces[i].end;
            const End& start = pieces[(i + 1) % pieces.size()].start;
            EXPECT_NEAR(std::remainder(end.heading - start.heading, 2 * M_PI), 0, 1e-4);
            EXPECT_NEAR(end.curvature * shape.radius, start.curvature * shape.radius, 2e-2);
            greatest = std::max(greatest, start.curvature);
        }
        EXPECT_GT(greatest * shape.radius, 0.99);
        EXPECT_LT(greatest * shape.radius, 1.4);
        EXPECT_EQ(shape.path().boundingRect(), shape.rect);
    }
}

TEST(ContinuousRoundedRect, ComesAsCloseToTheVertexAsAPlainCorner) {
    for (const double radius : {1.0, 10.0, 18.0, 49.0}) {
        const QPainterPath path = ContinuousRoundedRect{QRectF(0, 0, 100, 100), radius}.path();
        // The point of a circle of that radius on the diagonal.
        const double edge = radius * (1 - M_SQRT1_2);
        EXPECT_TRUE(path.contains(QPointF(edge + 0.02, edge + 0.02))) << radius;
        EXPECT_FALSE(path.contains(QPointF(edge - 0.02, edge - 0.02))) << radius;
    }
}

TEST(ContinuousRoundedRect, GivesUpSmoothingBeforeRadiusWhereThereIsNoRoom) {
    const auto extent = [](double width, double height) {
        return ContinuousRoundedRect{QRectF(0, 0, width, height), 18}.cornerExtent();
    };
    EXPECT_NEAR(extent(300, 200), 1.38 * 18, 0.2);
    EXPECT_NEAR(extent(300, 44), 22, 0.01);
    EXPECT_NEAR(extent(36, 300), 18, 0.01);
    EXPECT_NEAR(extent(54, 20), 10, 0.01);
    EXPECT_EQ(extent(0, 20), 0);
    EXPECT_TRUE((ContinuousRoundedRect{QRectF(0, 0, 0, 20), 18}.path().isEmpty()));

    const QPainterPath capsule = ContinuousRoundedRect{QRectF(0, 0, 54, 34), 18}.path();
    for (int degree = 91; degree < 270; degree += 4) {
        const double angle = degree * M_PI / 180;
        const QPointF outward(std::cos(angle), std::sin(angle));
        EXPECT_TRUE(capsule.contains(QPointF(17, 17) + 16.97 * outward)) << degree;
        EXPECT_FALSE(capsule.contains(QPointF(17, 17) + 17.03 * outward)) << degree;
    }
}

}  // namespace
