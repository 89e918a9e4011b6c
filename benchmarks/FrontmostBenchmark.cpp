// From another application coming to the front to the last of the 20 masks of its preset on screen.
// The benchmark stands in for the window manager, so that nothing but Veyla is in between.

#include "benchmarks/support/DisplayObserver.h"
#include "benchmarks/support/MaskRows.h"
#include "benchmarks/support/ProgramOnDesktop.h"
#include "benchmarks/support/Samples.h"
#include "support/desktop/NeighbourClient.h"

#include <array>

namespace {

constexpr int rounds = 100;
constexpr int maskCount = 20;

MaskPreset presetFor(const QString& windowClass) {
    return {.id = QUuid::createUuid(),
            .name = windowClass,
            .trigger = {},
            .masks = rowsOfMasks(maskCount),
            .autoApply = true,
            .targetAppName = windowClass,
            .targetBundleIdentifier = windowClass};
}

/// Two applications with a preset each, on a display whose window manager we are.
class TwoApplications {
public:
    TwoApplications() {
        storeWorkspace(m_desktop, rowsOfMasks(1),
                       {presetFor(m_classes[0]), presetFor(m_classes[1])});
        m_program = startVeyla(m_desktop);
        m_observer.waitForMap();
        for (const std::size_t which : {0U, 1U}) {
            makeWindow(which);
            timeUntilApplied(which);
        }
    }

    /// Gives the application a window that Veyla has not seen in place of its old one.
    void makeWindow(std::size_t which) {
        if (m_windows[which] != XCB_NONE) m_manager.destroy(m_windows[which]);
        m_windows[which] = m_manager.create({.windowClass = m_classes[which]});
        m_manager.roundTrip();
    }

    Samples::Seconds timeUntilApplied(std::size_t which) {
        const QString type = QStringLiteral("WINDOW");
        m_manager.setNumbers(m_manager.root(), QStringLiteral("_NET_CLIENT_LIST"), type,
                             {m_windows[0], m_windows[1]});
        const auto begin = Samples::Clock::now();
        m_manager.setNumbers(m_manager.root(), QStringLiteral("_NET_ACTIVE_WINDOW"), type,
                             {m_windows[which]});
        for (int mask = 0; mask < maskCount; ++mask)
            m_observer.waitForMap();
        return Samples::Clock::now() - begin;
    }

private:
    const std::array<QString, 2> m_classes{QStringLiteral("Editor"), QStringLiteral("Mail")};
    DesktopSession m_desktop{quietDesktop()};
    DisplayObserver m_observer{m_desktop.displayName()};
    NeighbourClient m_manager{m_desktop.displayName()};
    std::array<xcb_window_t, 2> m_windows{};
    std::unique_ptr<ChildProcess> m_program;
};

void applyBoundPreset(benchmark::State& state) {
    const bool hasNewWindow = state.range(0) != 0;
    TwoApplications applications;
    Samples times;
    for (auto iteration : state) {
        for (std::size_t round = 0; round < rounds; ++round) {
            if (hasNewWindow) applications.makeWindow(round % 2);
            times.add(applications.timeUntilApplied(round % 2));
        }
    }
    state.counters["measured"] = times.median() * 1000;
    state.SetLabel(times.summary());
}

BENCHMARK(applyBoundPreset)
    ->ArgName("newWindow")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
