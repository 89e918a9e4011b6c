// The dashboard beside a plain window: how long showing it takes with fifty masks, what choosing a
// mask costs with many of them, and what dragging the opacity slider costs; and how long showing
// the settings takes. In memory, without a server: what is measured is the program's own work.

#include "Platform/Headless/HeadlessLoginItem.h"
#include "Views/Components/AmountSlider.h"
#include "Views/ContentView.h"
#include "Views/Settings/SettingsWindow.h"
#include "benchmarks/support/Samples.h"
#include "benchmarks/support/WindowBenchmarks.h"

#include <QApplication>
#include <QPaintEvent>
#include <ctime>

namespace {

constexpr int rounds = 15;

class Program final : public ProgramInMemory {
public:
    using ProgramInMemory::ProgramInMemory;

    std::unique_ptr<ContentView> makeWindow() {
        return std::make_unique<ContentView>(state, m_desktop.mainLoop, m_commands, [] {});
    }

    std::unique_ptr<SettingsWindow> makeSettingsWindow() {
        return std::make_unique<SettingsWindow>(state, m_desktop.mainLoop, m_loginItem);
    }

private:
    HeadlessLoginItem m_loginItem;
    VeylaCommands m_commands{state, nullptr};
};

/// A plain window of that size.
std::unique_ptr<QWidget> plainWindow(int rowCount, QSize size) {
    auto window = ::plainWindow(rowCount);
    window->resize(size);
    return window;
}

/// Makes and shows the one and the other by turns, from nothing to every pixel painted.
template <typename MakeWindow, typename MakePlainWindow>
void compareShowing(benchmark::State& benchmarkState, Program& program, MakeWindow makeWindow,
                    MakePlainWindow makePlainWindow) {
    Samples times;
    Samples plainTimes;
    const auto show = [&](const auto& make) {
        const auto window = make();
        window->show();
        program.settle();
    };
    for (auto iteration : benchmarkState) {
        for (int round = 0; round < rounds; ++round) {
            times.measure([&] { show(makeWindow); });
            plainTimes.measure([&] { show(makePlainWindow); });
        }
    }
    reportRatio(benchmarkState, times, plainTimes, 3);
}

void showDashboard(benchmark::State& benchmarkState) {
    constexpr int maskCount = 50;
    Program program(maskCount);
    compareShowing(
        benchmarkState, program, [&] { return program.makeWindow(); },
        [] {
            return plainWindow(maskCount, {1180, 760});
        });
}

void showSettings(benchmark::State& benchmarkState) {
    constexpr int rowCount = 20;
    Program program(1);
    compareShowing(
        benchmarkState, program, [&] { return program.makeSettingsWindow(); },
        [] {
            return plainWindow(rowCount, {560, 620});
        });
}

// What a click on a row costs until its change is painted, apart from the overlays: those are no
// part of the window, and cost the same without it.
void selectMask(benchmark::State& benchmarkState) {
    Program many(1000);
    Program few(10);
    const auto manyWindow = many.makeWindow();
    const auto fewWindow = few.makeWindow();
    manyWindow->show();
    fewWindow->show();
    many.settle();
    few.settle();
    Samples manyTimes;
    Samples fewTimes;
    const auto choose = [](Program& program, int index, Samples& times) {
        program.state.selectedMaskID.set(program.state.masks.value()[index].id);
        times.measure([&] { program.settle(); });
    };
    for (auto iteration : benchmarkState) {
        for (int round = 0; round < 4 * rounds; ++round) {
            choose(many, round % 10, manyTimes);
            choose(few, round % 10, fewTimes);
        }
    }
    reportRatio(benchmarkState, manyTimes, fewTimes, 2);
}

/// Adds up the pixels that the widgets of a window are asked to paint.
class PaintedArea final : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* const widget = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::Paint && widget && !widget->isWindow())
            pixels += areaOf(static_cast<QPaintEvent*>(event)->region());
        return false;
    }
    double pixels = 0;

private:
    static double areaOf(const QRegion& region) {
        double area = 0;
        for (const QRect& rect : region)
            area += static_cast<double>(rect.width()) * rect.height();
        return area;
    }
};

// Processor time of one second of dragging, sixty changes, as a part of one core.
void dragOpacity(benchmark::State& benchmarkState) {
    constexpr int changes = 60;
    Program program(50);
    program.state.selectedMaskID.set(program.state.masks.value().first().id);
    const auto window = program.makeWindow();
    window->show();
    program.settle();
    double seconds = 0;
    for (auto iteration : benchmarkState) {
        const std::clock_t start = std::clock();
        for (int change = 0; change < changes; ++change) {
            program.state.setOpacity(*program.state.selectedMaskID.value(), 0.2 + 0.01 * change);
            program.settle();
        }
        seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }
    reportTarget(benchmarkState, seconds, 0.5);
}

// How much of the window one such change paints again.
void repaintedByOpacity(benchmark::State& benchmarkState) {
    Program program(50);
    program.state.selectedMaskID.set(program.state.masks.value().first().id);
    const auto window = program.makeWindow();
    window->show();
    program.settle();
    // What the opening has left to do is no part of it.
    program.state.setOpacity(*program.state.selectedMaskID.value(), 0.44);
    program.settle();
    PaintedArea painted;
    qApp->installEventFilter(&painted);
    for (auto iteration : benchmarkState) {
        painted.pixels = 0;
        program.state.setOpacity(*program.state.selectedMaskID.value(), 0.33);
        program.settle();
    }
    qApp->removeEventFilter(&painted);
    reportTarget(benchmarkState, painted.pixels / (window->width() * window->height()), 0.25);
}

BENCHMARK(showDashboard)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(showSettings)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(selectMask)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(dragOpacity)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(repaintedByOpacity)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    return runWindowBenchmarks(argc, argv);
}
