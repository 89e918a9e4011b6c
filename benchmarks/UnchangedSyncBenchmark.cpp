// A sync in which nothing changed sends the X server nothing. Every picture reaches the server in
// requests, so none were painted either.

#include "Platform/Qt/QtMainLoop.h"
#include "Platform/Qt/StderrLog.h"
#include "Platform/X11/X11Desktop.h"
#include "Services/OverlayManager.h"
#include "benchmarks/support/MaskRows.h"
#include "benchmarks/support/Samples.h"
#include "support/desktop/DesktopSession.h"
#include "support/desktop/Wait.h"

#include <QApplication>
#include <cstdio>
#include <exception>

namespace {

constexpr int syncs = 1000;

void unchangedSync(benchmark::State& state) {
    StderrLog log;
    QtMainLoop mainLoop;
    QString error;
    const auto desktop = X11Desktop::open({mainLoop, log}, &error);
    if (!desktop) {
        state.SkipWithError(qPrintable(error));
        return;
    }
    OverlayManager manager(mainLoop, desktop->screens(), desktop->overlaySurfaces());
    QList<ScreenMask> masks = rowsOfMasks(static_cast<int>(state.range(0)));
    const auto sync = [&] { manager.sync(masks, true, true, masks.first().id, {}, {}); };
    xcb_connection_t* const connection = desktop->connection().get();
    // A request itself, that comes back with its own number.
    const auto requestNumber = [connection] { return xcb_no_operation(connection).sequence; };
    const auto settle = [&] {
        unsigned last = 0;
        requireSoon("the display to settle", [&] {
            const unsigned previous = std::exchange(last, requestNumber());
            return last == previous + 1;
        });
    };

    sync();
    settle();
    const unsigned before = requestNumber();
    Samples times;
    for (auto iteration : state) {
        for (int i = 0; i < syncs; ++i)
            times.measure(sync);
    }
    const unsigned requests = requestNumber() - before - 1;

    // That the count counts: one mask that moves is a request.
    masks.first().frame.x += 1;
    sync();
    if (requestNumber() - before - 2 == requests) state.SkipWithError("a moved mask did not count");

    reportTarget(state, requests, 0);
    state.SetLabel(times.summary() + " a sync");
}

BENCHMARK(unchangedSync)
    ->ArgName("masks")
    ->Arg(1)
    ->Arg(50)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    try {
        const DesktopSession session;
        session.adoptEnvironment();
        const QApplication application(argc, argv);
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
