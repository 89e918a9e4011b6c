#include "benchmarks/support/WindowBenchmarks.h"

#include "Views/Components/AccessibleElement.h"
#include "Views/Design/ApplicationLook.h"
#include "benchmarks/support/MaskRows.h"
#include "support/HeadlessPlatform.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>
#include <benchmark/benchmark.h>

ProgramInMemory::ProgramInMemory(int maskCount)
    : state(headlessPlatform(m_desktop, m_log, m_folder.path())) {
    m_desktop.screens.setScreens({{QStringLiteral("A"), {0, 0, 1280, 800}, {0, 0, 1280, 800}, 1}});
    state.hasCompletedOnboarding.set(true);
    state.masks.set(rowsOfMasks(maskCount));
    settle();
}

void ProgramInMemory::settle() {
    m_desktop.mainLoop.advanceBy(std::chrono::milliseconds(0));
    QApplication::processEvents();
}

std::unique_ptr<QWidget> plainWindow(int rowCount) {
    auto window = std::make_unique<QWidget>();
    auto* const layout = new QVBoxLayout(window.get());
    for (int row = 0; row < rowCount; ++row)
        layout->addWidget(new QLabel(QStringLiteral("Row %1").arg(row)));
    return window;
}

int runWindowBenchmarks(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    applyVeylaLook();
    installAccessibleElements();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
