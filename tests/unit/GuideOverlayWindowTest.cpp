#include "Services/GuideOverlayWindow.h"
#include "support/HeadlessHarness.h"

#include <gtest/gtest.h>

TEST(GuideOverlayWindow, ShowsGuidesInTheCoordinatesOfTheVisibleFrame) {
    HeadlessHarness harness;
    GuideOverlayWindow window(harness.surfaces());
    const HeadlessSurface& surface = *harness.desktop().overlaySurfaces.allSurfaces().front();
    EXPECT_EQ(surface.frame(), Rect());
    EXPECT_FALSE(surface.maskID());
    EXPECT_FALSE(surface.isShown());
    EXPECT_TRUE(surface.ignoresMouseEvents());
    const auto guides = [&surface] {
        return dynamic_cast<const GuideView&>(*surface.content()).guides();
    };

    const Rect visible{-1280, 40, 1280, 700};
    const QList<GuideLine> global{GuideLine::vertical(-640), GuideLine::horizontal(390)};
    window.show(global, visible);
    EXPECT_TRUE(surface.isShown());
    EXPECT_EQ(surface.frame(), visible);
    EXPECT_EQ(guides(), (QList<GuideLine>{GuideLine::vertical(640), GuideLine::horizontal(350)}));

    const std::shared_ptr<const SurfaceContent> painted = surface.content();
    window.show(global, visible);
    EXPECT_EQ(surface.content(), painted) << "unchanged guides are not painted again";

    window.show({}, visible);
    EXPECT_FALSE(surface.isShown());

    window.show({GuideLine::vertical(10)}, {0, 0, 800, 600});
    EXPECT_TRUE(surface.isShown());
    EXPECT_EQ(surface.frame(), (Rect{0, 0, 800, 600}));
    EXPECT_EQ(guides(), QList<GuideLine>{GuideLine::vertical(10)});
}
