#include "desktop/DashboardTest.h"
#include "support/desktop/HttpServer.h"

#include <QDir>
#include <QFile>

using namespace Qt::Literals::StringLiterals;

namespace {

class SheetsTest : public DashboardTest {
protected:
    void openWithMask() {
        workspace.selectedMaskID = addMask({1100, 20, 160, 90});
        openDashboard();
    }
    QString part(const char* name) {
        return QLatin1String(name) + u'-' + valueOf("presets", "id").toString();
    }
    /// Waits until the document holds that; what is changed is saved a moment later.
    testing::AssertionResult isSaved(const std::function<bool(const WorkspaceSnapshot&)>& holds) {
        if (waitUntil([&] { return holds(document()); })) return testing::AssertionSuccess();
        return testing::AssertionFailure() << document().toJsonText().constData();
    }
    testing::AssertionResult isGone(const QString& name) const {
        if (waitUntil([&] { return named(name).isEmpty(); })) return testing::AssertionSuccess();
        return testing::AssertionFailure() << name.toStdString() << " is there";
    }
    void type(const char* text) {
        for (const char* letter = text; *letter; ++letter)
            key(static_cast<std::uint32_t>(*letter));
    }
    void loadNotesFrom(const QUrl& url) {
        environment.insert(u"VEYLA_CHANGELOG_URL"_s, url.toString());
        workspace.settings.lastSeenVersion = u"0.0.1"_s;
    }
};

}  // namespace

TEST_F(SheetsTest, AReaderTakesAPresetFromSavingToDeletion) {
    openWithMask();
    shortcut('s');
    EXPECT_TRUE(shows({u"Save Preset"_s, u"Capture current masks as a reusable layout."_s,
                       u"preset-name-field"_s, u"preset-trigger-field"_s, u"Cancel"_s}));
    EXPECT_EQ(named(u"Save Preset"_s).value(0).value(2), u"dialog");
    EXPECT_TRUE(named(u"create-mask-button"_s).isEmpty()) << "what is behind is offered";
    ASSERT_TRUE(use({u"type"_s, u"preset-name-field"_s, u"Calls"_s}));
    ASSERT_TRUE(use({u"press"_s, u"preset-auto-apply-switch"_s}));
    EXPECT_TRUE(shows({u"Will auto-apply when Veyla becomes active."_s}));
    ASSERT_TRUE(use({u"press"_s, u"save-preset-button"_s}));
    ASSERT_TRUE(becomes("presets", "name", u"Calls"_s));
    EXPECT_TRUE(shows({u"create-mask-button"_s, u"Presets: 1"_s, u"Auto for Veyla • P0"_s,
                       u"Preset: Calls, 1 masks, trigger: Manual"_s, part("preset-card")}));

    const struct {
        QList<QStringList> uses;
        std::function<bool(const MaskPreset&)> holds;
    } steps[] = {
        {{}, [](const MaskPreset& all) { return all.autoApply && all.targetAppName == u"Veyla"; }},
        {{{u"press"_s, part("preset-manual")}},
         [](const MaskPreset& all) { return !all.autoApply && !all.targetBundleIdentifier; }},
        {{{u"press"_s, part("preset-bind")}},
         [](const MaskPreset& all) { return all.autoApply && all.targetBundleIdentifier; }},
        {{{u"press"_s, part("preset-edit")},
          {u"type"_s, part("preset-draft-name"), u"Talks"_s},
          {u"type"_s, part("preset-draft-trigger"), u"OBS"_s},
          {u"press"_s, part("preset-save")}},
         [](const MaskPreset& all) { return all.name == u"Talks" && all.trigger == u"OBS"; }},
    };
    for (const auto& step : steps) {
        for (const QStringList& arguments : step.uses)
            EXPECT_TRUE(use(arguments)) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(isSaved([&](const auto& saved) {
            return saved.presets.size() == 1 && step.holds(saved.presets.first());
        }));
    }
    const QJsonValue former = valueOf("masks", "id");
    ASSERT_TRUE(use({u"press"_s, part("preset-load")}));
    EXPECT_TRUE(waitUntil([&] { return valueOf("masks", "id") != former; }));
    EXPECT_EQ(status()[u"masks"].toArray().size(), 1);

    for (const auto* const ending : {"Cancel", "Delete Preset"}) {
        ASSERT_TRUE(use({u"press"_s, part("preset-delete")}));
        EXPECT_TRUE(shows({u"Delete \"Talks\"?"_s,
                           u"This preset and its 1 saved masks will be permanently removed."_s}));
        ASSERT_TRUE(use({u"press"_s, QString::fromLatin1(ending)}));
        EXPECT_TRUE(shows({u"create-mask-button"_s}));
    }
    EXPECT_TRUE(shows({u"No presets yet. Save your current layout."_s}));
    EXPECT_TRUE(isSaved([](const auto& saved) { return saved.presets.isEmpty(); }));
}

TEST_F(SheetsTest, TheKeyboardAloneTakesAPresetFromSavingToDeletion) {
    openWithMask();
    watchFocus();
    const auto hasKeyboard = [&](const QString& name) {
        if (waitUntil([&] { return focusChanges().last() == name; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << focusChanges().join(u'\n').toStdString();
    };
    shortcut('s');
    ASSERT_TRUE(hasKeyboard(u"Preset name"_s));
    type("calls");
    ASSERT_TRUE(tabTo(u"Trigger or app"_s));
    type("obs");
    pressIn(u"Auto-apply"_s, space);
    // Once around the sheet.
    ASSERT_TRUE(tabTo(u"Preset name"_s));
    ASSERT_TRUE(tabTo(u"Save"_s));
    input.typeKeysyms({control, erase});
    key(enter);
    ASSERT_TRUE(hasKeyboard(u"Dashboard"_s)) << "it goes back to where it was";
    ASSERT_TRUE(becomes("presets", "name", u"calls"_s));
    EXPECT_EQ(status()[u"masks"].toArray().size(), 1) << "a key for the sheet deletes the mask";
    EXPECT_TRUE(isSaved([](const auto& saved) {
        const MaskPreset preset = saved.presets.value(0);
        return preset.trigger == u"obs" && preset.autoApply;
    }));

    pressIn(u"Manual"_s, space);
    ASSERT_TRUE(hasKeyboard(u"Bind App"_s));
    pressIn(u"Edit preset"_s, space);
    ASSERT_TRUE(hasKeyboard(u"Preset name"_s));
    type("talks");
    ASSERT_TRUE(tabTo(u"Trigger"_s));
    type("x");
    key(enter);
    ASSERT_TRUE(hasKeyboard(u"Edit preset"_s));
    EXPECT_TRUE(isSaved([](const auto& saved) {
        const MaskPreset preset = saved.presets.value(0);
        return preset.name == u"talks" && preset.trigger == u"x" && !preset.autoApply;
    }));
    const QJsonValue former = valueOf("masks", "id");
    pressIn(u"Load"_s, space);
    EXPECT_TRUE(waitUntil([&] { return valueOf("masks", "id") != former; }));

    pressIn(u"Delete preset"_s, space);
    ASSERT_TRUE(hasKeyboard(u"Cancel"_s));
    key(enter);
    ASSERT_TRUE(hasKeyboard(u"Delete preset"_s)) << "the safe choice is where the keyboard starts";
    key(space);
    ASSERT_TRUE(hasKeyboard(u"Cancel"_s));
    pressIn(u"Delete Preset"_s, space);
    EXPECT_TRUE(isSaved([](const auto& saved) { return saved.presets.isEmpty(); }));
}

TEST_F(SheetsTest, ReleaseNotesComeAfterAnUpdate) {
    const QByteArray notes = R"({"version": "9.9", "date": "d", "dateLabel": "l", "tag": "beta",
        "changes": ["Same <b>", "Same <b>"]})";
    HttpServer server;
    loadNotesFrom(server.url(u"/notes"_s));
    const QString running = u"Version " VEYLA_VERSION ""_s;

    server.answer("/notes", {.status = 500});
    openDashboard();
    EXPECT_TRUE(shows({u"What's New"_s, running, u"Couldn't load the latest notes."_s,
                       u"You're on version " VEYLA_VERSION ". See the full changelog online."_s,
                       u"Open Changelog"_s}));
    key(escape);
    EXPECT_TRUE(isGone(u"whats-new-view"_s));
    EXPECT_TRUE(isSaved([](const auto& saved) {
        return saved.settings.lastSeenVersion == QStringLiteral(VEYLA_VERSION);
    }));

    server.answer("/notes",
                  {.announcedLength = notes.size(), .ending = HttpServer::Ending::stayOpen});
    openDashboard();
    EXPECT_TRUE(shows({running, u"Loading release notes…"_s, u"View full changelog"_s}));
    server.sendMore(notes);
    EXPECT_TRUE(shows({u"Version 9.9 · beta"_s, u"Same <b>"_s}));
    EXPECT_EQ(named(u"Same <b>"_s).size(), 2);
    EXPECT_TRUE(named(u"Loading release notes…"_s).isEmpty());
    ASSERT_TRUE(use({u"press"_s, u"whats-new-continue-button"_s}));
    EXPECT_TRUE(isGone(u"whats-new-view"_s));
}

TEST_F(SheetsTest, ALinkIsGivenToTheDesktopsOpener) {
    const QString folder = desktop.home().path() + u"/bin"_s;
    const QString record = desktop.home().path() + u"/opened"_s;
    ASSERT_TRUE(QDir().mkpath(folder));
    environment.insert(u"PATH"_s, folder);
    HttpServer server;
    loadNotesFrom(server.url(u"/nothing"_s));
    openDashboard();
    const auto failure = u"The page could not be opened: https://" VEYLA_WEB_HOST "/changelog"_s;
    ASSERT_TRUE(shows({u"Open Changelog"_s}));
    ASSERT_TRUE(use({u"press"_s, u"Open Changelog"_s}));
    EXPECT_TRUE(shows({failure})) << "no opener";
    m_expectedLog =
        "Unable to detect a web browser to launch 'https://" VEYLA_WEB_HOST "/changelog'\n";

    QFile opener(folder + u"/xdg-open"_s);
    ASSERT_TRUE(opener.open(QIODevice::WriteOnly));
    opener.write("#!/bin/sh\nprintf '%s\\n' \"$@\" >>'" + record.toUtf8() + "'\n");
    opener.close();
    ASSERT_TRUE(opener.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QByteArray expected;
    for (const auto* const link : {"Open Changelog", "View full changelog"}) {
        ASSERT_TRUE(shows({QString::fromLatin1(link)}));
        ASSERT_TRUE(use({u"press"_s, QString::fromLatin1(link)}));
        expected += "https://" VEYLA_WEB_HOST "/changelog\n";
        QByteArray opened;
        EXPECT_TRUE(waitUntil([&] {
            QFile file(record);
            if (file.open(QIODevice::ReadOnly)) opened = file.readAll();
            return opened == expected;
        })) << opened.constData();
        EXPECT_TRUE(isGone(failure));
    }
}

TEST_F(SheetsTest, HelpAtLaunchComesFirstAndItsEndIsTheWalkthroughsEnd) {
    HttpServer server;
    loadNotesFrom(server.url());
    workspace.settings.showHelpOnLaunch = true;
    openDashboard();
    EXPECT_TRUE(shows({u"help-view"_s, u"How Veyla Works"_s}));
    EXPECT_TRUE(named(u"whats-new-view"_s).isEmpty() && server.requests().isEmpty());
    input.typeKeysyms({alt, 'v'});
    ASSERT_TRUE(waitUntil([&] { return menu().has_value(); }));
    ASSERT_TRUE(use({u"press"_s, u"Show Walkthrough"_s}));
    EXPECT_TRUE(isSaved([](const auto& saved) { return !saved.hasCompletedOnboarding; }));
    key(escape);
    EXPECT_TRUE(waitUntil([&] { return !menu().has_value(); }));
    // From the menu bar, and then from the sheet.
    key(escape);
    EXPECT_TRUE(shows({u"help-view"_s}));
    key(escape);
    EXPECT_TRUE(isGone(u"help-view"_s));
    EXPECT_TRUE(isSaved([](const auto& saved) { return saved.hasCompletedOnboarding; }));
    EXPECT_TRUE(named(u"onboarding-overlay"_s).isEmpty());
}
