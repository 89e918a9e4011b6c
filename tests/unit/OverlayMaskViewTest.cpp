#include "Services/OverlayMaskView.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

OverlayMaskView maskNamed(const QString& name, ScreenMask::Style style, double opacity) {
    OverlayMaskView view;
    view.mask.id = QUuid(QStringLiteral("{a0b1c2d3-e4f5-4678-9abc-def012345678}"));
    view.mask.name = name;
    view.mask.style = style;
    view.mask.opacity = opacity;
    view.mask.colorHex = QStringLiteral("#101114");
    return view;
}

TEST(OverlayMaskView, DescribesTheMaskInWords) {
    struct Case {
        ScreenMask::Style style;
        bool isSelected;
        bool isEditingEnabled;
        const char* label;
    };
    using Style = ScreenMask::Style;
    const Case cases[] = {
        {Style::blackout, true, true,
         "Overlay mask, Mask 1, Blackout style, 85% opacity, selected, editing enabled"},
        {Style::frosted, false, true,
         "Overlay mask, Mask 1, Frosted style, 85% opacity, editing enabled"},
        {Style::softTint, true, false,
         "Overlay mask, Mask 1, Soft Tint style, 85% opacity, selected, editing locked"},
        {Style::blackout, false, false,
         "Overlay mask, Mask 1, Blackout style, 85% opacity, editing locked"},
    };
    for (const Case& each : cases) {
        OverlayMaskView view = maskNamed(QStringLiteral("Mask 1"), each.style, 0.85);
        view.isSelected = each.isSelected;
        view.isEditingEnabled = each.isEditingEnabled;
        const AccessibleDescription description = view.accessibleDescription();
        EXPECT_EQ(description.label.toStdString(), each.label);
        EXPECT_EQ(description.identifier.toStdString(),
                  "overlay-mask-A0B1C2D3-E4F5-4678-9ABC-DEF012345678");
        EXPECT_EQ(description.isSelected, each.isSelected);
    }
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
        const QString label =
            maskNamed(QStringLiteral("%1 %2"), ScreenMask::Style::frosted, opacity)
                .accessibleDescription()
                .label;
        EXPECT_EQ(label.toStdString(), std::string("Overlay mask, %1 %2, Frosted style, ") +
                                           percent + "% opacity, editing enabled");
    }
}

TEST(OverlayMaskView, PaintsLikeAnotherUnlessSomethingVisibleDiffers) {
    const OverlayMaskView view = maskNamed(QStringLiteral("A"), ScreenMask::Style::frosted, 0.5);
    const auto changed = [&view](auto change) {
        OverlayMaskView other = view;
        change(other);
        EXPECT_NE(other, view);
        return !view.paintsLike(other);
    };
    EXPECT_FALSE(changed([](auto& v) { v.mask.name = QStringLiteral("B"); }));
    EXPECT_FALSE(changed([](auto& v) { v.mask.id = QUuid::createUuid(); }));
    EXPECT_FALSE(changed([](auto& v) { v.mask.frame.x = 7; }));
    EXPECT_FALSE(changed([](auto& v) { v.mask.isClickThrough = true; }));
    EXPECT_TRUE(changed([](auto& v) { v.mask.style = ScreenMask::Style::blackout; }));
    EXPECT_TRUE(changed([](auto& v) { v.mask.opacity = 0.51; }));
    EXPECT_TRUE(changed([](auto& v) { v.mask.colorHex = QStringLiteral("#101115"); }));
    EXPECT_TRUE(changed([](auto& v) { v.isSelected = true; }));
    EXPECT_TRUE(changed([](auto& v) { v.isEditingEnabled = false; }));
}

}  // namespace
