#pragma once

#include "Models/AppSettings.h"
#include "Models/ChangelogRelease.h"
#include "Models/MaskGroup.h"
#include "Models/MaskPreset.h"
#include "Models/ScreenMask.h"
#include "Platform/Announcer.h"
#include "Platform/MainLoop.h"
#include "Platform/OverlaySurfaces.h"
#include "Platform/Screens.h"
#include "Platform/SystemLog.h"
#include "Reactive/Published.h"
#include "Reactive/Subscription.h"
#include "Services/OverlayManager.h"
#include "Services/PresetStore.h"

#include <QList>
#include <QString>
#include <QUuid>
#include <chrono>
#include <optional>

/// What the application state needs from the platform. Everything must outlive it.
struct AppPlatform {
    MainLoop& mainLoop;
    Screens& screens;
    OverlaySurfaces& overlaySurfaces;
    Announcer& announcer;
    SystemLog& systemLog;
    /// The folder of the workspace document.
    QString workspaceDirectory;
};

/// The one central object: owns the workspace in memory and performs every user operation. The
/// overlays and the workspace file follow its published fields. Views read the fields and call
/// operations, nothing else.
///
/// No operation reports an error: an unknown id, a missing selection or a blank name makes it do
/// nothing. Results are told as announcements only. Main thread only.
class AppState {
public:
    /// How long the workspace must be quiet before it is saved.
    static constexpr std::chrono::milliseconds saveDelay{250};
    /// The size of a new mask, in points.
    static constexpr Size newMaskSize{320, 180};

    /// Loads the workspace, shows its masks and starts to save changes.
    explicit AppState(const AppPlatform& platform);
    ~AppState();
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    // The workspace. List order of the masks is drawing order: later masks lie above earlier ones.
    Published<QList<ScreenMask>> masks;
    Published<QList<MaskPreset>> presets;
    Published<QList<MaskGroup>> groups;
    Published<AppSettings> settings{AppSettings::defaults()};
    /// May name a mask that is gone, which every reader treats as no selection.
    Published<std::optional<QUuid>> selectedMaskID;
    /// When false, every overlay lets the mouse pass through.
    Published<bool> isEditingEnabled{true};
    Published<bool> areMasksVisible{true};

    // What is presented.
    Published<bool> isSavePresetPresented{false};
    Published<bool> isHelpPresented{false};
    Published<bool> isWhatsNewPresented{false};
    Published<bool> isOnboardingPresented{false};
    Published<int> onboardingStepIndex{0};
    Published<std::optional<ChangelogRelease>> latestChangelog;
    Published<std::optional<QString>> changelogError;
    Published<QString> presetDraftName;
    Published<QString> presetDraftTrigger{QStringLiteral("Manual")};
    Published<bool> presetDraftAutoApply{false};
    Published<bool> hasCompletedOnboarding{false};

    // Mirrored from the services.
    Published<QString> currentFrontmostAppName{QStringLiteral("Unknown App")};
    Published<std::optional<QString>> currentFrontmostBundleIdentifier;
    Published<int> activeOverlayCount{0};

    /// The selected mask, absent without a selection that names one.
    std::optional<ScreenMask> activeMask() const;

    /// Adds a mask at the pointer, inside the visible frame of the pointer's screen, and selects
    /// it.
    void createMask();
    /// Sets the selection, even to an id that names no mask, and brings the mask to the front.
    void selectMask(const QUuid& maskID);
    void toggleVisibilityForAllMasks();
    void toggleEditing();
    void duplicateSelectedMask();
    void toggleSelectedMaskVisibility();
    /// Removes the selected mask and selects the first that remains.
    void deleteSelectedMask();

    // Values are stored as given; nothing is clamped or announced.
    void setOpacity(const QUuid& maskID, double opacity);
    void setStyle(const QUuid& maskID, ScreenMask::Style style);
    void setColorHex(const QUuid& maskID, const QString& colorHex);
    void setClickThrough(const QUuid& maskID, bool isClickThrough);
    void setVisibility(const QUuid& maskID, bool isVisible);
    /// Trims the name; a blank one changes nothing.
    void setMaskName(const QUuid& maskID, const QString& name);
    void updateMaskFrame(const QUuid& maskID, const MaskFrame& frame);

    /// Moves the selected mask by points.
    void nudgeSelectedMask(double dx, double dy);
    /// Grows or shrinks the selected mask by points, keeping its bottom-left corner, down to the
    /// minimum size.
    void resizeSelectedMask(double widthDelta, double heightDelta);

    /// Replaces all masks with copies of the preset's, under new identities and in no group,
    /// selects the first and shows the masks.
    void applyPreset(const MaskPreset& preset);

private:
    void loadWorkspace();
    void bind();
    void saveWorkspace();
    void announce(const QString& message);
    template <typename Mutate>
    void updateMask(const QUuid& maskID, Mutate mutate);

    AppPlatform m_platform;
    OverlayManager m_overlayManager;
    PresetStore m_presetStore;
    Lifetime m_lifetime;
    SubscriptionBag m_cancellables;
};
