#include "Services/PresetStore.h"
#include "support/AppStateFixture.h"
#include "support/HeadlessPlatform.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class LaunchTest : public AppStateFixture {
protected:
    /// Writes a workspace and starts on it, as that version.
    void launch(const WorkspaceSnapshot& workspace, const std::optional<QString>& version) {
        advance(250);
        m_state.reset();
        PresetStore(m_folder.filePath(u"Veyla"_s), m_log).saveWorkspace(workspace);
        AppPlatform platform = headlessPlatform(desktop(), m_log, m_folder.filePath(u"Veyla"_s));
        platform.applicationVersion = version;
        m_state = std::make_unique<AppState>(platform);
    }

    WorkspaceSnapshot document() {
        return PresetStore(m_folder.filePath(u"Veyla"_s), m_log)
            .loadWorkspace()
            .value_or(WorkspaceSnapshot{});
    }

    /// The dashboard's content comes on screen.
    void openDashboard() {
        m_window->makeKeyAndOrderFront();
        state().handleDashboardWindowAppearance();
    }

    QString presented() {
        QStringList names;
        if (state().isHelpPresented.value()) names << u"help"_s;
        if (state().isWhatsNewPresented.value()) names << u"whatsNew"_s;
        if (state().isOnboardingPresented.value()) names << u"onboarding"_s;
        return names.join(u' ');
    }

    std::shared_ptr<HeadlessWindow> m_window = desktop().applicationHost.addWindow(u"Veyla"_s);
};

TEST_F(LaunchTest, DecidesWhatIsPresented) {
    struct Row {
        const char* what;
        std::optional<QString> lastSeen;
        bool hasCompleted = false, isMenuBarOnly = false, showsDashboard = true, showsHelp = true;
        bool hasMask = false;
        QString presentedAtOnce, presentedLater;
        int requests = 0;
        ActivationPolicy policy = ActivationPolicy::regular;
        bool isDashboardVisible = true;
    };
    const ActivationPolicy accessory = ActivationPolicy::accessory;
    const QString none, notes = u"whatsNew"_s, tour = u"onboarding"_s, help = u"help"_s;
    const Row rows[] = {
        {"first launch", {}, false, false, true, true, false, none, tour},
        {"same version", u"2.0"_s, true, false, true, false, true, none, none},
        {"same version, tour open", u"2.0"_s, false, false, true, true, true, none, tour},
        {"new version", u"1.0"_s, true, false, true, true, true, notes, notes, 1},
        {"new version, tour open", u"1.0"_s, false, false, true, true, false, notes, notes, 1},
        {"menu bar only", u"2.0"_s, true, true, false, false, true, none, none, 0, accessory,
         false},
        {"menu bar only, tour open", u"2.0"_s, false, true, false, true, true, none, tour, 0,
         accessory, false},
        {"menu bar only with dashboard", u"2.0"_s, true, true, true, false, true, none, none},
        {"new version, menu bar only", u"1.0"_s, true, true, false, false, true, notes, notes, 1,
         accessory, false},
        {"nothing set up", u"2.0"_s, true, false, true, true, false, help, help},
        {"nothing set up, new version", u"1.0"_s, true, false, true, true, false, help, help},
        {"nothing set up, help off", u"2.0"_s, true, false, true, false, false, none, none},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        WorkspaceSnapshot workspace;
        workspace.settings = AppSettings::defaults();
        workspace.settings.lastSeenVersion = row.lastSeen;
        workspace.settings.menuBarOnlyMode = row.isMenuBarOnly;
        workspace.settings.showDashboardOnLaunch = row.showsDashboard;
        workspace.settings.showHelpOnLaunch = row.showsHelp;
        workspace.hasCompletedOnboarding = row.hasCompleted;
        workspace.areMasksVisible = workspace.isEditingEnabled = true;
        if (row.hasMask) workspace.masks.resize(1);
        const auto requestsBefore = desktop().urlLoader.requests().size();
        launch(workspace, u"2.0"_s);
        EXPECT_EQ(presented(), row.presentedAtOnce);
        EXPECT_EQ(desktop().applicationHost.policy(), row.policy);
        openDashboard();
        EXPECT_EQ(m_window->isVisible(), row.isDashboardVisible);
        advance(399);
        EXPECT_EQ(presented(), row.presentedAtOnce);
        advance(1);
        EXPECT_EQ(presented(), row.presentedLater);
        EXPECT_EQ(desktop().urlLoader.requests().size() - requestsBefore, row.requests);
        EXPECT_EQ(desktop().applicationHost.policy(), row.policy);
        EXPECT_EQ(document().settings.lastSeenVersion, u"2.0"_s);
        // Only the first appearance decides anything.
        state().isWhatsNewPresented.set(false);
        openDashboard();
        EXPECT_TRUE(m_window->isVisible());
    }
    launch({}, std::nullopt);
    EXPECT_EQ(presented(), QString()) << "a first launch is not a new version";
    advance(250);
    EXPECT_EQ(document().settings.lastSeenVersion, u"0"_s) << "of a build without a version";
}

TEST_F(LaunchTest, TheWalkthroughStartsOnceWithAMaskToPointAt) {
    desktop().screens.setPointerLocation({0, 0});
    openDashboard();
    advance(400);
    ASSERT_EQ(masks().size(), 1);
    EXPECT_EQ(masks().first().name, u"Mask 1"_s);
    EXPECT_EQ(masks().first().frame, (Rect{0, 0, 320, 180}));
    EXPECT_EQ(state().selectedMaskID.value(), masks().first().id);
    EXPECT_TRUE(announcements().isEmpty());
    state().createMask();
    state().onboardingStepIndex.set(3);
    state().startOnboardingIfNeeded();
    EXPECT_EQ(state().onboardingStepIndex.value(), 3) << "it runs already";

    state().finishOnboarding();
    EXPECT_EQ(state().onboardingStepIndex.value(), 0);
    EXPECT_EQ(presented(), QString());
    advance(250);
    restart();
    state().startOnboardingIfNeeded();
    EXPECT_EQ(presented(), QString());
    state().hasCompletedOnboarding.set(false);
    state().startOnboardingIfNeeded();
    EXPECT_EQ(presented(), u"onboarding"_s);
    EXPECT_EQ(masks().size(), 2);
    EXPECT_EQ(state().selectedMaskID.value(), masks().first().id);
}

TEST_F(LaunchTest, ReleaseNotesComeFromOneFetchThatSucceeded) {
    auto& loader = desktop().urlLoader;
    state().presentWhatsNew();
    EXPECT_EQ(presented(), u"whatsNew"_s);
    EXPECT_TRUE(loader.requests().isEmpty()) << "the sheet is there first";
    advance(0);
    ASSERT_EQ(loader.requests().size(), 1);
    state().presentWhatsNew();
    advance(0);
    ASSERT_EQ(loader.waitingCount(), 2U) << "fetches may overlap";

    loader.answer(UrlResponse{500, {}});
    advance(0);
    EXPECT_EQ(state().changelogError.value(), u"Could not load the latest release notes."_s);
    loader.answer(
        UrlResponse{200, R"({"version":"2","date":"","dateLabel":"","changes":["One"]})"});
    advance(0);
    ASSERT_TRUE(state().latestChangelog.value());
    EXPECT_EQ(state().latestChangelog.value()->changes, QStringList{u"One"_s});
    state().presentWhatsNew();
    advance(0);
    EXPECT_EQ(loader.requests().size(), 2) << "what was fetched is shown again";

    state().fetchLatestChangelog();
    EXPECT_EQ(state().changelogError.value(), std::nullopt);
    advance(15'000);
    EXPECT_TRUE(state().changelogError.value()) << "silence ends with the time limit";
    EXPECT_EQ(state().latestChangelog.value()->version, u"2"_s);

    qputenv("VEYLA_CHANGELOG_URL", "");
    state().fetchLatestChangelog();
    qunsetenv("VEYLA_CHANGELOG_URL");
    EXPECT_EQ(state().changelogError.value(), u"Invalid changelog URL."_s);
    state().fetchLatestChangelog();
    m_state.reset();
    EXPECT_EQ(loader.waitingCount(), 0U) << "nobody waits any more";
}

TEST_F(LaunchTest, HotKeysPerformTheirActionsAndFollowTheSettings) {
    auto& center = desktop().hotKeyCenter;
    const auto press = [&](quint32 keyCode, quint32 modifiers) {
        const bool isTaken = center.press({keyCode, modifiers});
        advance(0);
        return isTaken;
    };
    constexpr quint32 controlOptionCommand = 4096 + 2048 + 256;
    EXPECT_TRUE(press(45, controlOptionCommand));
    EXPECT_EQ(masks().size(), 1);
    EXPECT_TRUE(press(4, controlOptionCommand));
    EXPECT_FALSE(state().areMasksVisible.value());
    EXPECT_TRUE(press(37, controlOptionCommand));
    EXPECT_FALSE(state().isEditingEnabled.value());
    EXPECT_TRUE(press(1, controlOptionCommand));
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_TRUE(press(1, controlOptionCommand));
    EXPECT_FALSE(m_window->isVisible());

    const HotkeyBinding plainKey{45, 256};
    const QString createMask = hotkeyBindingKey(HotkeyAction::createMask);
    EXPECT_EQ(state().hotkeyConflict(createMask, {4, controlOptionCommand}),
              HotkeyAction::toggleAll);
    EXPECT_EQ(state().hotkeyConflict(createMask, {45, controlOptionCommand}), std::nullopt);
    state().settings.update([&](AppSettings& settings) {
        settings.hotkeyBindings = {{createMask, plainKey}};
    });
    EXPECT_TRUE(press(45, controlOptionCommand)) << "until they are registered again";
    state().registerHotkeysWithCurrentBindings();
    EXPECT_FALSE(press(45, controlOptionCommand));
    EXPECT_TRUE(press(45, 256));
    EXPECT_EQ(masks().size(), 3);
    EXPECT_EQ(state().hotkeyConflict(u"other"_s, plainKey), HotkeyAction::createMask);
    const auto hold = state().suspendHotkeys();
    EXPECT_FALSE(press(45, 256));
}

TEST_F(LaunchTest, SettingsDecideWhetherTheDashboardStays) {
    auto& host = desktop().applicationHost;
    openDashboard();
    const auto setMenuBarOnly = [&](bool isMenuBarOnly, bool showsDashboard) {
        state().settings.update([&](AppSettings& settings) {
            settings.menuBarOnlyMode = isMenuBarOnly;
            settings.showDashboardOnLaunch = showsDashboard;
        });
    };
    setMenuBarOnly(true, true);
    EXPECT_EQ(host.policy(), ActivationPolicy::regular);
    EXPECT_TRUE(m_window->isVisible());
    setMenuBarOnly(true, false);
    EXPECT_EQ(host.policy(), ActivationPolicy::accessory);
    EXPECT_FALSE(m_window->isVisible());
    state().openDashboardWindow();
    EXPECT_EQ(host.policy(), ActivationPolicy::regular);
    EXPECT_EQ(host.log().last(), u"activated"_s);
    EXPECT_TRUE(m_window->isVisible());
    state().settings.update([](AppSettings& settings) { settings.defaultOpacity = 0.5; });
    EXPECT_TRUE(m_window->isVisible()) << "nothing that the policy depends on has changed";
    setMenuBarOnly(true, true);
    setMenuBarOnly(true, false);
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(LaunchTest, WithoutATrayTheOnlyWindowStays) {
    WorkspaceSnapshot workspace;
    workspace.settings = AppSettings::defaults();
    workspace.settings.menuBarOnlyMode = true;
    workspace.settings.showDashboardOnLaunch = false;
    workspace.hasCompletedOnboarding = true;
    auto& tray = desktop().trayIcon;
    launch(workspace, u"2.0"_s);
    openDashboard();
    EXPECT_FALSE(m_window->isVisible()) << "before the tray is known";
    tray.setHasTray(false);
    tray.show({[](const QRect&) {}, {}});
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_EQ(desktop().applicationHost.policy(), ActivationPolicy::regular);
    for (const bool showsDashboard : {true, false})
        state().settings.update(
            [&](AppSettings& settings) { settings.showDashboardOnLaunch = showsDashboard; });
    EXPECT_TRUE(m_window->isVisible());

    // A tray that is there and starts again brings nothing up.
    tray.setHasTray(true);
    launch(workspace, u"2.0"_s);
    openDashboard();
    tray.setHasTray(false);
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(LaunchTest, TheDashboardIsTheFirstWindowThatCanBeOne) {
    auto& host = desktop().applicationHost;
    m_window.reset();
    host.closeWindows();
    EXPECT_FALSE(state().canOpenDashboardWindow());
    state().openDashboardWindow();
    QStringList opened;
    state().setOpenWindowAction([&](QLatin1StringView id) { opened << id; });
    EXPECT_TRUE(state().canOpenDashboardWindow());
    state().toggleDashboardWindow();
    EXPECT_EQ(opened, QStringList{u"dashboard"_s});

    host.addWindow(u"Menu"_s, true);
    host.addWindow(u"Veyla SETTINGS"_s);
    host.addWindow(u"Empty"_s, false, false);
    EXPECT_FALSE(state().isDashboardWindowVisible());
    const auto dashboard = host.addWindow(u"Veyla"_s);
    host.addWindow(u"Later"_s);
    state().openDashboardWindow();
    EXPECT_TRUE(dashboard->isVisible());
    EXPECT_EQ(opened.size(), 1);
}

TEST_F(LaunchTest, SharingShowsHiddenMasksOnceWhereThatIsWanted) {
    const RunningApplication recorder{u"OBS"_s, u"com.OBSproject.obs-studio.beta"_s};
    const auto share = [&](std::optional<bool> isWanted, bool areVisible) {
        state().settings.update(
            [&](AppSettings& settings) { settings.autoShowMasksOnScreenShare = isWanted; });
        state().areMasksVisible.set(areVisible);
        const auto before = announcements().size();
        desktop().workspace.launch(recorder);
        desktop().workspace.launch({u"Editor"_s, std::nullopt});
        advance(0);
        const auto announced = announcements().size() - before;
        const bool areShown = state().areMasksVisible.value();
        desktop().workspace.terminate(recorder);
        advance(0);
        EXPECT_EQ(state().areMasksVisible.value(), areShown) << "the end of sharing hid masks";
        return std::pair(areShown, announced);
    };
    EXPECT_EQ(share(true, false), std::pair(true, qsizetype{1}));
    EXPECT_EQ(lastAnnouncement(), u"Screen sharing detected — masks shown"_s);
    EXPECT_EQ(share(true, true), std::pair(true, qsizetype{0}));
    EXPECT_EQ(share(false, false), std::pair(false, qsizetype{0}));
    EXPECT_EQ(share(std::nullopt, false), std::pair(false, qsizetype{0}));

    // One that runs at the start counts as well.
    desktop().workspace.launch(recorder);
    state().settings.update(
        [](AppSettings& settings) { settings.autoShowMasksOnScreenShare = true; });
    state().areMasksVisible.set(false);
    advance(250);
    restart();
    advance(0);
    EXPECT_TRUE(state().areMasksVisible.value());
}

}  // namespace
