// The dashboard beside a plain window: how long showing it takes with fifty masks, what choosing a
// mask costs with many of them, and what dragging the opacity slider costs. In memory, without a
// server: what is measured is the program's own work.

#include "Platform/Headless/HeadlessDesktop.h"
#include "Views/Components/AccessibleElement.h"
#include "Views/Components/AmountSlider.h"
#include "Views/ContentView.h"
#include "Views/Design/ApplicationLook.h"
#include "benchmarks/support/MaskRows.h"
#include "benchmarks/support/Samples.h"
#include "support/HeadlessPlatform.h"
#include "support/RecordingSystemLog.h"

#include <QApplication>
#include <QLabel>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <ctime>

namespace {

constexpr int rounds = 15;

/// The program's state and window on a desktop in memory.
class Program {
public:
    explicit Program(int maskCount) {
        m_desktop.screens.setScreens(
            {{QStringLiteral("A"), {0, 0, 1280, 800}, {0, 0, 1280, 800}, 1}});
        state.hasCompletedOnboarding.set(true);
        state.masks.set(rowsOfMasks(maskCount));
        settle();
    }

    std::unique_ptr<ContentView> makeWindow() {
        return std::make_unique<ContentView>(state, m_desktop.mainLoop, m_commands, [] {});
    }

    /// Delivers what was put off to the next turn, and paints.
    void settle() {
        m_desktop.mainLoop.advanceBy(std::chrono::milliseconds(0));
        QApplication::processEvents();
    }

private:
    QTemporaryDir m_folder;
    RecordingSystemLog m_log;
    HeadlessDesktop m_desktop;

public:
    AppState state{headlessPlatform(m_desktop, m_log, m_folder.path())};

private:
    VeylaCommands m_commands{state, nullptr};
};

std::unique_ptr<QWidget> plainWindow(int rowCount) {
    auto window = std::make_unique<QWidget>();
    auto* const layout = new QVBoxLayout(window.get());
    for (int row = 0; row < rowCount; ++row)
        layout->addWidget(new QLabel(QStringLiteral("Row %1").arg(row)));
    window->resize(1180, 760);
    return window;
}

// From nothing to every pixel painted.
void showDashboard(benchmark::State& benchmarkState) {
    constexpr int maskCount = 50;
    Program program(maskCount);
    Samples dashboard;
    Samples plain;
    for (auto iteration : benchmarkState) {
        for (int round = 0; round < rounds; ++round) {
            dashboard.measure([&] {
                const auto window = program.makeWindow();
                window->show();
                program.settle();
            });
            plain.measure([&] {
                const auto window = plainWindow(maskCount);
                window->show();
                program.settle();
            });
        }
    }
    reportRatio(benchmarkState, dashboard, plain, 3);
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
            pixels += static_cast<double>(widget->width()) * widget->height();
        return false;
    }
    double pixels = 0;
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
BENCHMARK(selectMask)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(dragOpacity)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(repaintedByOpacity)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    applyVeylaLook(application);
    installAccessibleElements();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
