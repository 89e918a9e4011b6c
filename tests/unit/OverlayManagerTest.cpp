#include "Services/OverlayManager.h"
#include "Services/ScreenPlacement.h"
#include "support/HeadlessHarness.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

ScreenMask maskAt(const Rect& frame) {
    ScreenMask mask;
    mask.id = QUuid::createUuid();
    mask.name = u"M"_s;
    mask.frame = frame;
    return mask;
}

}  // namespace

TEST(ScreenPlacement, BringsRectanglesWhollyIntoOneScreen) {
    const QList<Rect> two{{0, 0, 1000, 700}, {1000, 100, 500, 600}};
    const struct {
        const char* what;
        Rect given, expected;
    } cases[] = {
        {"inside stays", {100, 100, 200, 100}, {100, 100, 200, 100}},
        {"too small grows", {100, 100, 20, 10}, {100, 100, 60, 40}},
        {"off the left", {-50, 300, 200, 100}, {0, 300, 200, 100}},
        {"too large takes the screen", {-500, -500, 5000, 5000}, {0, 0, 1000, 700}},
        {"straddling, centre on the second", {950, 50, 200, 200}, {1000, 100, 200, 200}},
        {"straddling, centre on the first", {850, 50, 200, 200}, {800, 50, 200, 200}},
        {"centre nowhere, more of the second", {900, -150, 600, 300}, {1000, 100, 500, 300}},
        {"no overlap goes to the first", {5000, 5000, 100, 100}, {900, 600, 100, 100}},
        {"the shared edge is the second's", {900, 200, 200, 100}, {1000, 200, 200, 100}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(resolvedFrame(each.given, two), each.expected) << each.what;
    EXPECT_EQ(resolvedFrame({1, 2, 3, 4}, {}), (Rect{1, 2, 3, 4})) << "no screens";
    EXPECT_EQ(bestScreenFrame({0, 900, 10, 10}, two), two[0]);
    EXPECT_FALSE(bestScreenFrame({0, 0, 10, 10}, {}).has_value());
}

class OverlayManagerTest : public testing::Test {
protected:
    OverlayManagerTest() {
        harness.desktop().screens.setScreens(
            {{u"A"_s, {0, 0, 1000, 700}, {0, 0, 1000, 700}, 1},
             {u"B"_s, {1000, 0, 500, 600}, {1000, 0, 500, 600}, 1}});
    }

    void sync(bool areVisible = true, bool isEditable = true,
              const std::optional<QUuid>& selected = std::nullopt) {
        manager.sync(
            masks, areVisible, isEditable, selected,
            [this](const QUuid& id, const MaskFrame& frame) {
                ++reports;
                for (ScreenMask& mask : masks)
                    if (mask.id == id) mask.frame = frame;
                sync();  // as the model does; must be dropped while a sync runs
            },
            [this](const QUuid& id) { clicked = id; });
    }

    HeadlessSurface& surface(int index) {
        return *harness.desktop().overlaySurfaces.surfaceOf(masks[index].id);
    }

    HeadlessHarness harness;
    OverlayManager manager{harness.mainLoop(), harness.screens(), harness.surfaces()};
    QList<ScreenMask> masks;
    std::optional<QUuid> clicked;
    int reports = 0;
};

TEST_F(OverlayManagerTest, KeepsOneWindowPerMaskInListOrder) {
    masks = {maskAt({0, 0, 100, 100}), maskAt({0, 0, 100, 100}), maskAt({0, 0, 100, 100})};
    masks[1].isVisible = false;
    sync();
    EXPECT_EQ(harness.stack(), (std::vector<QUuid>{masks[0].id, masks[2].id}));
    EXPECT_EQ(manager.activeOverlayCount.value(), 2);
    const HeadlessSurface* const hidden = &surface(1);

    masks[1].isVisible = true;
    masks.swapItemsAt(0, 2);
    sync();
    EXPECT_EQ(harness.stack(), (std::vector<QUuid>{masks[0].id, masks[1].id, masks[2].id}));
    EXPECT_EQ(&surface(1), hidden) << "hiding keeps the window";

    const QUuid gone = masks.takeAt(1).id;
    sync(false);
    EXPECT_EQ(harness.desktop().overlaySurfaces.surfaceOf(gone), nullptr);
    EXPECT_EQ(manager.windowFor(gone), nullptr);
    EXPECT_TRUE(harness.stack().empty());
    EXPECT_EQ(manager.activeOverlayCount.value(), 0);
    EXPECT_EQ(harness.desktop().overlaySurfaces.allSurfaces().size(), 2U);
    manager.focusMask(gone);
    manager.focusMask(masks[0].id);
    EXPECT_TRUE(harness.stack().empty()) << "a hidden mask stays hidden";
    sync();
    manager.focusMask(masks[0].id);
    EXPECT_EQ(harness.stack(), (std::vector<QUuid>{masks[1].id, masks[0].id}));
}

TEST_F(OverlayManagerTest, ReportsTheFramesThatItResolves) {
    masks = {maskAt({10, 10, 20, 10}), maskAt({1450, 10, 100, 100}), maskAt({5, 5, 100, 100})};
    sync();
    EXPECT_EQ(masks[0].frame, (Rect{10, 10, 60, 40}));
    EXPECT_EQ(masks[1].frame, (Rect{1400, 10, 100, 100}));
    EXPECT_GE(reports, 2);
    const int reported = std::exchange(reports, 0);
    sync();
    EXPECT_EQ(reports, 0) << "already in place, after " << reported;
    // The model's frame is off, but its window already sits where that resolves to.
    masks[1].frame.x = 1450;
    sync();
    EXPECT_EQ(reports, 0);
}

TEST_F(OverlayManagerTest, ASyncRightAfterAChangeOfScreensDisplacesNothing) {
    masks = {maskAt({1100, 100, 200, 100}), maskAt({100, 100, 200, 100})};
    sync();
    // B becomes the first screen, and A lies to its right.
    harness.desktop().screens.setScreens({{u"B"_s, {0, 0, 500, 600}, {0, 0, 500, 600}, 1},
                                          {u"A"_s, {500, 0, 1000, 700}, {500, 0, 1000, 700}, 1}});
    masks[1].frame.x = 700;
    sync(false);
    harness.settle();
    EXPECT_EQ(masks[0].frame, (Rect{100, 100, 200, 100}));
    EXPECT_EQ(surface(0).frame(), masks[0].frame);
    EXPECT_EQ(masks[1].frame.x, 700) << "moved in the same turn";
    EXPECT_EQ(surface(1).frame(), masks[1].frame);
}

TEST_F(OverlayManagerTest, ASyncWithNothingChangedChangesNothing) {
    for (int i = 0; i < 5; ++i)
        masks.append(maskAt({i * 100.0, 10, 100, 100}));
    masks[3].isVisible = false;
    sync(true, true, masks[2].id);
    const int changes = harness.desktop().overlaySurfaces.changeCount();
    sync(true, true, masks[2].id);
    masks[0].name = u"only told, not painted"_s;
    EXPECT_EQ(harness.desktop().overlaySurfaces.changeCount(), changes);
    const auto painted = surface(0).content();
    sync(true, true, masks[2].id);
    EXPECT_EQ(surface(0).content(), painted);
    EXPECT_TRUE(surface(0).accessibleDescription().label.contains(masks[0].name));
    masks[0].opacity = 0.5;
    sync(true, true, masks[2].id);
    EXPECT_NE(surface(0).content(), painted);
}

TEST_F(OverlayManagerTest, OneMaskOrNoneIsSelected) {
    masks = {maskAt({0, 0, 100, 100}), maskAt({200, 0, 100, 100})};
    sync(true, true, masks[1].id);
    for (const std::optional<QUuid>& selected :
         {std::optional(masks[0].id), std::optional<QUuid>()}) {
        manager.setSelectedMask(selected);
        for (const ScreenMask& mask : masks)
            EXPECT_EQ(manager.windowFor(mask.id)->contentView()->isSelected, selected == mask.id);
    }
}
