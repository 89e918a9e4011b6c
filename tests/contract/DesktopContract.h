#pragma once

#include "Reactive/Lifetime.h"
#include "contract/DesktopHarness.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

using namespace Qt::Literals::StringLiterals;

/// What every desktop back end must do. A back end instantiates the suite with its harness, and
/// includes this in one file.
class DesktopContract : public testing::TestWithParam<HarnessMaker<DesktopHarness>> {
protected:
    /// Writes down what a surface tells.
    struct Recorder final : SurfaceDelegate {
        void surfaceDidMove() override { log << u"moved"_s; }
        void surfaceDidResize() override { log << u"resized"_s; }
        void mouseDown(Point inSurface, Point global) override {
            log << u"down"_s;
            pressedAt = inSurface;
            lastGlobal = global;
        }
        void mouseDragged(Point global) override {
            if (log.isEmpty() || log.last() != u"dragged"_s) log << u"dragged"_s;
            lastGlobal = global;
        }
        void mouseUp() override { log << u"up"_s; }
        void mouseMoved(Point inSurface) override { hoveredAt = inSurface; }
        void mouseExited() override { log << u"exited"_s; }

        QStringList log;
        Point pressedAt, lastGlobal, hoveredAt;
    };

    struct Mask {
        QUuid id = QUuid::createUuid();
        std::unique_ptr<Recorder> recorder = std::make_unique<Recorder>();
        std::unique_ptr<OverlaySurface> surface;
    };

    Mask makeMask(const Rect& frame) {
        Mask mask;
        mask.surface =
            harness.surfaces().createSurface({u"mask"_s, mask.id, frame}, mask.recorder.get());
        return mask;
    }

    bool stackBecomes(const std::vector<QUuid>& expected) {
        return harness.waitUntil([&] { return harness.stack() == expected; });
    }

    const std::unique_ptr<DesktopHarness> owner = GetParam()();
    DesktopHarness& harness = *owner;
};

TEST_P(DesktopContract, TasksRunInOrderAndTimersCanBeCancelled) {
    MainLoop& loop = harness.mainLoop();
    using namespace std::chrono_literals;
    QStringList log;
    Subscription selfCancelling;
    const Subscription late = loop.after(20ms, [&] { log << u"late"_s; });
    const Subscription early = loop.after(5ms, [&] { log << u"early"_s; });
    Subscription cancelled = loop.after(10ms, [&] { log << u"cancelled"_s; });
    selfCancelling = loop.after(1ms, [&] {
        selfCancelling.reset();
        log << u"self"_s;
    });
    loop.post([&] {
        log << u"first"_s;
        loop.post([&] { log << u"nested"_s; });
    });
    loop.post([&] { log << u"second"_s; });
    cancelled.reset();
    EXPECT_TRUE(log.isEmpty()) << "nothing may run in place";

    EXPECT_TRUE(harness.waitUntil([&] { return log.contains(u"late"_s); }));
    EXPECT_EQ(log.join(QLatin1Char(' ')).toStdString(), "first second nested self early late");
}

TEST_P(DesktopContract, ScreensAreInGlobalSpaceAndTellOfChanges) {
    Screens& screens = harness.screens();
    ASSERT_EQ(screens.screens().size(), 1);
    EXPECT_EQ(screens.mainScreen()->frame, (Rect{0, 0, 1280, 800}));

    int changes = 0;
    const Subscription subscription = screens.onScreensChanged([&] { ++changes; });
    harness.setScreens({{0, 0, 640, 800}, {640, 100, 640, 600}});
    ASSERT_TRUE(harness.waitUntil([&] { return screens.screens().size() == 2; }));
    EXPECT_GE(changes, 1);
    EXPECT_EQ(screens.screens()[0].frame, (Rect{0, 0, 640, 800}));
    EXPECT_EQ(screens.screens()[1].frame, (Rect{640, 100, 640, 600}));
    EXPECT_EQ(screens.screens()[1].name.toStdString(), "B");

    harness.movePointer({700, 650});
    EXPECT_EQ(screens.pointerLocation(), (Point{700, 650}));
}

TEST_P(DesktopContract, SurfacesShowInTheOrderInWhichTheyWereRaised) {
    auto a = makeMask({100, 100, 200, 100});
    auto b = makeMask({150, 120, 200, 100});
    auto c = makeMask({200, 140, 200, 100});
    harness.settle();
    EXPECT_TRUE(harness.stack().empty()) << "new surfaces are hidden";

    a.surface->orderFront();
    b.surface->orderFront();
    c.surface->orderFront();
    EXPECT_TRUE(stackBecomes({a.id, b.id, c.id}));
    a.surface->orderFront();
    EXPECT_TRUE(stackBecomes({b.id, c.id, a.id}));
    {
        const SurfaceBatch outer(harness.surfaces());
        c.surface->orderFront();
        const SurfaceBatch inner(harness.surfaces());
        b.surface->orderOut();
        a.surface->orderFront();
    }
    EXPECT_TRUE(stackBecomes({c.id, a.id}));
    b.surface->orderFront();
    a.surface.reset();
    EXPECT_TRUE(stackBecomes({c.id, b.id}));
}

TEST_P(DesktopContract, FramesAreKeptExactlyAndChangesAreToldInPlace) {
    auto mask = makeMask({100, 100, 200, 100});
    mask.surface->orderFront();

    const Rect odd{100.25, 99.6, 200.5, 100.125};
    mask.surface->setFrame(odd);
    EXPECT_EQ(mask.surface->frame(), odd);
    EXPECT_EQ(mask.recorder->log, QStringList({u"moved"_s, u"resized"_s}));
    mask.surface->setFrame(odd);
    mask.surface->setFinalFrame({50, 60, odd.width, odd.height});
    mask.surface->setFinalFrame({50, 60, 300, 200});
    harness.settle();
    EXPECT_EQ(mask.recorder->log,
              QStringList({u"moved"_s, u"resized"_s, u"moved"_s, u"resized"_s}));
    EXPECT_EQ(mask.surface->frame(), (Rect{50, 60, 300, 200}));
}

TEST_P(DesktopContract, TheMousePressesDragsAndReleasesTheTopmostSurface) {
    auto below = makeMask({100, 100, 200, 100});
    auto above = makeMask({150, 120, 200, 100});
    below.surface->orderFront();
    above.surface->orderFront();
    harness.settle();

    harness.movePointer({160, 130});
    ASSERT_TRUE(harness.waitUntil([&] { return above.recorder->hoveredAt == Point{10, 10}; }));
    harness.pressLeft();
    harness.movePointer({260, 330});
    harness.movePointer({600, 500});
    ASSERT_TRUE(harness.waitUntil([&] { return above.recorder->lastGlobal == Point{600, 500}; }));
    harness.releaseLeft();
    ASSERT_TRUE(harness.waitUntil([&] { return above.recorder->log.contains(u"up"_s); }));
    EXPECT_EQ(above.recorder->pressedAt, (Point{10, 10}));
    EXPECT_EQ(above.recorder->log.mid(0, 3).join(QLatin1Char(' ')).toStdString(),
              "down dragged up");
    EXPECT_TRUE(below.recorder->log.isEmpty());

    // Passing through reaches the surface below; leaving is told.
    above.surface->setIgnoresMouseEvents(true);
    harness.settle();
    harness.movePointer({160, 130});
    ASSERT_TRUE(harness.waitUntil([&] { return below.recorder->hoveredAt == Point{60, 30}; }));
    harness.movePointer({900, 700});
    EXPECT_TRUE(harness.waitUntil([&] { return below.recorder->log == QStringList(u"exited"_s); }));
}

TEST_P(DesktopContract, HidingASurfaceEndsItsGestureOnce) {
    auto mask = makeMask({100, 100, 200, 100});
    mask.surface->orderFront();
    harness.settle();
    harness.movePointer({200, 150});
    harness.pressLeft();
    ASSERT_TRUE(harness.waitUntil([&] { return mask.recorder->log.contains(u"down"_s); }));
    mask.surface->orderOut();
    EXPECT_EQ(mask.recorder->log.count(u"up"_s), 1);
    harness.movePointer({300, 300});
    harness.releaseLeft();
    harness.settle();
    EXPECT_EQ(mask.recorder->log.count(u"up"_s), 1);
}

TEST_P(DesktopContract, SurfacesStayOnTheirScreenWhenScreensMove) {
    harness.setScreens({{0, 0, 640, 800}, {640, 0, 640, 800}});
    ASSERT_TRUE(harness.waitUntil([&] { return harness.screens().screens().size() == 2; }));
    auto mask = makeMask({700, 500, 100, 100});
    mask.surface->orderFront();
    harness.settle();

    // Screen B moves down by 100: the mask keeps its distance from B's top-left corner.
    harness.setScreens({{0, 0, 640, 700}, {640, 100, 640, 700}});
    ASSERT_TRUE(harness.waitUntil([&] {
        return harness.screens().screens().value(1).frame == Rect{640, -100, 640, 700};
    }));
    EXPECT_EQ(mask.surface->frame(), (Rect{700, 300, 100, 100}));
}
