#include "desktop/LeakTest.h"
#include "support/desktop/Wait.h"

#include <QCoreApplication>
#include <csignal>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The program itself.
class Leaks : public LeakTest {
protected:
    using LeakTest::LeakTest;

    void SetUp() override {
        LeakTest::SetUp();
        if (IsSkipped()) return;
        addPreset(u"other"_s, {around({700, 500}, -40, 30)});
        addPreset(u"three"_s, {around({600, 400}), around({500, 300}, 80), around({500, 500})});
        QList<Rect> twenty;
        for (int i = 0; i < 20; ++i)
            twenty.append(around({800, 600}, 6 * i - 60, 4 * i - 40));
        addPreset(u"twenty"_s, twenty);
        addPreset(u"whole"_s, {around({2.0 * center().x(), 2.0 * center().y()})});
    }

    /// For a second, does something whenever the program has mended it. It has to go on doing so,
    /// but at a rate that any desktop bears.
    static void contest(const std::function<bool()>& isMended,
                        const std::function<void()>& attack) {
        int count = 0;
        static_cast<void>(waitUntil(
            [&] {
                if (isMended()) {
                    attack();
                    ++count;
                }
                return false;
            },
            std::chrono::seconds(1)));
        EXPECT_GT(count, 1);
        EXPECT_LE(count, 100);
    }

    void runXrandr(const QString& arguments) {
        ChildProcess xrandr(u"xrandr"_s, arguments.split(u' '), desktop.environment());
        EXPECT_EQ(xrandr.waitForExit(defaultWait), 0) << xrandr.standardError().constData();
    }

    static LeakScenario own(const char* name, std::function<void(int)> act,
                            const QString& preset = u"one"_s) {
        return {name, Kind::ownOperation, std::move(act), preset};
    }
    /// Goes from the preset "one" to another and back.
    LeakScenario between(const char* name, const QString& other) {
        return own(name, [this, other](int round) { apply(round % 2 == 0 ? other : u"one"_s); });
    }
};

class LeaksOnALargeScreen : public Leaks {
protected:
    LeaksOnALargeScreen() : Leaks(QSize(3840, 2160)) {}
};

/// Whatever the application state can do.
class LeaksOfOperations : public LeakTest {
protected:
    void SetUp() override {
        LeakTest::SetUp();
        if (IsSkipped()) return;
        programPath = QCoreApplication::applicationFilePath();
        startArguments = QStringList{u"--operate-masks"_s};
        workspace.groups.append({QUuid::createUuid(), u"Others"_s, true, true, false});
        workspace.masks.clear();
        // A translucent one below, an opaque one, and one aside.
        addMask(around({600, 400}), Qt::black);
        workspace.masks.last().opacity = 0.5;
        workspace.masks.last().groupID = workspace.groups.first().id;
        addMask(around({400, 300}), Qt::black);
        addMask(around({400, 300}, 300, 60), Qt::black);
        workspace.masks.last().groupID = workspace.groups.first().id;
        startMeasuring();
    }

    /// Performs operations by turns.
    void measureTurns(const char* name, const QStringList& operations) {
        measure({name, Kind::ownOperation,
                 [&](int round) { perform(operations[round % operations.size()]); }, QString()});
    }
};

}  // namespace

TEST_P(Leaks, WhilePresetsAreLoaded) {
    startMeasuring();
    for (const LeakScenario& scenario :
         {between("preset, same layout", u"one"_s), between("preset, other layout", u"other"_s),
          between("preset, 3 masks", u"three"_s), between("preset, 20 masks", u"twenty"_s),
          between("preset, whole screen", u"whole"_s)})
        measure(scenario);
}

TEST_P(LeaksOnALargeScreen, WhilePresetsAreLoaded) {
    startMeasuring();
    for (const LeakScenario& scenario : {between("preset, 20 masks, 3840x2160", u"twenty"_s),
                                         between("preset, whole screen, 3840x2160", u"whole"_s)})
        measure(scenario);
}

TEST_P(Leaks, WhileMasksAreHandled) {
    startMeasuring();
    const auto dragBy = [this](QPoint from, QPoint by) {
        return [this, from, by](int) {
            input.drag(from, from + by, 40);
            input.drag(from + by, from, 40);
        };
    };
    const QRect other(center() - QPoint(40 + 350, 30 + 250), QSize(700, 500));
    for (const LeakScenario& scenario : {
             own("dragged", dragBy(other.center() - QPoint(90, 60), {61, 37}), u"other"_s),
             own("resized", dragBy(other.bottomRight() - QPoint(5, 5), {-60, -40}), u"other"_s),
             own(
                 "clicked", [&](int) { input.click(center() + QPoint(3, 90)); }, u"three"_s),
             own("locked and unlocked", [&](int) { perform(u"toggle-editing"_s); }),
             own("another created",
                 [&](int) {
                     input.movePointer({60, 60});
                     perform(u"create-mask"_s);
                 }),
             LeakScenario{"hidden and shown at once", Kind::unpreventable,
                          [&](int) {
                              apply(u"one"_s);
                              perform(u"hide-masks"_s);
                              perform(u"show-masks"_s);
                          }},
         })
        measure(scenario);
}

TEST_P(Leaks, WhileScreensAndTheProgramComeAndGo) {
    startMeasuring();
    runXrandr(u"--newmode smaller 50 1000 1001 1002 1003 640 641 642 643"_s);
    runXrandr(u"--addmode screen smaller"_s);
    const MonitorLayout::Monitor screen{u"A"_s, QRect(QPoint(0, 0), 2 * center())};
    const MonitorLayout::Monitor beside{u"B"_s, {1180, 0, 100, 800}};
    const auto shrunk = [&](int width, int height) {
        return MonitorLayout::Monitor{u"A"_s, {0, 0, width, height}};
    };
    for (const LeakScenario& scenario : {
             own(
                 "screen shrinks and grows",
                 [&](int round) {
                     runXrandr(round % 2 == 0 ? u"--output screen --mode smaller"_s
                                              : u"--output screen --mode 1280x800"_s);
                 },
                 u"whole"_s),
             own("screen comes and goes",
                 [&](int round) {
                     monitors.set(round % 2 == 0
                                      ? QList<MonitorLayout::Monitor>{shrunk(1180, 800), beside}
                                      : QList<MonitorLayout::Monitor>{screen});
                 }),
             // As its monitor tells; an Xvfb itself cannot turn.
             own(
                 "screen rotates",
                 [&](int round) { monitors.set({round % 2 == 0 ? shrunk(800, 800) : screen}); },
                 u"whole"_s),
             own("killed and started",
                 [&](int) {
                     process->sendSignal(SIGKILL);
                     EXPECT_EQ(process->waitForExit(defaultWait), -SIGKILL);
                     start();
                     awaitAnswers();
                 }),
             LeakScenario{"compositor comes and goes", Kind::unpreventable,
                          [&](int round) {
                              if (GetParam().isCompositing) return;
                              round % 2 == 0 ? desktop.startCompositor() : desktop.stopCompositor();
                          }},
             LeakScenario{"manager replaced, then a popup", Kind::unpreventable,
                          [&](int) {
                              if (!GetParam().manager.isEmpty())
                                  desktop.replaceWindowManager(GetParam().manager);
                              const xcb_window_t popup = neighbour.open(newcomer());
                              EXPECT_TRUE(settles());
                              neighbour.destroy(popup);
                          }},
         })
        measure(scenario);
}

TEST_P(Leaks, WhileOtherWindowsCome) {
    // Above a translucent mask, so that it must not come above that one alone.
    addPreset(u"layered"_s, {around({600, 400}), around({400, 300})});
    workspace.presets.last().masks.first().opacity = 0.5;
    startMeasuring();
    xcb_window_t window = XCB_NONE;
    const auto comes = [&](
                           const char* name, const NeighbourClient::WindowOptions& options,
                           const std::function<void()>& then = [] {}) {
        return LeakScenario{name, Kind::newcomer,
                            [&, options, then](int) {
                                window = neighbour.open(options);
                                then();
                                EXPECT_TRUE(settles());
                                neighbour.destroy(window);
                            },
                            u"layered"_s};
    };
    const auto asks = [&](const QString& state) {
        return [&, state] { neighbour.requestState(window, state); };
    };
    const xcb_window_t lasting = neighbour.create(newcomer());
    neighbour.lower(lasting);
    const auto options = newcomer();
    const auto managed = newcomer(false);
    auto notification = managed;
    notification.windowType = u"_NET_WM_WINDOW_TYPE_NOTIFICATION"_s;
    for (const LeakScenario& scenario : {
             comes("popup", options),
             comes("popup raised", options, [&] { neighbour.raise(window); }),
             LeakScenario{"popup mapped again", Kind::newcomer,
                          [&](int) {
                              neighbour.map(lasting);
                              EXPECT_TRUE(settles());
                              neighbour.unmap(lasting);
                          },
                          u"layered"_s},
             comes("window", managed, [&] { neighbour.requestActivation(window); }),
             comes("window above", managed, asks(u"_NET_WM_STATE_ABOVE"_s)),
             comes("window full screen", managed, asks(u"_NET_WM_STATE_FULLSCREEN"_s)),
             comes("notification", notification),
             LeakScenario{"workspace changed", Kind::newcomer,
                          [&](int round) { neighbour.requestWorkspace(1 - round % 2); },
                          u"layered"_s},
         })
        measure(scenario);
}

TEST_P(Leaks, WhileARivalInsists) {
    startMeasuring();
    m_mostLogLines = 1;
    measure({"rival that insists", Kind::newcomer, [&](int) {
                 const xcb_window_t rival = neighbour.open(newcomer());
                 contest([&] { return probe.isAbove(topMask(), rival); },
                         [&] { neighbour.raise(rival); });
                 neighbour.destroy(rival);
             }});
    // The rival covers a part of the mask in which nothing is read.
    auto aside = newcomer();
    aside.frame = QRect(center() - QPoint(190, 100), QSize(100, 100));
    measure({"popup beside a rival", Kind::newcomer, [&](int) {
                 const xcb_window_t rival = neighbour.open(aside);
                 contest([&] { return probe.isAbove(topMask(), rival); },
                         [&] { neighbour.raise(rival); });
                 const xcb_window_t popup = neighbour.open(newcomer());
                 EXPECT_TRUE(settles());
                 neighbour.destroy(popup);
                 neighbour.destroy(rival);
             }});
}

TEST_P(Leaks, UntilAHostileNeighbourIsUndone) {
    startMeasuring();
    const auto forged = [&](std::uint8_t type) {
        return [&, type] { neighbour.forge(type, topMask()); };
    };
    const QRect small(center() - QPoint(20, 20), QSize(20, 20));
    const std::pair<const char*, std::function<void()>> attacks[] = {
        {"unmapped", [&] { neighbour.unmap(topMask()); }},
        {"taken away", [&] { neighbour.takeAway(topMask()); }},
        {"shaped away", [&] { neighbour.shapeAway(topMask()); }},
        {"lowered", [&] { neighbour.lower(topMask()); }},
        {"destroyed", [&] { neighbour.destroy(topMask()); }},
        {"made transparent",
         [&] { neighbour.setNumbers(topMask(), u"_NET_WM_WINDOW_OPACITY"_s, u"CARDINAL"_s, {0}); }},
        {"forged destruction", forged(XCB_DESTROY_NOTIFY)},
        {"forged unmapping", forged(XCB_UNMAP_NOTIFY)},
        {"forged move", forged(XCB_CONFIGURE_NOTIFY)},
        {"forged removal", forged(XCB_REPARENT_NOTIFY)},
    };
    for (const auto& [name, attack] : attacks)
        measure({name, Kind::unpreventable, [&](int) { attack(); }});
    m_mostLogLines = 1;
    measure({"unmapped again and again", Kind::unpreventable, [&](int) {
                 contest([&] { return topMask() != XCB_NONE; },
                         [&] { neighbour.unmap(topMask()); });
             }});
    measure({"unmapped right after a request", Kind::unpreventable, [&](int) {
                 const QPoint grip = center() + QPoint(3, 90);
                 input.movePointer(grip);
                 input.press();
                 // Somewhen between the step and what the program asks of the server for it.
                 for (int delay = 0; delay < 40; ++delay) {
                     input.movePointer(grip + QPoint(delay % 2, 0));
                     const auto until =
                         std::chrono::steady_clock::now() + std::chrono::microseconds(10 * delay);
                     while (std::chrono::steady_clock::now() < until) {
                     }
                     neighbour.unmap(topMask());
                     if (!waitUntil([&] { return topMask() != XCB_NONE; })) break;
                 }
                 input.release();
             }});
}

TEST_P(Leaks, NothingWhileTheScreenIsLocked) {
    startMeasuring();
    measure({"screen locked", Kind::unpreventable, [&](int round) {
                 NeighbourClient locker(desktop.displayName());
                 auto options = newcomer();
                 options.frame = QRect(QPoint(0, 0), 2 * center());
                 options.title = u"Locker"_s;
                 // Lockers do either. Under mutter, who comes later is painted on top for good.
                 const bool grabsFirst = round % 2 == 0 || GetParam().name == "mutter";
                 if (grabsFirst) {
                     EXPECT_TRUE(locker.grabKeyboard());
                 }
                 const xcb_window_t window = locker.open(options);
                 EXPECT_TRUE(locker.grabKeyboard());
                 // As lockers do whenever something obscures them.
                 auto lastRaise = std::chrono::steady_clock::now();
                 EXPECT_TRUE(waitUntil([&] {
                     const auto now = std::chrono::steady_clock::now();
                     if (locker.isObscured(window)) {
                         locker.raise(window);
                         lastRaise = now;
                     }
                     return now - lastRaise >= 3 * quietTime && m_meter->coveredTime() >= quietTime;
                 })) << "the masks do not let the locker be";
                 EXPECT_EQ(m_meter->tally().leaks.readings, 0);
             }});
}

TEST_P(LeaksOfOperations, OfTheApplicationState) {
    measureTurns("lower translucent one selected", {u"select 0"_s, u"select 1"_s});
    measureTurns("another restyled", {u"style 0 softTint"_s, u"style 0 blackout"_s});
    perform(u"style 0 frosted"_s);
    measureTurns("another's opacity", {u"opacity 0 0.3"_s, u"opacity 0 0.7"_s});
    measureTurns("own colour", {u"color 1 #000500"_s, u"color 1 #000000"_s});
    // Frosted, it shows what was below it wherever it lies.
    measureTurns("another hidden and shown", {u"visible 0 0"_s, u"visible 0 1"_s});
    measureTurns("group hidden and shown", {u"group-visible 0"_s});
    perform(u"style 0 blackout"_s);
    perform(u"select 1"_s);
    measureTurns("moved by steps", {u"nudge 10"_s, u"nudge -10"_s});
    measureTurns("resized by steps", {u"resize 10"_s, u"resize -10"_s});
    measureTurns("duplicated and deleted", {u"select 1"_s, u"duplicate"_s, u"delete"_s});
}

INSTANTIATE_TEST_SUITE_P(Desktops, Leaks, testing::ValuesIn(chosenDesktops()));
INSTANTIATE_TEST_SUITE_P(Desktops, LeaksOnALargeScreen, testing::ValuesIn(chosenDesktops()));
INSTANTIATE_TEST_SUITE_P(Desktops, LeaksOfOperations, testing::ValuesIn(chosenDesktops()));
