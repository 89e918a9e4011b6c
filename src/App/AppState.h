#pragma once

#include "App/RemovedItems.h"
#include "App/UndoableAct.h"
#include "Models/AppSettings.h"
#include "Models/ChangelogRelease.h"
#include "Models/MaskGroup.h"
#include "Models/MaskPreset.h"
#include "Models/OnboardingStep.h"
#include "Models/ScreenMask.h"
#include "Platform/Announcer.h"
#include "Platform/ApplicationHost.h"
#include "Platform/HotKeyCenter.h"
#include "Platform/MainLoop.h"
#include "Platform/OverlaySurfaces.h"
#include "Platform/Screens.h"
#include "Platform/SystemLog.h"
#include "Platform/TrayIcon.h"
#include "Platform/UpdateFramework.h"
#include "Platform/UrlLoader.h"
#include "Platform/Workspace.h"
#include "Reactive/Published.h"
#include "Reactive/Subscription.h"
#include "Services/ChangelogService.h"
#include "Services/FrontmostAppMonitor.h"
#include "Services/HotkeyManager.h"
#include "Services/OverlayManager.h"
#include "Services/PresetStore.h"
#include "Services/ScreenShareMonitor.h"
#include "Services/UpdaterManager.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QUuid>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>

/// What the application state needs from the platform. Everything must outlive it.
struct AppPlatform {
    MainLoop& mainLoop;
    Screens& screens;
    OverlaySurfaces& overlaySurfaces;
    Announcer& announcer;
    SystemLog& systemLog;
    ApplicationHost& applicationHost;
    HotKeyCenter& hotKeyCenter;
    Workspace& workspace;
    UrlLoader& urlLoader;
    UpdateFramework& updateFramework;
    TrayIcon& trayIcon;
    /// The folder of the workspace document.
    QString workspaceDirectory;
    /// The version of the build, where it has one.
    std::optional<QString> applicationVersion = QStringLiteral(VEYLA_VERSION);
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

    /// How long the dashboard is on screen before the walkthrough starts.
    static constexpr std::chrono::milliseconds onboardingDelay{400};
    /// The window that `openWindowAction` opens as the dashboard.
    static constexpr QLatin1StringView dashboardWindowID{"dashboard"};

    /// Loads the workspace, shows its masks, starts to save changes, takes the hot keys, and
    /// decides what to present.
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
    /// The application that was chosen for the draft; without one it is for the one in front.
    Published<std::optional<RunningApplication>> presetDraftTarget;
    Published<bool> hasCompletedOnboarding{false};

    /// What `undo` would undo. Each act is announced, also one that equals the last.
    Published<std::optional<UndoableAct>> undoableAct;

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

    /// Gives back what the last deletion of a mask, a group or a preset, or the last load of a
    /// preset over masks, has taken; what was changed since then stays.
    void undo();

    // Groups. A mask is in the group that its `groupID` names.
    QList<ScreenMask> ungroupedMasks() const;
    QList<ScreenMask> masksInGroup(const QUuid& groupID) const;
    /// Adds a group under the name as given, and moves the selected mask into it.
    void createGroup(const QString& name);
    void addMaskToGroup(const QUuid& maskID, const QUuid& groupID);
    /// Brings every mask of the group to the group's new state, as does the next.
    void toggleGroupVisibility(const QUuid& groupID);
    /// A locked group's masks let clicks pass through.
    void toggleGroupLock(const QUuid& groupID);
    void toggleGroupExpanded(const QUuid& groupID);
    /// Trims the name; a blank one changes nothing.
    void renameGroup(const QUuid& groupID, const QString& name);
    /// Its masks stay, in no group.
    void deleteGroup(const QUuid& groupID);

    // Presets. List order is the user's, newest first; a larger priority wins.
    /// Opens the sheet with fresh drafts; it ends with one of the next two.
    void beginSavePresetFlow();
    void cancelSavePresetFlow();
    /// Saves all masks under the draft name. A blank name leaves the sheet open, as does automatic
    /// application without an application to bind to.
    void confirmSavePreset();
    /// Replaces all masks with copies of the preset's, under new identities and in no group,
    /// selects the first and shows the masks.
    void applyPreset(const MaskPreset& preset);
    /// Trims both texts; a blank name changes nothing, a blank trigger becomes "Manual".
    void updatePreset(const QUuid& presetID, const QString& name, const QString& trigger);
    /// The application in front; nothing while that is Veyla itself, which no preset is for.
    std::optional<RunningApplication> applicationInFront() const;
    /// What the draft will be bound to if it is to be applied automatically.
    std::optional<RunningApplication> presetDraftApplication() const;
    /// From now on the preset is applied when the application that is in front now comes to the
    /// front. Does nothing while that is Veyla.
    void bindPresetToCurrentApp(const QUuid& presetID);
    /// The programs that run now and that a preset can be bound to, by name; Veyla itself is none.
    QList<RunningApplication> applicationsToBind() const;
    /// The same for an application that need not be in front.
    void bindPreset(const QUuid& presetID, const RunningApplication& application);
    void clearPresetAppBinding(const QUuid& presetID);
    /// Moves the preset one place, and makes all priorities agree with the list, as does the next.
    void movePresetUp(const QUuid& presetID);
    void movePresetDown(const QUuid& presetID);
    void deletePreset(const QUuid& presetID);

    // Hot keys.
    /// Takes the combinations of the current settings; to be called after a binding has changed.
    void registerHotkeysWithCurrentBindings();
    /// Binds the action to another combination, and takes it.
    void setHotkeyBinding(HotkeyAction action, const HotkeyBinding& binding);
    /// Binds every action to its default combination.
    void resetHotkeyBindings();
    /// The first action, other than the one under that binding key, that has the same combination.
    std::optional<HotkeyAction> hotkeyConflict(const QString& bindingKey,
                                               const HotkeyBinding& binding) const;
    const HotkeyManager& hotkeyManager() const { return m_hotkeyManager; }
    /// Hot keys reach the focused window instead while the handle lives.
    Subscription suspendHotkeys() { return m_platform.hotKeyCenter.suspendHotKeys(); }

    // The dashboard window.
    /// How a window is made that does not exist yet; the dashboard's content sets it.
    void setOpenWindowAction(std::function<void(QLatin1StringView windowID)> action);
    /// To be called each time the dashboard's content comes on screen. The first time decides
    /// whether the window stays, and whether the walkthrough starts.
    void handleDashboardWindowAppearance();
    /// Brings the window to the front. Does nothing more than activate Veyla where there is none
    /// and none can be made.
    void openDashboardWindow();
    void toggleDashboardWindow();
    void hideDashboardWindow();
    /// Whether there is a window, or a way to make one.
    bool canOpenDashboardWindow() const;
    /// The program was started without its window: its first appearance is then the user's wish,
    /// which decides nothing more where the program stays in the tray.
    void startedWithoutDashboard();
    bool isDashboardWindowVisible() const;

    // Release notes and the walkthrough.
    /// The version of the build, "0" where it has none.
    QString applicationVersion() const;
    /// Opens the sheet, and fetches the notes unless they were fetched before.
    void presentWhatsNew();
    /// What was fetched stays.
    void dismissWhatsNew();
    /// Who has closed the help needs no walkthrough.
    void dismissHelp();
    /// Results arrive in `latestChangelog` or `changelogError`.
    void fetchLatestChangelog();
    /// Starts the walkthrough with a mask to point at, unless it was completed or something else
    /// is presented.
    void startOnboardingIfNeeded();
    /// Starts the walkthrough although it was completed before.
    void replayOnboarding();
    /// Goes on to the next step; after the last one the walkthrough is finished.
    void showNextOnboardingStep();
    const QList<OnboardingStep>& onboardingSteps() const { return OnboardingStep::all(); }
    /// The walkthrough was finished or left; it does not start by itself again.
    void finishOnboarding();

    UpdaterManager& updaterManager() { return m_updaterManager; }
    const ScreenShareMonitor& screenShareMonitor() const { return m_screenShareMonitor; }

private:
    void loadWorkspace();
    void bind();
    void bindMonitors();
    void bindOverlays();
    void followActivationPolicy();
    void saveWorkspace();
    void announce(const QString& message);

    void updateMask(const QUuid& maskID, const std::function<void(ScreenMask&)>& mutate);
    ScreenMask newMask(const QString& name) const;
    template <typename Mutate>
    bool updateGroup(const QUuid& groupID, Mutate mutate);
    template <typename Mutate>
    void updateMasksInGroup(const QUuid& groupID, Mutate mutate);
    template <typename Mutate>
    void mutatePreset(const QUuid& presetID, Mutate mutate);
    QString suggestedPresetName(qsizetype index) const;
    qint64 nextPresetPriority() const;
    void movePreset(const QUuid& presetID, qsizetype offset);
    enum class LoadedBy { user, itself };
    void loadPreset(const MaskPreset& preset, LoadedBy loadedBy);
    void applyMatchingAutoProfile(const std::optional<QString>& bundleIdentifier);

    void becomeUndoable(UndoableAct act, std::function<void()> restore);
    ScreenMask withoutLostGroup(ScreenMask mask) const;
    void restoreMask(const RemovedItems<ScreenMask>& removed);
    void restoreGroup(const RemovedItems<MaskGroup>& removed, const QSet<QUuid>& members);
    void noteLoad(const QString& presetName, LoadedBy loadedBy, const QList<ScreenMask>& former,
                  const std::optional<QUuid>& formerSelection);
    void undoLoad(const QList<ScreenMask>& former, const std::optional<QUuid>& formerSelection);

    void performHotkey(HotkeyAction action);
    bool isMenuBarOnly() const;
    void applyActivationPolicy();
    std::shared_ptr<HostWindow> dashboardWindow() const;
    void evaluateHelpOnLaunch();
    void evaluateWhatsNewOnLaunch();
    void startFetchingChangelog();
    void seedDemoMaskForOnboarding();

    AppPlatform m_platform;
    OverlayManager m_overlayManager;
    HotkeyManager m_hotkeyManager;
    UpdaterManager m_updaterManager;
    PresetStore m_presetStore;
    ChangelogService m_changelogService;
    FrontmostAppMonitor m_frontmostAppMonitor;
    ScreenShareMonitor m_screenShareMonitor;

    std::optional<QUuid> m_lastAutoAppliedPresetID;
    // Gives back what the undoable act has taken.
    std::function<void()> m_restore;
    // As the last load of a preset left them.
    QList<ScreenMask> m_loadedMasks;
    bool m_hasHandledInitialDashboardWindow = false;
    // Hidden at the start, before it was known whether there is a tray to be reached by.
    bool m_isDashboardHeldBack = false;
    mutable std::weak_ptr<HostWindow> m_cachedDashboardWindow;
    std::function<void(QLatin1StringView)> m_openWindowAction;
    Subscription m_onboardingStart;
    // Those under way; each takes itself out.
    std::set<std::shared_ptr<Subscription>> m_changelogFetches;

    Lifetime m_lifetime;
    SubscriptionBag m_cancellables;
};
