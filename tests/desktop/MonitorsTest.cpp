#include "desktop/VeylaTest.h"

using namespace Qt::Literals::StringLiterals;

namespace {

const MonitorLayout::Monitor left{u"A"_s, {0, 0, 640, 800}};
const MonitorLayout::Monitor right{u"B"_s, {640, 0, 640, 800}};

class Monitors : public VeylaTest {
protected:
    Monitors() { monitors.set({left, right}); }
};

}  // namespace

TEST_F(Monitors, APanelKeepsMasksOffOnItsOwnMonitorOnly) {
    const QUuid onLeft = addMask({200, 100, 200, 100});
    const QUuid onRight = addMask({900, 100, 200, 100}, Qt::blue);
    start();
    // The dock of the right monitor reserves everything from the left edge of the root on.
    neighbour.openDock({0, 750, 640, 50}, NeighbourClient::Edge::bottom);
    const xcb_window_t inner = neighbour.openDock({640, 0, 40, 800}, NeighbourClient::Edge::left);
    const std::tuple<QUuid, QPoint, QRect> drags[] = {{onLeft, {0, 300}, {200, 650, 200, 100}},
                                                      {onLeft, {-300, -20}, {0, 630, 200, 100}},
                                                      {onRight, {-220, 300}, {680, 700, 200, 100}}};
    for (const auto& [mask, delta, rect] : drags) {
        const QPoint from = middleOf(mask);
        input.drag(from, from + delta);
        EXPECT_TRUE(comesTo(mask, rect));
        EXPECT_EQ(frameOf(mask).y, 800 - rect.y() - rect.height());
    }
    // A panel that comes later pushes what is in its way; one that goes gives its place free.
    neighbour.openDock({640, 740, 640, 60}, NeighbourClient::Edge::bottom);
    EXPECT_TRUE(comesTo(onRight, {680, 640, 200, 100}));
    neighbour.destroy(inner);
    EXPECT_TRUE(waitUntil([&] {
        const QPoint from = middleOf(onRight);
        input.drag(from, from - QPoint(300 - (960 - from.x()), 0));
        return rectOf(onRight).x() == 640;
    }));
}

TEST_F(Monitors, AreasThatTheDesktopTellsOfCountForTheirMonitor) {
    const QUuid mask = addMask({700, 690, 200, 100});
    start();
    EXPECT_TRUE(comesTo(mask, {700, 10, 200, 100}));
    neighbour.setNumbers(neighbour.root(), u"_GTK_WORKAREAS_D0"_s, u"CARDINAL"_s,
                         {0, 30, 640, 770, 640, 50, 640, 750});
    neighbour.setNumbers(neighbour.root(), u"_NET_WORKAREA"_s, u"CARDINAL"_s, {0, 30, 1280, 770});
    EXPECT_TRUE(comesTo(mask, {700, 50, 200, 100}));
}

TEST_F(Monitors, AMaskMovesToTheMonitorThatIsLeft) {
    const QUuid resting = addMask({700, 300, 200, 100});
    const QUuid staying = addMask({100, 300, 200, 100}, Qt::blue);
    workspace.masks.append(workspace.masks.first());
    workspace.masks.last().id = QUuid::createUuid();
    workspace.masks.last().isVisible = false;
    const QUuid hidden = workspace.masks.last().id;
    start();
    monitors.set({left});
    EXPECT_TRUE(comesTo(resting, {440, 400, 200, 100}));
    EXPECT_EQ(frameOf(resting), (Rect{440, 300, 200, 100}));
    EXPECT_EQ(frameOf(hidden), (Rect{440, 300, 200, 100}));
    EXPECT_EQ(rectOf(staying), (QRect{100, 400, 200, 100}));
    EXPECT_TRUE(waitUntil([&] { return document().masks.first().frame.x == 440; }));
    // A new primary monitor moves the origin; the masks stay where they are.
    monitors.set({{u"C"_s, {640, 100, 640, 500}}, left});
    EXPECT_TRUE(waitUntil([&] { return frameOf(staying) == Rect{-540, 100, 200, 100}; }));
    EXPECT_EQ(frameOf(resting), (Rect{-200, 100, 200, 100}));
    EXPECT_EQ(rectOf(staying), (QRect{100, 400, 200, 100}));
    EXPECT_EQ(rectOf(resting), (QRect{440, 400, 200, 100}));
    input.drag(middleOf(staying), middleOf(staying) + QPoint(-20, 30));
    EXPECT_TRUE(comesTo(staying, {80, 430, 200, 100}));
    EXPECT_TRUE(isEveryMaskShownOnce() && becomesPainted(staying));
}

TEST_F(Monitors, ADragGoesOnWhenItsMonitorIsUnplugged) {
    const QUuid mask = addMask({700, 300, 200, 100});
    start();
    const QPoint from = middleOf(mask);
    input.movePointer(from);
    input.press();
    input.movePointer(from + QPoint(100, 0));
    ASSERT_TRUE(comesTo(mask, {800, 400, 200, 100}));
    monitors.set({left});
    EXPECT_TRUE(comesTo(mask, {440, 400, 200, 100}));
    // The button is still down; the mask follows from where it is now.
    input.movePointer(from + QPoint(50, 20));
    EXPECT_TRUE(comesTo(mask, {390, 420, 200, 100}));
    input.release();
    input.movePointer(from);
    EXPECT_EQ(frameOf(mask), (Rect{390, 280, 200, 100}));
    EXPECT_EQ(rectOf(mask), (QRect{390, 420, 200, 100}));
}
