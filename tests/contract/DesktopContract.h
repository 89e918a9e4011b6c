#pragma once

#include "Reactive/Lifetime.h"
#include "contract/DesktopHarness.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

/// What every desktop back end must do. A back end instantiates the suite with its harness.
template <typename Harness>
class DesktopContract : public testing::Test {
protected:
    /// Writes down what a surface tells.
    struct Recorder final : SurfaceDelegate {
        void surfaceDidMove() override { log << QStringLiteral("moved"); }
        void surfaceDidResize() override { log << QStringLiteral("resized"); }
        void mouseDown(Point inSurface, Point global) override {
            log << QStringLiteral("down");
            pressedAt = inSurface;
            lastGlobal = global;
        }
        void mouseDragged(Point global) override {
            if (log.isEmpty() || log.last() != QStringLiteral("dragged"))
                log << QStringLiteral("dragged");
            lastGlobal = global;
        }
        void mouseUp() override { log << QStringLiteral("up"); }
        void mouseMoved(Point inSurface) override { hoveredAt = inSurface; }
        void mouseExited() override { log << QStringLiteral("exited"); }

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
        mask.surface = harness.surfaces().createSurface({QStringLiteral("mask"), mask.id, frame},
                                                        mask.recorder.get());
        return mask;
    }

    bool stackBecomes(const std::vector<QUuid>& expected) {
        return harness.waitUntil([&] { return harness.stack() == expected; });
    }

    Harness harness;
};

TYPED_TEST_SUITE_P(DesktopContract);

TYPED_TEST_P(DesktopContract, TasksRunInOrderAndTimersCanBeCancelled) {
    MainLoop& loop = this->harness.mainLoop();
    using namespace std::chrono_literals;
    QStringList log;
    Subscription selfCancelling;
    const Subscription late = loop.after(20ms, [&] { log << QStringLiteral("late"); });
    const Subscription early = loop.after(5ms, [&] { log << QStringLiteral("early"); });
    Subscription cancelled = loop.after(10ms, [&] { log << QStringLiteral("cancelled"); });
    selfCancelling = loop.after(1ms, [&] {
        selfCancelling.reset();
        log << QStringLiteral("self");
    });
    loop.post([&] {
        log << QStringLiteral("first");
        loop.post([&] { log << QStringLiteral("nested"); });
    });
    loop.post([&] { log << QStringLiteral("second"); });
    cancelled.reset();
    EXPECT_TRUE(log.isEmpty()) << "nothing may run in place";

    EXPECT_TRUE(this->harness.waitUntil([&] { return log.contains(QStringLiteral("late")); }));
    EXPECT_EQ(log.join(QLatin1Char(' ')).toStdString(), "first second nested self early late");
}

TYPED_TEST_P(DesktopContract, ScreensAreInGlobalSpaceAndTellOfChanges) {
    Screens& screens = this->harness.screens();
    ASSERT_EQ(screens.screens().size(), 1);
    EXPECT_EQ(screens.mainScreen()->frame, (Rect{0, 0, 1280, 800}));

    int changes = 0;
    const Subscription subscription = screens.onScreensChanged([&] { ++changes; });
    this->harness.setScreens({{0, 0, 640, 800}, {640, 100, 640, 600}});
    ASSERT_TRUE(this->harness.waitUntil([&] { return screens.screens().size() == 2; }));
    EXPECT_GE(changes, 1);
    EXPECT_EQ(screens.screens()[0].frame, (Rect{0, 0, 640, 800}));
    EXPECT_EQ(screens.screens()[1].frame, (Rect{640, 100, 640, 600}));
    EXPECT_EQ(screens.screens()[1].name.toStdString(), "B");

    this->harness.movePointer({700, 650});
    EXPECT_EQ(screens.pointerLocation(), (Point{700, 650}));
}

TYPED_TEST_P(DesktopContract, SurfacesShowInTheOrderInWhichTheyWereRaised) {
    auto a = this->makeMask({100, 100, 200, 100});
    auto b = this->makeMask({150, 120, 200, 100});
    auto c = this->makeMask({200, 140, 200, 100});
    this->harness.settle();
    EXPECT_TRUE(this->harness.stack().empty()) << "new surfaces are hidden";

    a.surface->orderFront();
    b.surface->orderFront();
    c.surface->orderFront();
    EXPECT_TRUE(this->stackBecomes({a.id, b.id, c.id}));
    a.surface->orderFront();
    EXPECT_TRUE(this->stackBecomes({b.id, c.id, a.id}));
    {
        const SurfaceBatch outer(this->harness.surfaces());
        c.surface->orderFront();
        const SurfaceBatch inner(this->harness.surfaces());
        b.surface->orderOut();
        a.surface->orderFront();
    }
    EXPECT_TRUE(this->stackBecomes({c.id, a.id}));
    b.surface->orderFront();
    a.surface.reset();
    EXPECT_TRUE(this->stackBecomes({c.id, b.id}));
}

TYPED_TEST_P(DesktopContract, FramesAreKeptExactlyAndChangesAreToldInPlace) {
    auto mask = this->makeMask({100, 100, 200, 100});
    mask.surface->orderFront();

    const Rect odd{100.25, 99.6, 200.5, 100.125};
    mask.surface->setFrame(odd);
    EXPECT_EQ(mask.surface->frame(), odd);
    EXPECT_EQ(mask.recorder->log,
              QStringList({QStringLiteral("moved"), QStringLiteral("resized")}));
    mask.surface->setFrame(odd);
    mask.surface->setFinalFrame({50, 60, odd.width, odd.height});
    mask.surface->setFinalFrame({50, 60, 300, 200});
    this->harness.settle();
    EXPECT_EQ(mask.recorder->log,
              QStringList({QStringLiteral("moved"), QStringLiteral("resized"),
                           QStringLiteral("moved"), QStringLiteral("resized")}));
    EXPECT_EQ(mask.surface->frame(), (Rect{50, 60, 300, 200}));
}

TYPED_TEST_P(DesktopContract, TheMousePressesDragsAndReleasesTheTopmostSurface) {
    auto below = this->makeMask({100, 100, 200, 100});
    auto above = this->makeMask({150, 120, 200, 100});
    below.surface->orderFront();
    above.surface->orderFront();
    this->harness.settle();

    this->harness.movePointer({160, 130});
    ASSERT_TRUE(this->harness.waitUntil([&] {
        return above.recorder->hoveredAt == Point{10, 10};
    }));
    this->harness.pressLeft();
    this->harness.movePointer({260, 330});
    this->harness.movePointer({600, 500});
    ASSERT_TRUE(this->harness.waitUntil([&] {
        return above.recorder->lastGlobal == Point{600, 500};
    }));
    this->harness.releaseLeft();
    ASSERT_TRUE(this->harness.waitUntil(
        [&] { return above.recorder->log.contains(QStringLiteral("up")); }));
    EXPECT_EQ(above.recorder->pressedAt, (Point{10, 10}));
    EXPECT_EQ(above.recorder->log.mid(0, 3).join(QLatin1Char(' ')).toStdString(),
              "down dragged up");
    EXPECT_TRUE(below.recorder->log.isEmpty());

    // Passing through reaches the surface below; leaving is told.
    above.surface->setIgnoresMouseEvents(true);
    this->harness.settle();
    this->harness.movePointer({160, 130});
    ASSERT_TRUE(this->harness.waitUntil([&] {
        return below.recorder->hoveredAt == Point{60, 30};
    }));
    this->harness.movePointer({900, 700});
    EXPECT_TRUE(this->harness.waitUntil(
        [&] { return below.recorder->log == QStringList(QStringLiteral("exited")); }));
}

TYPED_TEST_P(DesktopContract, HidingASurfaceEndsItsGestureOnce) {
    auto mask = this->makeMask({100, 100, 200, 100});
    mask.surface->orderFront();
    this->harness.settle();
    this->harness.movePointer({200, 150});
    this->harness.pressLeft();
    ASSERT_TRUE(this->harness.waitUntil(
        [&] { return mask.recorder->log.contains(QStringLiteral("down")); }));
    mask.surface->orderOut();
    EXPECT_EQ(mask.recorder->log.count(QStringLiteral("up")), 1);
    this->harness.movePointer({300, 300});
    this->harness.releaseLeft();
    this->harness.settle();
    EXPECT_EQ(mask.recorder->log.count(QStringLiteral("up")), 1);
}

TYPED_TEST_P(DesktopContract, SurfacesStayOnTheirScreenWhenScreensMove) {
    this->harness.setScreens({{0, 0, 640, 800}, {640, 0, 640, 800}});
    ASSERT_TRUE(
        this->harness.waitUntil([&] { return this->harness.screens().screens().size() == 2; }));
    auto mask = this->makeMask({700, 500, 100, 100});
    mask.surface->orderFront();
    this->harness.settle();

    // Screen B moves down by 100: the mask keeps its distance from B's top-left corner.
    this->harness.setScreens({{0, 0, 640, 700}, {640, 100, 640, 700}});
    ASSERT_TRUE(this->harness.waitUntil([&] {
        return this->harness.screens().screens().value(1).frame == Rect{640, -100, 640, 700};
    }));
    EXPECT_EQ(mask.surface->frame(), (Rect{700, 300, 100, 100}));
}

REGISTER_TYPED_TEST_SUITE_P(DesktopContract, TasksRunInOrderAndTimersCanBeCancelled,
                            ScreensAreInGlobalSpaceAndTellOfChanges,
                            SurfacesShowInTheOrderInWhichTheyWereRaised,
                            FramesAreKeptExactlyAndChangesAreToldInPlace,
                            TheMousePressesDragsAndReleasesTheTopmostSurface,
                            HidingASurfaceEndsItsGestureOnce,
                            SurfacesStayOnTheirScreenWhenScreensMove);
