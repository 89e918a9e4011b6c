#include "desktop/DashboardTest.h"
#include "support/Files.h"
#include "support/desktop/HttpServer.h"
#include "support/desktop/NeighbourProgram.h"

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
        return comesToBe([&] { return named(name); }, QList<QStringList>());
    }
    void loadNotesFrom(const QUrl& url) {
        environment.insert(u"VEYLA_CHANGELOG_URL"_s, url.toString());
        workspace.settings.lastSeenVersion = u"0.0.1"_s;
    }
};

}  // namespace

TEST_F(SheetsTest, AReaderTakesAPresetFromSavingToDeletion) {
    const NeighbourProgram editor(desktop.environment(), u"Editor"_s);
    openWithMask();
    shortcut('s');
    EXPECT_TRUE(shows({u"Save Preset"_s, u"Capture current masks as a reusable layout."_s,
                       u"preset-name-field"_s, u"preset-trigger-field"_s, u"Cancel"_s}));
    EXPECT_EQ(named(u"Save Preset"_s).value(0).value(2), u"dialog");
    EXPECT_TRUE(named(u"create-mask-button"_s).isEmpty()) << "what is behind is offered";
    ASSERT_TRUE(use({u"type"_s, u"preset-name-field"_s, u"Calls"_s}));
    ASSERT_TRUE(use({u"press"_s, u"preset-auto-apply-switch"_s}));
    EXPECT_TRUE(shows({u"Veyla itself is in front."_s}));
    ASSERT_TRUE(use({u"press"_s, u"preset-choose-app-button"_s}));
    ASSERT_TRUE(waitUntil([&] { return menu().has_value(); }));
    key(down);
    key(enter);
    EXPECT_TRUE(shows({u"Will auto-apply when Editor becomes active."_s}));
    ASSERT_TRUE(use({u"press"_s, u"save-preset-button"_s}));
    ASSERT_TRUE(becomes("presets", "name", u"Calls"_s));
    EXPECT_TRUE(shows({u"create-mask-button"_s, u"Presets: 1"_s, u"Auto for Editor • P0"_s,
                       u"Preset: Calls, 1 masks, trigger: Manual"_s, part("preset-card")}));

    for (const QStringList& arguments : {QStringList{u"press"_s, part("preset-manual")},
                                         {u"press"_s, part("preset-edit")},
                                         {u"type"_s, part("preset-draft-name"), u"Talks"_s},
                                         {u"press"_s, part("preset-save")}})
        EXPECT_TRUE(use(arguments)) << arguments.join(u' ').toStdString();
    EXPECT_TRUE(isSaved([](const auto& saved) {
        const MaskPreset preset = saved.presets.value(0);
        return preset.name == u"Talks" && !preset.autoApply && !preset.targetBundleIdentifier;
    }));
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

TEST_F(SheetsTest, ReleaseNotesComeAfterAnUpdate) {
    const QByteArray notes = R"({"version": "9.9", "date": "d", "dateLabel": "l", "tag": "beta",
        "changes": ["Same <b>", "Same <b>"]})";
    HttpServer server;
    loadNotesFrom(server.url(u"/notes"_s));
    server.answer("/notes",
                  {.announcedLength = notes.size(), .ending = HttpServer::Ending::stayOpen});
    openDashboard();
    EXPECT_TRUE(shows({u"What's New"_s, u"Version " VEYLA_VERSION ""_s, u"Loading release notes…"_s,
                       u"View full changelog"_s}));
    server.sendMore(notes);
    EXPECT_TRUE(shows({u"Version 9.9 · beta"_s, u"Same <b>"_s}));
    EXPECT_EQ(named(u"Same <b>"_s).size(), 2);
    EXPECT_TRUE(named(u"Loading release notes…"_s).isEmpty());
    ASSERT_TRUE(use({u"press"_s, u"whats-new-continue-button"_s}));
    EXPECT_TRUE(isGone(u"whats-new-view"_s));
    EXPECT_TRUE(isSaved([](const auto& saved) {
        return saved.settings.lastSeenVersion == QStringLiteral(VEYLA_VERSION);
    }));
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

    writeProgram(folder + u"/xdg-open"_s,
                 "#!/bin/sh\nprintf '%s\\n' \"$@\" >>'" + record.toUtf8() + "'\n");
    QByteArray expected;
    for (const auto* const link : {"Open Changelog", "View full changelog"}) {
        ASSERT_TRUE(shows({QString::fromLatin1(link)}));
        ASSERT_TRUE(use({u"press"_s, QString::fromLatin1(link)}));
        expected += "https://" VEYLA_WEB_HOST "/changelog\n";
        EXPECT_TRUE(comesToBe([&] { return readFile(record); }, expected));
        EXPECT_TRUE(isGone(failure));
    }
}
