#include "desktop/VeylaTest.h"
#include "support/desktop/WindowManager.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class Stacking : public VeylaTest {
protected:
    explicit Stacking(const DesktopSession::Options& options = {}) : VeylaTest(options) {}

    QUuid startWithMask() {
        const QUuid mask = addMask({100, 500, 200, 100});
        start();
        return mask;
    }

    testing::AssertionResult staysAbove(const QUuid& mask, xcb_window_t other) {
        if (!waitUntil([&] { return probe.isAbove(windowOf(mask)->id, other); }))
            return testing::AssertionFailure() << "the mask is below";
        return becomesPainted(mask);
    }

    /// What another program may do to a mask, and what must be left of it.
    void mendsWhatOthersDo(const QUuid& mask, xcb_window_t over) {
        const auto window = [&] { return windowOf(mask)->id; };
        const QRect place = rectOf(mask);
        const Step steps[] = {
            {"lowered", [&] { neighbour.lower(window()); }},
            {"unmapped", [&] { neighbour.unmap(window()); }},
            {"destroyed", [&] { neighbour.destroy(window()); }},
            {"destroyed again", [&] { neighbour.destroy(window()); }},
            {"moved",
             [&] {
                 neighbour.move(window(), {150, 150, 300, 160});
             }},
        };
        for (const auto& [name, attack] : steps) {
            SCOPED_TRACE(name);
            attack();
            EXPECT_TRUE(waitUntil(
                [&] { return isEveryMaskShownOnce() && probe.isAbove(windowOf(mask)->id, over); }));
            EXPECT_TRUE(becomesPainted(mask));
            EXPECT_TRUE(comesTo(mask, place));
        }
        input.drag(middleOf(mask), middleOf(mask) + QPoint(40, 30));
        EXPECT_TRUE(comesTo(mask, place.translated(40, 30)));
    }
};

class StackingWithoutManager : public Stacking {
protected:
    StackingWithoutManager() : Stacking({.windowManager = {}}) {}
};

}  // namespace

TEST_F(Stacking, IsKeptInTheMiddleOfADrag) {
    const QUuid mask = startWithMask();
    const xcb_window_t window =
        neighbour.open({.frame = {50, 150, 400, 300}, .isOverrideRedirect = true});
    ASSERT_TRUE(staysAbove(mask, window));
    const QPoint from = middleOf(mask);
    input.movePointer(from);
    input.press();
    for (int step = 1; step <= 5; ++step) {
        input.movePointer(from + QPoint(20, 10) * step);
        neighbour.raise(window);
        EXPECT_TRUE(comesTo(mask, {100 + 20 * step, 200 + 10 * step, 200, 100}));
        EXPECT_TRUE(staysAbove(mask, window)) << "at step " << step;
    }
    EXPECT_TRUE(waitUntil([&] {
        return frameOf(mask) == Rect{200, 450, 200, 100};
    })) << "the model waits for the button";
    input.release();
}

TEST_F(Stacking, IsAboveEveryKindOfWindow) {
    const QUuid mask = startWithMask();
    struct Row {
        const char* name;
        NeighbourClient::WindowOptions options;
        QString state;
    };
    const QRect over(50, 150, 400, 300);
    for (const auto& [name, options, state] : {
             Row{"override-redirect", {.frame = over, .isOverrideRedirect = true}, {}},
             Row{"managed", {.frame = over}, {}},
             Row{"above", {.frame = over}, u"_NET_WM_STATE_ABOVE"_s},
             Row{"full screen", {.frame = over}, u"_NET_WM_STATE_FULLSCREEN"_s},
             Row{"dock", {.frame = over, .windowType = u"_NET_WM_WINDOW_TYPE_DOCK"_s}, {}},
             Row{"notification",
                 {.frame = over, .windowType = u"_NET_WM_WINDOW_TYPE_NOTIFICATION"_s},
                 {}},
         }) {
        SCOPED_TRACE(name);
        const xcb_window_t window = neighbour.open(options);
        if (!state.isEmpty()) {
            neighbour.requestState(window, state);
            ASSERT_TRUE(waitUntil([&] { return probe.hasState(window, state); }));
        }
        EXPECT_TRUE(staysAbove(mask, window));
        neighbour.requestActivation(window);
        neighbour.raise(window);
        EXPECT_TRUE(staysAbove(mask, window));
    }
}

TEST_F(StackingWithoutManager, IsAboveEveryWindowAndMendsWhatOthersDo) {
    const xcb_window_t earlier = neighbour.open({.frame = {0, 0, 600, 500}});
    const QUuid mask = startWithMask();
    const xcb_window_t later = neighbour.open({.frame = {50, 50, 600, 500}});
    EXPECT_TRUE(staysAbove(mask, later));
    for (const xcb_window_t window : {earlier, later, earlier}) {
        neighbour.raise(window);
        EXPECT_TRUE(staysAbove(mask, window));
    }
    mendsWhatOthersDo(mask, later);
}

TEST_F(Stacking, GoesOverWhateverItIsDraggedOrResizedOnto) {
    const QUuid mask = startWithMask();
    // It is stacked higher, which is nobody's business as long as it lies elsewhere.
    const xcb_window_t away =
        neighbour.open({.frame = {600, 100, 300, 300}, .isOverrideRedirect = true});
    input.drag(middleOf(mask), {700, 250}, 1);
    EXPECT_TRUE(staysAbove(mask, away));
    const xcb_window_t beside =
        neighbour.open({.frame = {850, 100, 300, 300}, .isOverrideRedirect = true});
    input.drag(rectOf(mask).bottomRight() - QPoint(5, 5), {1000, 390});
    EXPECT_TRUE(staysAbove(mask, beside));
}

TEST_F(Stacking, AGestureEndsWithTheWindowThatItBeganIn) {
    const QUuid mask = startWithMask();
    for (const bool isDestroyed : {false, true}) {
        SCOPED_TRACE(isDestroyed);
        input.movePointer(middleOf(mask));
        input.press();
        input.movePointer(middleOf(mask) + QPoint(30, 30));
        const QRect rect = isDestroyed ? QRect(160, 260, 200, 100) : QRect(130, 230, 200, 100);
        ASSERT_TRUE(comesTo(mask, rect));
        const xcb_window_t window = windowOf(mask)->id;
        isDestroyed ? neighbour.destroy(window) : neighbour.unmap(window);
        ASSERT_TRUE(waitUntil([&] { return isEveryMaskShownOnce() && isPainted(mask); }));
        // The release goes elsewhere; from then on the mask must not stick to the pointer.
        input.movePointer({900, 700});
        input.release();
        input.movePointer(rect.center() + QPoint(20, 10));
        EXPECT_EQ(frameOf(mask).x, rect.x());
        EXPECT_EQ(rectOf(mask), rect);
    }
}

TEST_F(Stacking, MendsWhatOthersDoToAMask) {
    const xcb_window_t backdrop = openBackdrop();
    mendsWhatOthersDo(startWithMask(), backdrop);
}

TEST_F(Stacking, OutlastsAWindowThatRaisesItselfForEver) {
    const QUuid mask = startWithMask();
    const xcb_window_t hostile = neighbour.open(
        {.frame = {50, 150, 400, 300}, .isOverrideRedirect = true, .title = u"Hostile"_s});
    const xcb_window_t window = windowOf(mask)->id;
    // As soon as it is covered it raises itself, a hundred times.
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(waitUntil([&] { return probe.isAbove(window, hostile); })) << i;
        neighbour.raise(hostile);
    }
    EXPECT_TRUE(staysAbove(mask, hostile));
    const QByteArray log = process->standardError();
    m_expectedLog = log.toStdString();
    EXPECT_EQ(log.count('\n'), 1) << log.constData();
    EXPECT_TRUE(log.contains("\"Hostile\"")) << log.constData();
}

TEST_F(Stacking, ACompositorThatStartsDuringADragEndsTheDragOnly) {
    const QUuid mask = addMask({100, 500, 200, 100});
    start();
    const QPoint from = middleOf(mask);
    input.movePointer(from);
    input.press();
    // With the guides of a snap on screen.
    input.movePointer(from - QPoint(95, 0));
    EXPECT_TRUE(comesTo(mask, {0, 200, 200, 100}));
    desktop.startCompositor();
    input.release();
    EXPECT_TRUE(waitUntil([&] { return isEveryMaskShownOnce() && isPainted(mask); }));
    const QPoint again = middleOf(mask);
    input.drag(again, again + QPoint(300, 0));
    EXPECT_TRUE(comesTo(mask, {300, 200, 200, 100}));
}

TEST_F(Stacking, SurvivesANewManagerAndCompositorsThatComeAndGo) {
    const xcb_window_t backdrop = openBackdrop();
    const QUuid mask = addMask({100, 500, 200, 100});
    const QUuid passing = addMask({500, 500, 200, 100}, Qt::blue);
    workspace.masks.last().isClickThrough = true;
    workspace.masks.append(workspace.masks.first());
    workspace.masks.last().id = QUuid::createUuid();
    workspace.masks.last().isVisible = false;
    start();

    std::unique_ptr<WindowManager> second;
    const QStringList replacing{u"openbox"_s, u"--replace"_s};
    const Step steps[] = {
        {"compositor started", [&] { desktop.startCompositor(); }},
        {"manager replaced under a compositor",
         [&] { second = std::make_unique<WindowManager>(desktop.environment(), replacing); }},
        {"compositor stopped", [&] { desktop.stopCompositor(); }},
        {"manager gone", [&] { second.reset(); }},
        {"manager started", [&] { desktop.changeWindowManager({u"openbox"_s}); }},
    };
    for (const auto& [name, change] : steps) {
        SCOPED_TRACE(name);
        change();
        const xcb_window_t intruder =
            neighbour.open({.frame = {300, 150, 400, 300}, .color = Qt::green});
        EXPECT_TRUE(waitUntil([&] {
            return isEveryMaskShownOnce() && probe.isAbove(windowOf(mask)->id, backdrop) &&
                   probe.isAbove(windowOf(mask)->id, intruder) && isPainted(mask) &&
                   isPainted(passing);
        }));
        EXPECT_TRUE(probe.isClickThrough(windowOf(passing)->id));
        EXPECT_FALSE(probe.isClickThrough(windowOf(mask)->id));
        neighbour.destroy(intruder);
    }
}
