// From starting the program to the last of its masks on screen, against what the least Qt program
// takes to show its window. Both on the same display, in turn.

#include "benchmarks/support/DisplayObserver.h"
#include "benchmarks/support/MaskRows.h"
#include "benchmarks/support/ProgramOnDesktop.h"
#include "benchmarks/support/Samples.h"

namespace {

constexpr int rounds = 20;
constexpr int maskCount = 20;

template <typename Start>
Samples::Seconds timeUntilMapped(const DesktopSession& desktop, int windows, Start start) {
    DisplayObserver observer(desktop.displayName());
    const auto begin = Samples::Clock::now();
    const auto program = start();
    for (int window = 0; window < windows; ++window)
        observer.waitForMap();
    const auto time = Samples::Clock::now() - begin;
    program->end();
    return time;
}

void start(benchmark::State& state) {
    DesktopSession::Options options = quietDesktop();
    options.hasAccessibilityBus = state.range(0) != 0;
    DesktopSession desktop(options);
    storeWorkspace(desktop, rowsOfMasks(maskCount));

    Samples veyla;
    Samples minimal;
    const auto measureBoth = [&](Samples& veylaTimes, Samples& minimalTimes) {
        minimalTimes.add(timeUntilMapped(desktop, 1, [&] {
            return std::make_unique<ChildProcess>(QStringLiteral(MINIMAL_QT_PROGRAM), QStringList(),
                                                  desktop.environment());
        }));
        veylaTimes.add(timeUntilMapped(desktop, maskCount, [&] { return startVeyla(desktop); }));
    };
    // The first start of each reads from the disk what later ones find in memory.
    Samples unused;
    measureBoth(unused, unused);
    for (auto iteration : state) {
        for (int round = 0; round < rounds; ++round)
            measureBoth(veyla, minimal);
    }
    reportRatio(state, veyla, minimal, 2.5);
}

BENCHMARK(start)
    ->ArgName("accessibilityBus")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
