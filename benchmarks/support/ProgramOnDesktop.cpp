#include "benchmarks/support/ProgramOnDesktop.h"

#include "Services/PresetStore.h"

#include <cstdio>

namespace {

class PrintingLog final : public SystemLog {
public:
    void write(const QString& line) override { std::fprintf(stderr, "%s\n", qPrintable(line)); }
};

}  // namespace

DesktopSession::Options quietDesktop() {
    return {.windowManager = {}};
}

void storeWorkspace(DesktopSession& desktop, const QList<ScreenMask>& masks,
                    const QList<MaskPreset>& presets) {
    PrintingLog log;
    PresetStore store(desktop.home().dataFolder() + QStringLiteral("/Veyla"), log);
    WorkspaceSnapshot workspace;
    workspace.masks = masks;
    workspace.presets = presets;
    workspace.hasCompletedOnboarding = true;
    store.saveWorkspace(workspace);
}

std::unique_ptr<ChildProcess> startVeyla(const DesktopSession& desktop) {
    return std::make_unique<ChildProcess>(QStringLiteral(VEYLA_PROGRAM),
                                          QStringList{QStringLiteral("--background")},
                                          desktop.environment());
}
