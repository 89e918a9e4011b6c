#include "Services/OverlayWindow.h"
#include "support/HeadlessHarness.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

class OverlayWindowTest : public testing::Test, protected OverlayWindowDelegate {
protected:
    OverlayWindowTest() {
        harness.desktop().screens.setScreens(
            {{u"A"_s, {0, 0, 1000, 700}, {0, 0, 1000, 700}, 1},
             {u"B"_s, {1000, -100, 500, 700}, {1000, -100, 500, 700}, 1}});
        // The window followed its screen's top-left corner.
        window.setFrame({300, 300, 200, 100});
        moves = 0;
        window.onMaskSelected = [this] { ++selections; };
        window.orderFront();
    }

    void windowDidMove(OverlayWindow&) override { ++moves; }
    void windowDidResize(OverlayWindow&) override { ++resizes; }

    void dragFrom(Point inWindow, Point by) {
        const Rect frame = window.frame();
        const Point start{frame.x + inWindow.x, frame.y + inWindow.y};
        mouse().moveMouse(start);
        mouse().pressMouse();
        mouse().moveMouse({start.x + by.x, start.y + by.y});
    }

    HeadlessOverlaySurfaces& mouse() { return harness.desktop().overlaySurfaces; }
    HeadlessSurface& surface() { return *mouse().surfaceOf(id); }
    // The guides on screen, as the guide window shows them.
    QList<GuideLine> shownGuides() {
        for (const HeadlessSurface* each : mouse().shownSurfaces())
            if (const auto* view = dynamic_cast<const GuideView*>(each->content().get()))
                return view->guides();
        return {};
    }

    HeadlessHarness harness;
    QUuid id = QUuid::createUuid();
    int selections = 0, moves = 0, resizes = 0;
    OverlayWindow window{id, {300, 300, 200, 100}, harness.surfaces(), harness.screens(), *this};
};

TEST_F(OverlayWindowTest, HitsRegionsAndShowsTheirCursors) {
    using enum ResizeRegion;
    const struct {
        Point position;
        std::optional<ResizeRegion> region;
        CursorShape cursor;
    } cases[] = {
        {{5, 50}, left, CursorShape::resizeLeftRight},
        {{10, 50}, left, CursorShape::resizeLeftRight},
        {{10.5, 50}, std::nullopt, CursorShape::openHand},
        {{190, 50}, right, CursorShape::resizeLeftRight},
        {{100, 10}, bottom, CursorShape::resizeUpDown},
        {{100, 90}, top, CursorShape::resizeUpDown},
        {{25, 95}, topLeft, CursorShape::crosshair},
        {{30, 70}, topLeft, CursorShape::crosshair},
        {{31, 95}, top, CursorShape::resizeUpDown},
        {{170, 70}, topRight, CursorShape::crosshair},
        {{30, 30}, bottomLeft, CursorShape::crosshair},
        {{199, 1}, bottomRight, CursorShape::crosshair},
        {{100, 50}, std::nullopt, CursorShape::openHand},
    };
    for (const auto& [position, region, cursor] : cases) {
        EXPECT_EQ(window.resizeRegion(position), region) << position.x << ", " << position.y;
        mouse().moveMouse({300 + position.x, 300 + position.y});
        EXPECT_EQ(surface().cursor(), cursor) << position.x << ", " << position.y;
    }
    mouse().moveMouse({10, 10});
    EXPECT_EQ(surface().cursor(), CursorShape::arrow);

    window.setFrame({300, 300, 60, 40});
    EXPECT_EQ(window.resizeRegion({30, 20}), topLeft) << "on the smallest mask top and left win";
    EXPECT_EQ(window.resizeRegion({31, 9}), bottomRight);
}

TEST_F(OverlayWindowTest, SnapsToTheEdgesAndCentreLinesOfItsScreen) {
    using Guides = QList<GuideLine>;
    const auto v = GuideLine::vertical;
    const auto h = GuideLine::horizontal;
    const double eight = 8;
    const struct {
        const char* what;
        Rect proposed;
        Point snapped;
        Guides guides;
    } cases[] = {
        {"left at 8", {eight, 200, 200, 100}, {0, 200}, {v(0)}},
        {"left at 8 from outside", {-eight, 200, 200, 100}, {0, 200}, {v(0)}},
        {"left at 8.01", {8.01, 200, 200, 100}, {8.01, 200}, {}},
        {"right", {793, 200, 200, 100}, {800, 200}, {v(1000)}},
        {"horizontal centre", {405, 200, 200, 100}, {400, 200}, {v(500)}},
        {"bottom", {200, 7, 200, 100}, {200, 0}, {h(0)}},
        {"top", {200, 608, 200, 100}, {200, 600}, {h(700)}},
        {"vertical centre", {200, 293, 200, 100}, {200, 300}, {h(350)}},
        {"both, vertical first", {3, 4, 200, 100}, {0, 0}, {v(0), h(0)}},
        {"as wide as the screen: left wins", {6, 200, 1000, 100}, {0, 200}, {v(0)}},
        {"second screen", {1003, 495, 200, 100}, {1000, 500}, {v(1000), h(600)}},
    };
    for (const auto& each : cases) {
        const SnappedFrame snapped = window.snappedFrame(each.proposed);
        EXPECT_EQ(snapped.frame,
                  (Rect{each.snapped.x, each.snapped.y, each.proposed.width, each.proposed.height}))
            << each.what;
        EXPECT_EQ(snapped.guides, each.guides) << each.what;
    }
    harness.desktop().screens.setScreens({});
    const SnappedFrame alone = window.snappedFrame({5, 6, 70, 80});
    EXPECT_EQ(alone.frame, (Rect{5, 6, 70, 80}));
    EXPECT_EQ(alone.guides, (Guides{v(5), h(6)}));
}

TEST_F(OverlayWindowTest, MovesWithThePointerAndShowsGuides) {
    dragFrom({100, 50}, {50, 60});
    EXPECT_EQ(window.frame(), (Rect{350, 360, 200, 100}));
    EXPECT_EQ(selections, 1);
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(resizes, 0);
    EXPECT_TRUE(shownGuides().isEmpty());

    mouse().moveMouse({105, 55});
    EXPECT_EQ(window.frame(), (Rect{0, 0, 200, 100})) << "snapped on both axes";
    EXPECT_EQ(shownGuides(), (QList<GuideLine>{GuideLine::vertical(0), GuideLine::horizontal(0)}));
    mouse().moveMouse({1205, 665});
    EXPECT_EQ(window.frame(), (Rect{1105, 615, 200, 100})) << "not clamped by the window itself";
    EXPECT_TRUE(shownGuides().isEmpty());
    mouse().moveMouse({1105, 405});
    EXPECT_EQ(shownGuides(), (QList<GuideLine>{GuideLine::vertical(0)})) << "on its own screen";
    mouse().moveMouse({1103, -47});
    EXPECT_EQ(window.frame(), (Rect{1000, -100, 200, 100}));
    EXPECT_EQ(shownGuides(), (QList<GuideLine>{GuideLine::vertical(0), GuideLine::horizontal(0)}));
    mouse().releaseMouse();
    EXPECT_TRUE(shownGuides().isEmpty());
    EXPECT_EQ(mouse().allSurfaces().size(), 1U) << "the guide window lives for one move";
    mouse().moveMouse({10, 10});
    EXPECT_EQ(window.frame().x, 1000) << "a released mask stays";
}

TEST_F(OverlayWindowTest, ResizesTheGrabbedEdgesDownToTheMinimum) {
    const Rect start{300, 300, 200, 100};
    const struct {
        const char* what;
        Point grab, by;
        Rect expected;
    } cases[] = {
        {"left", {5, 50}, {-20, 99}, {280, 300, 220, 100}},
        {"left too far", {5, 50}, {300, 0}, {440, 300, 60, 100}},
        {"right", {195, 50}, {20, 99}, {300, 300, 220, 100}},
        {"right too far", {195, 50}, {-900, 0}, {300, 300, 60, 100}},
        {"bottom", {100, 5}, {99, -20}, {300, 280, 200, 120}},
        {"bottom too far", {100, 5}, {0, 400}, {300, 360, 200, 40}},
        {"top", {100, 95}, {99, 20}, {300, 300, 200, 120}},
        {"top too far", {100, 95}, {0, -400}, {300, 300, 200, 40}},
        {"top left", {5, 95}, {-10, 10}, {290, 300, 210, 110}},
        {"top right", {195, 95}, {10, 10}, {300, 300, 210, 110}},
        {"bottom left", {5, 5}, {500, 500}, {440, 360, 60, 40}},
        {"bottom right", {195, 5}, {10, -10}, {300, 290, 210, 110}},
        {"past the screen, unsnapped", {195, 50}, {503, 0}, {300, 300, 703, 100}},
    };
    int expectedSelections = 0;
    for (const auto& each : cases) {
        window.setFrame(start);
        dragFrom(each.grab, {1, 1});
        const Point pointer = harness.screens().pointerLocation();
        mouse().moveMouse({pointer.x - 1 + each.by.x, pointer.y - 1 + each.by.y});
        EXPECT_EQ(window.frame(), each.expected) << each.what;
        EXPECT_TRUE(shownGuides().isEmpty()) << each.what;
        mouse().releaseMouse();
        EXPECT_EQ(selections, ++expectedSelections) << each.what;
    }
}

TEST_F(OverlayWindowTest, GesturesEndWithTheirWindow) {
    dragFrom({100, 50}, {-295, 0});
    EXPECT_FALSE(shownGuides().isEmpty());
    window.orderOut();
    EXPECT_TRUE(shownGuides().isEmpty());
    const Rect frame = window.frame();
    mouse().moveMouse({700, 500});
    EXPECT_EQ(window.frame(), frame);

    window.orderFront();
    window.setIgnoresMouseEvents(true);
    dragFrom({100, 50}, {50, 50});
    EXPECT_EQ(window.frame(), frame) << "a click-through window gets no presses";
}
