// One step of a drag: from a motion of the pointer to the moved window, as another client sees it.
// Veyla and a bare window take turns, each on a display of its own, because Veyla looks at the
// order of windows whenever a foreign one moves and would slow the other down. Steps come 1000
// times a second, as from the fastest usual pointing devices, or each as soon as the last one is
// seen.

#include "benchmarks/support/DisplayObserver.h"
#include "benchmarks/support/MaskRows.h"
#include "benchmarks/support/ProgramOnDesktop.h"
#include "benchmarks/support/Samples.h"

#include <thread>

namespace {

constexpr int rounds = 100;
constexpr int stepsPerRound = 40;

// The window that is dragged, in pixels from the top left of a display of 1280 by 800. Far enough
// from its edges and middle lines not to snap.
constexpr QRect draggedRect(200, 500, 320, 180);

/// A program whose window is dragged about, with the display that it is on.
class Contender {
public:
    void watch() { m_observer = std::make_unique<DisplayObserver>(desktop.displayName()); }

    void findWindows(int count) {
        while (count-- > 0)
            m_window = m_observer->waitForMap();
    }

    /// Drags the last of the windows for a round, back to where it was.
    void drag(std::chrono::microseconds pause) {
        const QPoint start = draggedRect.center();
        m_observer->movePointer(start);
        m_observer->press();
        // The first step also waits for what the press brought about.
        m_observer->timeUntilMoved(m_window, start + QPoint(1, 1));
        for (int step = 0; step < stepsPerRound; ++step) {
            std::this_thread::sleep_for(pause);
            const int distance = 2 + step % 20;
            times.add(m_observer->timeUntilMoved(m_window, start + QPoint(distance, distance)));
        }
        m_observer->timeUntilMoved(m_window, start);
        m_observer->release();
    }

    DesktopSession desktop{quietDesktop()};
    Samples times;

private:
    std::unique_ptr<DisplayObserver> m_observer;
    xcb_window_t m_window = XCB_NONE;
};

void dragStep(benchmark::State& state) {
    const auto maskCount = static_cast<int>(state.range(0));
    const std::chrono::microseconds pause(state.range(1));
    auto masks = rowsOfMasks(maskCount - 1);
    ScreenMask dragged = rowsOfMasks(1).first();
    dragged.frame = {200, 800 - 500 - 180, 320, 180};
    masks.append(dragged);

    Contender veyla;
    storeWorkspace(veyla.desktop, masks);
    veyla.watch();
    const auto veylaProgram = startVeyla(veyla.desktop);
    veyla.findWindows(maskCount);

    Contender bare;
    bare.watch();
    const ChildProcess bareProgram(QStringLiteral(BARE_WINDOW_PROGRAM),
                                   {QStringLiteral("200"), QStringLiteral("500"),
                                    QStringLiteral("320"), QStringLiteral("180")},
                                   bare.desktop.environment());
    bare.findWindows(1);

    for (auto iteration : state) {
        for (int round = 0; round < rounds; ++round) {
            bare.drag(pause);
            veyla.drag(pause);
        }
    }
    reportRatio(state, veyla.times, bare.times, 2);
}

BENCHMARK(dragStep)
    ->ArgNames({"masks", "pause_us"})
    ->ArgsProduct({{1, 50}, {1000, 0}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
