// From the press of a hot key to the last of the masks off the screen, as another client sees it.
// Veyla and a bare client take turns, each on a display of its own.

#include "benchmarks/support/DisplayObserver.h"
#include "benchmarks/support/MaskRows.h"
#include "benchmarks/support/ProgramOnDesktop.h"
#include "benchmarks/support/Samples.h"

#include <thread>

namespace {

constexpr int rounds = 100;

// Control, Alt, Super and H, as every server on Linux numbers them, and the modifiers as a mask.
constexpr std::uint8_t heldKeys[] = {37, 64, 133};
constexpr std::uint8_t hotKey = 43;
constexpr int modifierMask = 4 + 8 + 64;

/// A program whose windows a hot key hides and shows, with the display that it is on.
class Contender {
public:
    void watch() { m_observer = std::make_unique<DisplayObserver>(desktop.displayName()); }
    void findWindows(int count) {
        m_count = count;
        m_observer->waitForMaps(count);
    }

    /// Hides all windows and shows them again.
    void toggleTwice() {
        for (const std::uint8_t key : heldKeys)
            m_observer->pressKeycode(key);
        times.add(m_observer->timeUntilUnmapped(hotKey, m_count));
        m_observer->releaseKeycode(hotKey);
        m_observer->pressKeycode(hotKey);
        m_observer->releaseKeycode(hotKey);
        for (const std::uint8_t key : heldKeys)
            m_observer->releaseKeycode(key);
        m_observer->waitForMaps(m_count);
    }

    DesktopSession desktop{quietDesktop()};
    Samples times;

private:
    std::unique_ptr<DisplayObserver> m_observer;
    int m_count = 0;
};

void hotKeyHides(benchmark::State& state) {
    const auto windowCount = static_cast<int>(state.range(0));
    const std::chrono::milliseconds rest(state.range(1));

    Contender veyla;
    storeWorkspace(veyla.desktop, rowsOfMasks(windowCount));
    veyla.watch();
    const auto veylaProgram = startVeyla(veyla.desktop);
    veyla.findWindows(windowCount);

    Contender bare;
    bare.watch();
    const ChildProcess bareProgram(
        QStringLiteral(BARE_HOTKEY_PROGRAM),
        {QString::number(windowCount), QString::number(hotKey), QString::number(modifierMask)},
        bare.desktop.environment());
    bare.findWindows(windowCount);

    for (auto iteration : state) {
        for (int round = 0; round < rounds; ++round) {
            // With much of it, Veyla has composed the masks that it has shown, and rests.
            std::this_thread::sleep_for(rest);
            bare.toggleTwice();
            veyla.toggleTwice();
        }
    }
    reportRatio(state, veyla.times, bare.times, 2);
}

BENCHMARK(hotKeyHides)
    ->ArgNames({"masks", "rest_ms"})
    ->Args({100, 150})
    ->Args({100, 1})
    ->Args({100, 20})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
