#include "Services/OverlayMaskView.h"

#include <gtest/gtest.h>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace {

OverlayMaskView maskNamed(const QString& name, ScreenMask::Style style, double opacity) {
    OverlayMaskView view;
    view.mask.id = QUuid(u"{a0b1c2d3-e4f5-4678-9abc-def012345678}"_s);
    view.mask.name = name;
    view.mask.style = style;
    view.mask.opacity = opacity;
    view.mask.colorHex = u"#101114"_s;
    return view;
}

TEST(OverlayMaskView, TellsTheOpacityInWholePercentTowardZero) {
    using Limits = std::numeric_limits<double>;
    const std::pair<double, const char*> cases[] = {
        {0, "0"},
        {0.29, "28"},
        {0.999, "99"},
        {1, "100"},
        {-0.005, "0"},
        {-0.29, "-28"},
        {1.75, "175"},
        {Limits::quiet_NaN(), "0"},
        {1e300, "2147483647"},
        {Limits::infinity(), "2147483647"},
        {-Limits::infinity(), "-2147483647"},
    };
    // A name that looks like a place to fill in must come through as it is.
    for (const auto& [opacity, percent] : cases) {
        const QString label = maskNamed(u"%1 %2"_s, ScreenMask::Style::frosted, opacity)
                                  .accessibleDescription()
                                  .label;
        EXPECT_EQ(label.toStdString(), std::string("Overlay mask, %1 %2, Frosted style, ") +
                                           percent + "% opacity, editing enabled");
    }
}

TEST(OverlayMaskView, PaintsLikeAnotherUnlessSomethingVisibleDiffers) {
    const OverlayMaskView view = maskNamed(u"A"_s, ScreenMask::Style::frosted, 0.5);
    const auto changed = [&view](auto change) {
        OverlayMaskView other = view;
        change(other);
        EXPECT_NE(other, view);
        return !view.paintsLike(other);
    };
    EXPECT_FALSE(changed([](auto& v) { v.mask.name = u"B"_s; }));
    EXPECT_FALSE(changed([](auto& v) { v.mask.id = QUuid::createUuid(); }));
    EXPECT_FALSE(changed([](auto& v) { v.mask.frame.x = 7; }));
    EXPECT_FALSE(changed([](auto& v) { v.mask.isClickThrough = true; }));
    EXPECT_TRUE(changed([](auto& v) { v.mask.style = ScreenMask::Style::blackout; }));
    EXPECT_TRUE(changed([](auto& v) { v.mask.opacity = 0.51; }));
    EXPECT_TRUE(changed([](auto& v) { v.mask.colorHex = u"#101115"_s; }));
    EXPECT_TRUE(changed([](auto& v) { v.isSelected = true; }));
    EXPECT_TRUE(changed([](auto& v) { v.isEditingEnabled = false; }));
}

}  // namespace
