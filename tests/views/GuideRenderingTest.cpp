#include "Rendering.h"
#include "Services/GuideOverlayWindow.h"

#include <limits>
#include <set>

namespace {

constexpr Size ground{200, 120};
const Color violet{0.55, 0.36, 1.0, 0.9};

TEST(GuideRendering, DrawsSharpLinesAcrossTheWholeView) {
    struct Case {
        GuideLine guide;
        double scale;
        std::set<int> lines;  // pixel columns from the left, pixel rows from the top
    };
    const Case cases[] = {
        {GuideLine::vertical(50), 1, {50}},
        {GuideLine::vertical(50), 1.5, {74, 75}},
        {GuideLine::vertical(50), 2, {99, 100}},
        {GuideLine::vertical(50.25), 2, {100, 101}},
        {GuideLine::horizontal(30), 1, {89}},
        {GuideLine::horizontal(30), 1.5, {134, 135}},
        {GuideLine::horizontal(30), 2, {179, 180}},
        {GuideLine::vertical(0), 1, {0}},
        {GuideLine::vertical(200), 1, {199}},
        {GuideLine::vertical(200), 2, {398, 399}},
        {GuideLine::horizontal(0), 1, {119}},
        {GuideLine::horizontal(0), 2, {238, 239}},
        {GuideLine::horizontal(120), 1, {0}},
        {GuideLine::horizontal(120), 1.5, {0, 1}},
        {GuideLine::vertical(-2), 1, {}},
        {GuideLine::horizontal(122), 2, {}},
        {GuideLine::vertical(1e300), 1, {}},
        {GuideLine::vertical(std::numeric_limits<double>::quiet_NaN()), 1, {}},
    };
    for (const Case& each : cases) {
        const bool isVertical = each.guide.orientation == GuideLine::Orientation::vertical;
        SCOPED_TRACE(testing::Message() << (isVertical ? "vertical " : "horizontal ")
                                        << each.guide.position << " at " << each.scale);
        const QImage image = rendered(GuideView({each.guide}), ground, each.scale);
        int wrongPixels = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const bool isOnLine = each.lines.count(isVertical ? x : y) > 0;
                wrongPixels += !hasColor(image, {x, y}, isOnLine ? violet : Color{0, 0, 0, 0});
            }
        }
        EXPECT_EQ(wrongPixels, 0);
    }
}

TEST(GuideRendering, DoesNotDarkenWhereLinesCrossOrCoincide) {
    const GuideView view(
        {GuideLine::vertical(50), GuideLine::horizontal(30), GuideLine::vertical(50)});
    const QImage image = rendered(view, ground, 1);
    EXPECT_TRUE(hasColor(image, {50, 89}, violet));
    EXPECT_TRUE(hasColor(image, {50, 10}, violet));
    EXPECT_TRUE(hasColor(image, {10, 89}, violet));
    EXPECT_EQ(image.pixel(51, 88), 0U);

    const QImage empty = rendered(GuideView({}), ground, 1);
    EXPECT_EQ(empty.pixel(0, 0), 0U);
}

}  // namespace
