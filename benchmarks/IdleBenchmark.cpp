// What Veyla costs while nobody touches anything: processor time, wake-ups and memory with ten
// masks on screen, without a tray and with its icon in one.

#include "benchmarks/support/DisplayObserver.h"
#include "benchmarks/support/MaskRows.h"
#include "benchmarks/support/ProcessUsage.h"
#include "benchmarks/support/ProgramOnDesktop.h"
#include "benchmarks/support/Samples.h"
#include "support/desktop/TrayPanel.h"

#include <cmath>
#include <thread>

namespace {

constexpr int maskCount = 10;
constexpr std::chrono::seconds idleTime{10};
// Longer than the program waits before it saves after its start.
constexpr std::chrono::seconds settlingTime{2};

/// A Veyla whose masks are on screen and that has done what a start brings with it.
class IdleVeyla {
public:
    // The tray's panel shows itself only once there is a window manager.
    explicit IdleVeyla(bool hasTray)
        : m_desktop(hasTray ? DesktopSession::Options() : quietDesktop()) {
        if (hasTray) m_tray = std::make_unique<TrayPanel>(m_desktop);
        storeWorkspace(m_desktop, rowsOfMasks(maskCount));
        DisplayObserver observer(m_desktop.displayName());
        m_program = startVeyla(m_desktop);
        for (int mask = 0; mask < maskCount; ++mask)
            observer.waitForMap();
        std::this_thread::sleep_for(settlingTime);
    }

    pid_t pid() const { return m_program->pid(); }

private:
    DesktopSession m_desktop;
    std::unique_ptr<TrayPanel> m_tray;
    std::unique_ptr<ChildProcess> m_program;
};

void measureIdle(benchmark::State& state, double ProcessUsage::*figure) {
    const IdleVeyla veyla(state.range(0) != 0);
    const ProcessUsage before = ProcessUsage::of(veyla.pid());
    for (auto iteration : state)
        std::this_thread::sleep_for(idleTime);
    const ProcessUsage after = ProcessUsage::of(veyla.pid());
    if (before.*figure == 0) state.SkipWithError("the kernel does not count this");
    reportTarget(state, after.*figure - before.*figure, 0);
}

void memory(benchmark::State& state) {
    const IdleVeyla veyla(state.range(0) != 0);
    ProcessMemory used;
    for (auto iteration : state)
        used = ProcessMemory::of(veyla.pid());
    reportTarget(state, used.proportional, 40);
    state.SetLabel("MiB in proportion, " + std::to_string(std::lround(used.resident)) +
                   " MiB resident");
}

BENCHMARK_CAPTURE(measureIdle, processorMilliseconds, &ProcessUsage::processorMilliseconds)
    ->ArgName("tray")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measureIdle, wakeUps, &ProcessUsage::sleeps)
    ->ArgName("tray")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(memory)->ArgName("tray")->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
