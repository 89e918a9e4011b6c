// The menu bar panel beside a plain window of as many rows: how long showing it for the first time
// takes, with more masks and presets than it shows. In memory, without a server: what is measured
// is the program's own work.

#include "Views/MenuBar/MenuBarPanel.h"
#include "benchmarks/support/Samples.h"
#include "benchmarks/support/WindowBenchmarks.h"

namespace {

constexpr int rounds = 15;
constexpr int maskCount = 100;
constexpr int presetCount = 50;
constexpr int plainRows = 20;
constexpr QRect anchor(600, 0, 24, 24);

class Program final : public ProgramInMemory {
public:
    Program() : ProgramInMemory(maskCount) {
        state.selectedMaskID.set(state.masks.value().first().id);
        QList<MaskPreset> presets;
        for (int number = 0; number < presetCount; ++number) {
            MaskPreset preset;
            preset.id = QUuid::createUuid();
            preset.name = QStringLiteral("Preset %1").arg(number);
            preset.masks = state.masks.value();
            presets.append(preset);
        }
        state.presets.set(presets);
        settle();
    }

    std::unique_ptr<MenuBarPanel> makePanel() {
        return std::make_unique<MenuBarPanel>(state, m_desktop.mainLoop, m_desktop.pointerPresses,
                                              nullptr);
    }
};

// From nothing to every pixel painted.
void showPanel(benchmark::State& benchmarkState) {
    Program program;
    Samples panelTimes;
    Samples plainTimes;
    for (auto iteration : benchmarkState) {
        for (int round = 0; round < rounds; ++round) {
            panelTimes.measure([&] {
                const auto panel = program.makePanel();
                panel->open(anchor);
                program.settle();
            });
            plainTimes.measure([&] {
                const auto window = plainWindow(plainRows);
                window->show();
                program.settle();
            });
        }
    }
    reportRatio(benchmarkState, panelTimes, plainTimes, 2);
}

// The same for a panel that was open before, as it is at every click but the first.
void showPanelAgain(benchmark::State& benchmarkState) {
    Program program;
    Samples panelTimes;
    Samples plainTimes;
    const auto panel = program.makePanel();
    const auto window = plainWindow(plainRows);
    for (auto iteration : benchmarkState) {
        for (int round = 0; round < rounds; ++round) {
            for (const auto& [opened, times] :
                 {std::pair<QWidget*, Samples*>(panel.get(), &panelTimes),
                  {window.get(), &plainTimes}}) {
                times->measure([&, widget = opened] {
                    widget == panel.get() ? panel->open(anchor) : widget->show();
                    program.settle();
                });
                opened->hide();
                program.settle();
            }
        }
    }
    reportRatio(benchmarkState, panelTimes, plainTimes, 2);
}

BENCHMARK(showPanel)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(showPanelAgain)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    return runWindowBenchmarks(argc, argv);
}
