#include "benchmarks/support/WindowBenchmarks.h"

#include "Views/Components/AccessibleElement.h"
#include "Views/Design/ApplicationLook.h"

#include <QApplication>
#include <benchmark/benchmark.h>

int runWindowBenchmarks(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    applyVeylaLook();
    installAccessibleElements();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
