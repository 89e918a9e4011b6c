#include "Platform/X11/DesktopSpace.h"
#include "Platform/X11/PanelStruts.h"
#include "desktop/VeylaTest.h"

using namespace Qt::Literals::StringLiterals;

namespace {

NativeScreen screen(const QString& name, const QRect& frame, double scaleFactor) {
    return {name, frame, frame, scaleFactor};
}

}  // namespace

TEST(DesktopSpace, ConvertsPixelsAndPointsIntoEachOther) {
    const NativeScreen plain = screen(u"A"_s, {0, 0, 1920, 1080}, 1);
    const NativeScreen larger = screen(u"A"_s, {0, 0, 1920, 1080}, 1.5);
    const NativeScreen twice = screen(u"A"_s, {0, 0, 1920, 1080}, 2);
    const NativeScreen dense = screen(u"B"_s, {1920, 200, 2560, 1600}, 2);
    const struct {
        const char* name;
        QList<NativeScreen> screens;
        QRect native;
        Rect global;
    } cases[] = {
        {"scale 1", {plain}, {10, 20, 200, 100}, {10, 960, 200, 100}},
        {"scale 1.5", {larger}, {30, 60, 300, 150}, {20, 580, 200, 100}},
        {"scale 2", {twice}, {10, 20, 200, 100}, {5, 480, 100, 50}},
        {"beside the first", {plain, dense}, {2020, 300, 200, 100}, {1970, 780, 100, 50}},
        {"left of the first", {dense, plain}, {0, 0, 1920, 1080}, {-1920, -80, 1920, 1080}},
        {"the first inside the root", {dense, plain}, {1920, 1780, 20, 20}, {0, 0, 10, 10}},
        {"no screen", {}, {100, 500, 20, 10}, {100, 90, 20, 10}},
    };
    for (const auto& [name, screens, native, global] : cases) {
        SCOPED_TRACE(name);
        const DesktopSpace space(screens, QSize(800, 600));
        EXPECT_EQ(space.toGlobal(native), global);
        EXPECT_EQ(space.toNative(global), native);
        const Point corner = space.toGlobal(native.topLeft());
        EXPECT_EQ(corner, (Point{global.minX(), global.maxY()}));
    }
}

TEST(DesktopSpace, RoundsEdgesSoThatNeighboursStillTouch) {
    for (const double factor : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        const DesktopSpace space({screen(u"A"_s, {0, 0, 1920, 1080}, factor)}, {1920, 1080});
        for (double x = 3.3; x < 60; x += 7.7) {
            const QRect first = space.toNative({x, 20.4, 31.7, 41.1});
            const QRect second = space.toNative({x + 31.7, 20.4 + 41.1, 10, 50});
            EXPECT_EQ(first.right() + 1, second.left()) << factor << " " << x;
            EXPECT_EQ(second.bottom() + 1, first.top()) << factor << " " << x;
            EXPECT_EQ(space.toNative(space.toGlobal(first)), first);
        }
    }
    const DesktopSpace space({screen(u"A"_s, {0, 0, 100, 100}, 1)}, {100, 100});
    EXPECT_EQ(space.toNative({5, 5, 0, 0}).size(), QSize(1, 1));
}

TEST(PanelStruts, TakeTheirShareOfTheirOwnScreenOnly) {
    const QRect left(0, 0, 1920, 1080);
    const QRect right(1920, 200, 1280, 800);
    const QSize root(3200, 1080);
    struct Row {
        const char* name;
        QList<PanelStrut> panels;
        QRect leftRest, rightRest;
    };
    const PanelStrut top{.top = 30, .topStart = 0, .topEnd = 1919, .window = {0, 0, 1920, 30}};
    // Its strut counts from the bottom edge of the root, 80 below its screen.
    const PanelStrut bottom{
        .bottom = 120, .bottomStart = 1920, .bottomEnd = 3199, .window = {1920, 960, 1280, 40}};
    const PanelStrut inner{
        .left = 1980, .leftStart = 200, .leftEnd = 999, .window = {1920, 200, 60, 800}};
    const PanelStrut outer{
        .right = 50, .rightStart = 200, .rightEnd = 999, .window = {3150, 200, 50, 800}};
    const PanelStrut everywhere{
        .top = 30, .topStart = 0, .topEnd = 3200, .window = {0, 0, 1920, 30}};
    const PanelStrut elsewhere{.top = 30, .topStart = 2000, .topEnd = 2100, .window = {0, 0, 9, 9}};
    const PanelStrut whole{
        .top = 1080, .topStart = 0, .topEnd = 1919, .window = {0, 0, 1920, 1080}};
    for (const auto& [name, panels, leftRest, rightRest] : {
             Row{"none", {}, left, right},
             Row{"top of the first", {top}, {0, 30, 1920, 1050}, right},
             Row{"over the whole width", {everywhere}, {0, 30, 1920, 1050}, right},
             Row{"bottom of the second", {bottom}, left, {1920, 200, 1280, 760}},
             Row{"between the screens", {inner}, left, {1980, 200, 1220, 800}},
             Row{"several",
                 {top, bottom, inner, outer},
                 {0, 30, 1920, 1050},
                 {1980, 200, 1170, 760}},
             Row{"two at one edge", {top, top}, {0, 30, 1920, 1050}, right},
             Row{"beside the screen", {elsewhere}, left, right},
             Row{"nothing would be left", {whole}, left, right},
         }) {
        SCOPED_TRACE(name);
        EXPECT_EQ(visibleFrameBesidePanels(left, panels, root), leftRest);
        EXPECT_EQ(visibleFrameBesidePanels(right, panels, root), rightRest);
    }
}
