// How the cost of a sync grows with the number of masks, on the in-memory desktop: ten times as
// many may cost twelve times as much.

#include "Platform/Headless/HeadlessDesktop.h"
#include "Services/OverlayManager.h"
#include "benchmarks/support/MaskRows.h"
#include "benchmarks/support/Samples.h"

namespace {

constexpr int rounds = 30;

/// A workspace of that many masks on a desktop of its own.
class Workspace {
public:
    explicit Workspace(int maskCount) : m_masks(rowsOfMasks(maskCount)) {
        m_desktop.screens.setScreens(
            {{QStringLiteral("A"), {0, 0, 1280, 800}, {0, 0, 1280, 800}, 1}});
        sync();
    }

    void sync() { m_manager.sync(m_masks, true, true, std::nullopt, {}, {}); }

    void moveAll() {
        m_offset = -m_offset;
        for (ScreenMask& mask : m_masks)
            mask.frame.x += m_offset;
    }

    Samples times;

private:
    QList<ScreenMask> m_masks;
    double m_offset = 5;
    HeadlessDesktop m_desktop;
    OverlayManager m_manager{m_desktop.mainLoop, m_desktop.screens, m_desktop.overlaySurfaces};
};

void compareSizes(benchmark::State& state, bool areMoved) {
    Workspace small(1000);
    Workspace large(10000);
    for (auto iteration : state) {
        for (int round = 0; round < rounds; ++round) {
            for (Workspace* const workspace : {&small, &large}) {
                if (areMoved) workspace->moveAll();
                workspace->times.measure([workspace] { workspace->sync(); });
            }
        }
    }
    reportRatio(state, large.times, small.times, 12);
}

BENCHMARK_CAPTURE(compareSizes, unchanged, false)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compareSizes, allMoved, true)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
