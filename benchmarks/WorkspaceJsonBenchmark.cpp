// What the records cost on top of Qt's own JSON reader and writer, for a large workspace. The
// counter "ratio" is the time of the whole operation over that of Qt's part on the same text; the
// two take turns, so that a busy machine slows both.

#include "Models/WorkspaceSnapshot.h"

#include <QJsonDocument>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr int maskCount = 1000;
constexpr int presetCount = 100;
constexpr int masksPerPreset = 20;

ScreenMask mask(int number) {
    return {.id = QUuid::createUuid(),
            .name = QStringLiteral("Mask %1").arg(number),
            .frame = {.x = number * 1.37, .y = number * 0.91, .width = 320, .height = 180.5},
            .opacity = 0.86,
            .colorHex = QStringLiteral("#101114"),
            .isClickThrough = number % 3 == 0,
            .style = ScreenMask::allStyles.at(static_cast<std::size_t>(number) % 3),
            .groupID = number % 2 == 0 ? std::optional(QUuid::createUuid()) : std::nullopt};
}

WorkspaceSnapshot largeWorkspace() {
    WorkspaceSnapshot workspace;
    for (int number = 0; number < maskCount; ++number)
        workspace.masks.append(mask(number));
    for (int number = 0; number < presetCount; ++number) {
        MaskPreset preset{.id = QUuid::createUuid(),
                          .name = QStringLiteral("Preset %1").arg(number),
                          .trigger = QStringLiteral("Manual"),
                          .masks = {},
                          .targetAppName = QStringLiteral("Präsentation"),
                          .targetBundleIdentifier = QStringLiteral("org.example.App"),
                          .priority = number};
        for (int index = 0; index < masksPerPreset; ++index)
            preset.masks.append(mask(index));
        workspace.presets.append(preset);
    }
    return workspace;
}

template <typename Operation>
Seconds timeOf(Operation operation) {
    const auto start = Clock::now();
    benchmark::DoNotOptimize(operation());
    return Clock::now() - start;
}

Seconds median(std::vector<Seconds> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

template <typename Whole, typename QtPart>
void compare(benchmark::State& state, Whole whole, QtPart qtPart) {
    std::vector<Seconds> wholeTimes;
    std::vector<Seconds> qtTimes;
    for (auto iteration : state) {
        qtTimes.push_back(timeOf(qtPart));
        wholeTimes.push_back(timeOf(whole));
        state.SetIterationTime(wholeTimes.back().count());
    }
    const Seconds wholeTime = median(wholeTimes);
    const Seconds qtTime = median(qtTimes);
    state.counters["veyla_ms"] = wholeTime.count() * 1000;
    state.counters["qt_ms"] = qtTime.count() * 1000;
    state.counters["ratio"] = wholeTime / qtTime;
}

void readWorkspace(benchmark::State& state) {
    const QByteArray text = largeWorkspace().toJsonText();
    compare(
        state, [&text] { return WorkspaceSnapshot::fromJsonText(text); },
        [&text] { return QJsonDocument::fromJson(text); });
    state.counters["bytes"] = static_cast<double>(text.size());
}

void writeWorkspace(benchmark::State& state) {
    const WorkspaceSnapshot workspace = largeWorkspace();
    const QJsonDocument document = QJsonDocument::fromJson(workspace.toJsonText());
    compare(
        state, [&workspace] { return workspace.toJsonText(); },
        [&document] { return document.toJson(); });
}

BENCHMARK(readWorkspace)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(writeWorkspace)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
