#include "support/AppStateFixture.h"
#include "support/Files.h"

#include <limits>

using namespace Qt::Literals::StringLiterals;

class AppStateTest : public AppStateFixture {};

TEST_F(AppStateTest, CreatesMasksAtThePointerInsideItsScreen) {
    const struct {
        Point pointer;
        MaskFrame frame;
    } cases[] = {
        {{640, 400}, {480, 310, 320, 180}},  {{10, 400}, {0, 310, 320, 180}},
        {{1279, 799}, {960, 590, 320, 180}}, {{1300, 5}, {1280, 0, 320, 180}},
        {{-500, 9000}, {0, 590, 320, 180}},  {{1300, 600}, {1280, 420, 320, 180}},
        {{1300, 0}, {960, 0, 320, 180}},
    };
    int number = 0;
    for (const auto& [pointer, frame] : cases) {
        desktop().screens.setPointerLocation(pointer);
        state().createMask();
        ++number;
        EXPECT_EQ(masks().last().frame, frame);
        EXPECT_EQ(masks().last().name, u"Mask %1"_s.arg(number));
        EXPECT_EQ(state().selectedMaskID.value(), masks().last().id);
        EXPECT_EQ(lastAnnouncement(), u"Created Mask %1"_s.arg(number));
    }
    EXPECT_EQ(desktop().announcer.lastPriority(), 90);
    EXPECT_EQ(masks().first().opacity, 0.86);
    EXPECT_EQ(masks().first().colorHex, u"#101114"_s);
    EXPECT_EQ(state().activeOverlayCount.value(), number);

    // On a visible area smaller than a new mask the right and top edges meet; the sync shrinks it.
    desktop().screens.setScreens({{u"A"_s, {0, 0, 200, 100}, {0, 0, 200, 100}, 1}});
    desktop().screens.setPointerLocation({100, 50});
    QList<MaskFrame> announced;
    const Subscription subscription = state().masks.subscribe(
        [&](const QList<ScreenMask>& all) { announced.append(all.last().frame); });
    state().createMask();
    EXPECT_EQ(announced.value(1), (MaskFrame{-120, -80, 320, 180}));
    EXPECT_EQ(masks().last().frame, (MaskFrame{0, 0, 200, 100}));

    desktop().screens.setScreens({});
    state().createMask();
    EXPECT_EQ(masks().last().frame, (MaskFrame{-60, -40, 320, 180}));
}

TEST_F(AppStateTest, ANewMaskTakesTheUsersDefaults) {
    state().settings.update([](AppSettings& settings) {
        settings.defaultOpacity = 0.5;
        settings.defaultColorHex = u"#FF0000"_s;
        settings.defaultStyle = ScreenMask::Style::frosted;
        settings.defaultClickThrough = true;
    });
    state().createMask();
    const ScreenMask& mask = masks().last();
    EXPECT_EQ(mask.opacity, 0.5);
    EXPECT_EQ(mask.colorHex, u"#FF0000"_s);
    EXPECT_EQ(mask.style, ScreenMask::Style::frosted);
    EXPECT_TRUE(mask.isClickThrough);
    EXPECT_TRUE(surface(0).ignoresMouseEvents());
}

TEST_F(AppStateTest, DuplicatesDeletesAndRenames) {
    const QUuid first = addMask(u"One"_s, {100, 100, 200, 100});
    state().masks.update([](QList<ScreenMask>& all) {
        all[0].groupID = QUuid::createUuid();
        all[0].isClickThrough = true;
        all[0].colorHex = u"junk"_s;
    });
    state().duplicateSelectedMask();
    EXPECT_EQ(masks().size(), 1) << "nothing is selected";

    state().selectMask(first);
    EXPECT_EQ(lastAnnouncement(), u"Selected One"_s);
    state().duplicateSelectedMask();
    state().duplicateSelectedMask();
    ASSERT_EQ(masks().size(), 3);
    EXPECT_EQ(masks()[2].name, u"One Copy Copy"_s);
    EXPECT_EQ(masks()[1].frame, (MaskFrame{124, 76, 200, 100}));
    EXPECT_FALSE(masks()[1].groupID.has_value());
    EXPECT_TRUE(masks()[1].isClickThrough);
    EXPECT_EQ(masks()[1].colorHex, u"junk"_s);
    EXPECT_EQ(state().selectedMaskID.value(), masks()[2].id);
    EXPECT_EQ(lastAnnouncement(), u"Duplicated as One Copy Copy"_s);

    state().setMaskName(first, u"  \n Secret \t"_s);
    state().setMaskName(first, u" \n "_s);
    EXPECT_EQ(masks()[0].name, u"Secret"_s);

    state().deleteSelectedMask();
    EXPECT_EQ(lastAnnouncement(), u"Deleted One Copy Copy"_s);
    EXPECT_EQ(state().selectedMaskID.value(), first);
    state().selectMask(QUuid::createUuid());
    EXPECT_EQ(lastAnnouncement(), u"Deleted One Copy Copy"_s)
        << "an unknown mask is selected in silence";
    state().deleteSelectedMask();
    EXPECT_EQ(lastAnnouncement(), u"Deleted Mask"_s);
    EXPECT_EQ(masks().size(), 2);
    state().deleteSelectedMask();
    state().deleteSelectedMask();
    EXPECT_FALSE(state().selectedMaskID.value().has_value());
    const auto count = announcements().size();
    state().deleteSelectedMask();
    EXPECT_EQ(announcements().size(), count);

    state().createMask();
    state().createMask();
    state().selectMask(masks()[0].id);
    state().deleteSelectedMask();
    state().createMask();
    EXPECT_EQ(masks()[0].name, masks()[1].name) << "names count masks, not creations";
}

TEST_F(AppStateTest, TogglesAreAnnouncedAndReachTheOverlays) {
    addMask(u"One"_s, {100, 100, 200, 100});
    addMask(u"Two"_s, {300, 300, 200, 100});
    state().selectMask(masks()[0].id);
    state().toggleSelectedMaskVisibility();
    EXPECT_EQ(lastAnnouncement(), u"One hidden"_s);
    EXPECT_EQ(state().activeOverlayCount.value(), 1);
    state().toggleVisibilityForAllMasks();
    EXPECT_EQ(lastAnnouncement(), u"All masks hidden"_s);
    EXPECT_EQ(state().activeOverlayCount.value(), 0);
    EXPECT_TRUE(m_harness.stack().empty());
    state().toggleSelectedMaskVisibility();
    EXPECT_EQ(lastAnnouncement(), u"One shown"_s);
    EXPECT_TRUE(m_harness.stack().empty()) << "the master switch still hides it";
    state().toggleVisibilityForAllMasks();
    EXPECT_EQ(lastAnnouncement(), u"All masks shown"_s);
    EXPECT_EQ(m_harness.stack(), (std::vector<QUuid>{masks()[0].id, masks()[1].id}));
    state().selectMask(masks()[0].id);
    EXPECT_EQ(m_harness.stack().back(), masks()[0].id) << "a selected mask comes to the front";

    state().toggleEditing();
    EXPECT_EQ(lastAnnouncement(), u"Editing locked"_s);
    EXPECT_TRUE(surface(0).ignoresMouseEvents() && surface(1).ignoresMouseEvents());
    state().toggleEditing();
    EXPECT_EQ(lastAnnouncement(), u"Editing unlocked"_s);
    EXPECT_FALSE(surface(0).ignoresMouseEvents());
}

TEST_F(AppStateTest, SettersStoreValuesAsGivenAndIgnoreUnknownMasks) {
    const QUuid id = addMask(u"One"_s, {100, 100, 200, 100});
    const QList<ScreenMask> before = masks();
    for (const QUuid& target : {QUuid::createUuid(), id}) {
        state().setOpacity(target, 7.5);
        state().setStyle(target, ScreenMask::Style::softTint);
        state().setColorHex(target, u"nonsense"_s);
        state().setClickThrough(target, true);
        state().setVisibility(target, false);
        state().updateMaskFrame(target, {10, 20, 300, 200});
        if (target != id) {
            EXPECT_EQ(masks(), before);
        }
    }
    const ScreenMask& mask = masks().first();
    EXPECT_EQ(mask.opacity, 7.5);
    EXPECT_EQ(mask.style, ScreenMask::Style::softTint);
    EXPECT_EQ(mask.colorHex, u"nonsense"_s);
    EXPECT_TRUE(mask.isClickThrough);
    EXPECT_FALSE(mask.isVisible);
    EXPECT_EQ(mask.frame, (MaskFrame{10, 20, 300, 200}));
    EXPECT_TRUE(announcements().isEmpty());

    state().nudgeSelectedMask(1, 1);
    state().resizeSelectedMask(1, 1);
    EXPECT_EQ(masks().first().frame, (MaskFrame{10, 20, 300, 200})) << "nothing is selected";
    state().selectedMaskID.set(id);
    state().nudgeSelectedMask(5, -10);
    state().resizeSelectedMask(-1000, -1000);
    EXPECT_EQ(masks().first().frame, (MaskFrame{15, 10, 60, 40}));
    state().nudgeSelectedMask(-5000, 0);
    EXPECT_EQ(masks().first().frame.x, 0) << "the overlay layer keeps it on its screen";
}

TEST_F(AppStateTest, SavesOnceAfterABurstOfChanges) {
    EXPECT_FALSE(QFile::exists(workspacePath()));
    advance(250);
    EXPECT_TRUE(QFile::exists(workspacePath())) << "written back once after the start";
    ASSERT_TRUE(QFile::remove(workspacePath()));
    advance(5000);
    EXPECT_FALSE(QFile::exists(workspacePath())) << "nothing changed";

    for (int i = 0; i < 10; ++i) {
        state().createMask();
        advance(20);
    }
    advance(229);
    EXPECT_FALSE(QFile::exists(workspacePath()));
    advance(1);
    const QByteArray text = workspaceText();
    EXPECT_EQ(WorkspaceSnapshot::fromJsonText(text).masks, masks());
    EXPECT_TRUE(desktop().mainLoop.isIdle());

    // A change to any part of the workspace alone is saved.
    const std::function<void()> changes[] = {
        [&] {
            state().groups.set({{QUuid::createUuid(), u"G"_s}});
        },
        [&] { state().presets.set({MaskPreset()}); },
        [&] { state().hasCompletedOnboarding.set(true); },
        [&] { state().settings.update([](AppSettings& s) { s.menuBarOnlyMode = true; }); },
        [&] { state().isEditingEnabled.set(false); },
        [&] { state().areMasksVisible.set(false); },
        [&] { state().selectedMaskID.set(std::nullopt); },
    };
    QByteArray previous = text;
    for (const auto& change : changes) {
        change();
        advance(250);
        EXPECT_NE(workspaceText(), previous);
        previous = workspaceText();
    }
    // What is not part of it is not.
    ASSERT_TRUE(QFile::remove(workspacePath()));
    state().isHelpPresented.set(true);
    state().presetDraftName.set(u"x"_s);
    advance(1000);
    EXPECT_FALSE(QFile::exists(workspacePath()));
}

TEST_F(AppStateTest, FindsEverythingAgainAfterARestart) {
    state().createMask();
    state().createMask();
    state().toggleEditing();
    state().toggleVisibilityForAllMasks();
    state().groups.set({{QUuid::createUuid(), u"Group"_s}});
    const auto savedMasks = masks();
    const auto savedSelection = state().selectedMaskID.value();
    advance(250);
    state().createMask();  // within the quiet time: not written
    restart();
    EXPECT_EQ(masks(), savedMasks);
    EXPECT_EQ(state().selectedMaskID.value(), savedSelection);
    EXPECT_FALSE(state().isEditingEnabled.value());
    EXPECT_FALSE(state().areMasksVisible.value());
    EXPECT_EQ(state().groups.value().size(), 1);
    EXPECT_EQ(desktop().overlaySurfaces.allSurfaces().size(), 2U);
    EXPECT_TRUE(m_harness.stack().empty());
    EXPECT_TRUE(m_log.lines.isEmpty());
}

TEST_F(AppStateTest, RunsOnWhenTheWorkspaceCannotBeReadOrWritten) {
    advance(250);
    writeFile(workspacePath(), "{ broken");
    restart();
    EXPECT_EQ(m_log.lines.size(), 1);
    EXPECT_TRUE(masks().isEmpty());
    AppSettings expected = AppSettings::defaults();
    expected.lastSeenVersion = QStringLiteral(VEYLA_VERSION);
    EXPECT_EQ(state().settings.value(), expected);
    state().createMask();
    EXPECT_EQ(state().activeOverlayCount.value(), 1);

    // A number that JSON cannot hold fails the save; the next change tries again.
    advance(250);
    const QByteArray good = workspaceText();
    state().setOpacity(masks()[0].id, std::numeric_limits<double>::infinity());
    advance(250);
    EXPECT_EQ(m_log.lines.size(), 2);
    EXPECT_TRUE(m_log.lines.last().startsWith(u"Veyla failed to save workspace: "_s));
    EXPECT_EQ(workspaceText(), good);
    state().setOpacity(masks()[0].id, 1);
    advance(250);
    EXPECT_NE(workspaceText(), good);
}

TEST_F(AppStateTest, DiesQuietlyWithWorkStillQueued) {
    state().createMask();
    HeadlessSurface& surfaceBefore = surface(0);
    EXPECT_TRUE(surfaceBefore.isShown());
    desktop().screens.setScreens({{u"A"_s, {0, 0, 640, 480}, {0, 0, 640, 480}, 1}});
    m_state.reset();
    advance(1000);
    EXPECT_TRUE(desktop().overlaySurfaces.allSurfaces().empty());
    EXPECT_FALSE(QFile::exists(workspacePath())) << "nothing is saved on the way out";
}
