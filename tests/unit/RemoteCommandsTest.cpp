#include "App/RemoteCommands.h"
#include "support/AppStateFixture.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace {

class RemoteCommandsTest : public AppStateFixture {
protected:
    void perform(const QStringList& arguments) {
        EXPECT_EQ(commands.perform(arguments), CommandResult())
            << arguments.join(u' ').toStdString();
    }

    QJsonObject status() {
        const CommandResult result = commands.perform({u"status"_s, u"--json"_s});
        EXPECT_EQ(result.status, ExitStatus::done);
        EXPECT_EQ(result.output.count(u'\n'), 0);
        return QJsonDocument::fromJson(result.output.toUtf8()).object();
    }

    static ScreenMask mask(const QString& name) {
        return {
            QUuid::createUuid(),        name, {10.5, 20, 300, 200}, 0.5, u"#112233"_s, true, false,
            ScreenMask::Style::frosted, {}};
    }

    static MaskPreset preset(const QString& name, const QList<ScreenMask>& masks) {
        return {QUuid::createUuid(), name, u"Manual"_s, masks, false, {}, {}, 7};
    }

    std::shared_ptr<HeadlessWindow> dashboard = desktop().applicationHost.addWindow(u"Veyla"_s);
    int quitRequests = 0;
    RemoteCommands commands{state(), [this] { ++quitRequests; }};
};

TEST_F(RemoteCommandsTest, DrivesTheApplicationState) {
    perform({u"create-mask"_s});
    EXPECT_EQ(masks().size(), 1);
    perform({u"toggle-masks"_s});
    EXPECT_FALSE(state().areMasksVisible.value());
    perform({u"toggle-editing"_s});
    EXPECT_FALSE(state().isEditingEnabled.value());
    perform({u"toggle-dashboard"_s});
    EXPECT_TRUE(dashboard->isVisible());
    perform({u"toggle-dashboard"_s});
    EXPECT_FALSE(dashboard->isVisible());
    EXPECT_EQ(quitRequests, 0);
    perform({u"quit"_s});
    EXPECT_EQ(quitRequests, 1);
}

TEST_F(RemoteCommandsTest, AnnouncesShowAndHideOnlyWhenTheyChangeSomething) {
    perform({u"show-masks"_s});
    EXPECT_TRUE(announcements().isEmpty());
    perform({u"hide-masks"_s});
    perform({u"hide-masks"_s});
    EXPECT_FALSE(state().areMasksVisible.value());
    perform({u"show-masks"_s});
    EXPECT_TRUE(state().areMasksVisible.value());
    EXPECT_EQ(announcements(), (QStringList{u"All masks hidden"_s, u"All masks shown"_s}));
}

TEST_F(RemoteCommandsTest, AppliesTheFirstPresetOfExactlyThatName) {
    ScreenMask grouped = mask(u"First"_s);
    grouped.groupID = QUuid::createUuid();
    state().presets.set({preset(u"work"_s, {mask(u"Other"_s)}),
                         preset(u"Work"_s, {grouped, mask(u"Second"_s)}), preset(u"Work"_s, {})});
    state().areMasksVisible.set(false);
    perform({u"apply-preset"_s, u"Work"_s});

    ASSERT_EQ(masks().size(), 2);
    EXPECT_EQ(masks()[0].name, u"First"_s);
    EXPECT_NE(masks()[0].id, grouped.id);
    EXPECT_NE(masks()[0].id, masks()[1].id);
    EXPECT_EQ(masks()[0].groupID, std::nullopt);
    EXPECT_EQ(masks()[0].style, ScreenMask::Style::frosted);
    EXPECT_EQ(masks()[0].opacity, 0.5);
    EXPECT_EQ(state().selectedMaskID.value(), masks()[0].id);
    EXPECT_TRUE(state().areMasksVisible.value());
    EXPECT_EQ(state().activeOverlayCount.value(), 2);
    state().deleteSelectedMask();
    perform({u"undo"_s});
    EXPECT_EQ(masks().size(), 2);

    const QUuid earlierID = masks()[0].id;
    perform({u"apply-preset"_s, u"Work"_s});
    EXPECT_NE(masks().first().id, earlierID);
    EXPECT_EQ(announcements(), (QStringList{u"Deleted First"_s, u"Restored First"_s}));
}

TEST_F(RemoteCommandsTest, ApplyingAnEmptyPresetLeavesNothingSelected) {
    state().createMask();
    state().applyPreset(preset(u"None"_s, {}));
    EXPECT_TRUE(masks().isEmpty());
    EXPECT_EQ(state().selectedMaskID.value(), std::nullopt);
    EXPECT_TRUE(desktop().overlaySurfaces.shownSurfaces().empty());
}

TEST_F(RemoteCommandsTest, TellsInOneLineWhatItCannotDo) {
    state().presets.set({preset(u"Work"_s, {})});
    EXPECT_EQ(commands.perform({u"apply-preset"_s, u" Work\n"_s}),
              (CommandResult{ExitStatus::nothingToActOn, QString(),
                             u"No preset is named \" Work\\n\"."_s}));
    EXPECT_EQ(commands.perform({u"undo"_s}), (CommandResult{ExitStatus::nothingToActOn, QString(),
                                                            u"There is nothing to undo."_s}));
    EXPECT_EQ(commands.perform({u"explode"_s}).status, ExitStatus::wrongUsage);

    desktop().applicationHost.closeWindows();
    dashboard.reset();
    EXPECT_EQ(commands.perform({u"toggle-dashboard"_s}),
              (CommandResult{ExitStatus::nothingToActOn, QString(),
                             u"There is no dashboard to open."_s}));

    state().createMask();
    state().setOpacity(masks().first().id, std::numeric_limits<double>::infinity());
    const CommandResult unwritable = commands.perform({u"status"_s, u"--json"_s});
    EXPECT_EQ(unwritable.status, ExitStatus::nothingToActOn);
    EXPECT_TRUE(unwritable.error.contains(u"masks[0].opacity"_s)) << unwritable.error.toStdString();
}

TEST_F(RemoteCommandsTest, StartingAgainShowsTheDashboardAndInTheBackgroundDoesNot) {
    const QString line =
        u"Veyla is already running (pid %1)."_s.arg(QCoreApplication::applicationPid());
    EXPECT_EQ(commands.perform({u"--background"_s}).output, line);
    EXPECT_FALSE(dashboard->isVisible());
    const CommandResult result = commands.perform({});
    EXPECT_EQ(result, (CommandResult{ExitStatus::done, line, QString()}));
    EXPECT_TRUE(dashboard->isVisible());
}

TEST_F(RemoteCommandsTest, StatusTellsScriptsEverything) {
    const QJsonObject empty = status();
    EXPECT_EQ(empty.keys(),
              (QStringList{u"activeOverlayCount"_s, u"areMasksVisible"_s, u"dashboardVisible"_s,
                           u"frontmost"_s, u"groups"_s, u"hotkeys"_s, u"isEditingEnabled"_s,
                           u"isLikelyScreenSharing"_s, u"masks"_s, u"pid"_s, u"presets"_s,
                           u"selectedMaskID"_s, u"version"_s}));
    EXPECT_TRUE(empty[u"selectedMaskID"].isNull());
    EXPECT_EQ(empty[u"masks"], QJsonValue(QJsonArray()));
    EXPECT_EQ(empty[u"frontmost"],
              QJsonValue(QJsonObject{{u"name"_s, u"Unknown App"_s}, {u"bundleIdentifier"_s, {}}}));

    const MaskGroup group{QUuid::createUuid(), u"Grüppe"_s, false, true, true};
    ScreenMask grouped = mask(u"B"_s);
    grouped.groupID = group.id;
    state().groups.set({group});
    state().masks.set({mask(u"A"_s), grouped});
    state().presets.set({preset(u"Work"_s, {})});
    state().selectedMaskID.set(grouped.id);
    state().toggleVisibilityForAllMasks();
    desktop().hotKeyCenter.occupy({45, 6400});
    state().registerHotkeysWithCurrentBindings();
    desktop().workspace.activate({u"App"_s, u"org.example.App"_s});
    desktop().workspace.launch({u"OBS"_s, u"com.obsproject.obs-studio"_s});
    advance(1);
    state().openDashboardWindow();

    const QJsonObject full = status();
    EXPECT_EQ(full[u"pid"].toInteger(), QCoreApplication::applicationPid());
    EXPECT_EQ(full[u"masks"][0][u"groupID"], QJsonValue(QJsonValue::Null));
    const QString expected =
        uR"({"mask": {"id": "%1", "name": "B", "opacity": 0.5,
            "frame": {"x": 10.5, "y": 20, "width": 300, "height": 200}, "isVisible": true,
            "isClickThrough": false, "style": "frosted", "colorHex": "#112233", "groupID": "%2"},
        "group": {"id": "%2", "name": "Grüppe", "isExpanded": false, "isVisible": true,
            "isLocked": true},
        "preset": {"id": "%3", "name": "Work", "priority": 7},
        "hotkey": {"action": "createMask", "display": "⌃⌥⌘N", "isRegistered": false}})"_s;
    const auto parts =
        QJsonDocument::fromJson(expected
                                    .arg(uuidText(grouped.id), uuidText(group.id),
                                         uuidText(state().presets.value().first().id))
                                    .toUtf8());
    EXPECT_EQ(full[u"masks"][1], parts[u"mask"]);
    EXPECT_EQ(full[u"groups"][0], parts[u"group"]);
    EXPECT_EQ(full[u"presets"][0], parts[u"preset"]);
    EXPECT_EQ(full[u"hotkeys"][0], parts[u"hotkey"]);
    EXPECT_EQ(full[u"hotkeys"][3][u"isRegistered"], QJsonValue(true));
    EXPECT_EQ(full[u"selectedMaskID"].toString(), uuidText(grouped.id));
    EXPECT_EQ(full[u"activeOverlayCount"], QJsonValue(0));
    for (const auto& [flag, value] : {std::pair("areMasksVisible", false),
                                      {"isEditingEnabled", true},
                                      {"dashboardVisible", true},
                                      {"isLikelyScreenSharing", true}})
        EXPECT_EQ(full[QLatin1StringView(flag)], QJsonValue(value)) << flag;
    EXPECT_EQ(full[u"frontmost"][u"bundleIdentifier"], QJsonValue(u"org.example.App"_s));
}

TEST_F(RemoteCommandsTest, StatusTellsPeopleInAlignedColumns) {
    ScreenMask longNamed = mask(u"Long\nname"_s);
    longNamed.style = ScreenMask::Style::softTint;
    longNamed.opacity = 1;
    state().masks.set({mask(u"A"_s), longNamed});
    const QStringList lines = commands.perform({u"status"_s}).output.split(u'\n');
    const QString expected = QStringLiteral(R"(
Masks (2)
  Visible  Click-through  Style      Opacity  Colour     Size       Position  Name
  yes      no             Frosted    50 %     "#112233"  300 x 200  10.5, 20  "A"
  yes      no             Soft Tint  100 %    "#112233"  300 x 200  10.5, 20  "Long\nname"

Presets (0)

Groups (0)

Hot keys (4)
  Works  Keys  Action
  yes    ⌃⌥⌘N  Create New Mask)");
    EXPECT_TRUE(lines.join(u'\n').contains(expected)) << lines.join(u'\n').toStdString();
    EXPECT_TRUE(lines.contains(u"On screen       2"_s)) << lines.join(u'\n').toStdString();
}

}  // namespace
