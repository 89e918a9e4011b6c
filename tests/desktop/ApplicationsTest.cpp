#include "Platform/Qt/BusNameWatch.h"
#include "desktop/VeylaTest.h"
#include "support/Files.h"
#include "support/desktop/NeighbourProgram.h"

#include <QDBusConnection>
#include <QJsonArray>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The running program with other applications around it.
class ApplicationsTest : public VeylaTest {
protected:
    explicit ApplicationsTest(const QStringList& serverArguments = {})
        : VeylaTest({.server = {.extraArguments = serverArguments}, .hasAccessibilityBus = true}) {}

    std::unique_ptr<NeighbourProgram> launch(const QString& windowClass, int windowCount = 1) {
        return std::make_unique<NeighbourProgram>(desktop.environment(), windowClass, windowCount);
    }

    /// A program called `name` without a window.
    std::unique_ptr<ChildProcess> launchWindowless(const QString& name) {
        return NeighbourProgram::start(desktop.environment(), desktop.home().path(), name,
                                       {u"hidden"_s});
    }

    testing::AssertionResult frontmostBecomes(const QString& name, const QString& identifier) {
        return comesToBe([&] { return status()[u"frontmost"_s].toObject(); },
                         QJsonObject{{u"name"_s, name}, {u"bundleIdentifier"_s, identifier}});
    }

    bool sharingBecomes(bool isSharing) {
        return waitUntil([&] { return status()[u"isLikelyScreenSharing"_s] == isSharing; });
    }

    QStringList maskNames() {
        QStringList names;
        for (const QJsonValue& mask : status()[u"masks"_s].toArray())
            names << mask[u"name"_s].toString();
        return names;
    }

    /// A preset of one mask that bears the preset's name.
    void addPreset(const QString& name, const QString& identifier) {
        ScreenMask mask;
        mask.id = QUuid::createUuid();
        mask.name = name;
        mask.frame = {100, 100, 300, 200};
        workspace.presets.append({.id = QUuid::createUuid(),
                                  .name = name,
                                  .trigger = {},
                                  .masks = {mask},
                                  .autoApply = true,
                                  .targetAppName = name,
                                  .targetBundleIdentifier = identifier});
    }
};

class OldServerTest : public ApplicationsTest {
protected:
    OldServerTest() : ApplicationsTest({u"-extension"_s, u"X-Resource"_s}) {}
};

TEST(BusNameWatch, HearsWhichProcessTakesAName) {
    std::vector<pid_t> processes;
    const BusNameWatch watch([&](pid_t process) { processes.push_back(process); });
    QDBusConnection service =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"service"_s);
    ASSERT_TRUE(service.registerService(u"app.veyla.Service"_s));
    EXPECT_TRUE(waitUntil([&] { return processes == std::vector{getpid()}; }));
    QDBusConnection::disconnectFromBus(u"service"_s);
}

TEST_F(ApplicationsTest, TheFocusTellsWhichPresetAppliesUnderTheNamesOfDesktopEntries) {
    writeFile(desktop.home().dataFolder() + u"/applications/org.example.Editor.desktop"_s,
              "[Desktop Entry]\nType=Application\nName=Editor\nName[de]=Bearbeiter\n"
              "StartupWMClass=editor-window\n");
    environment.insert(u"LANG"_s, u"de_DE.UTF-8"_s);
    addPreset(u"For Mail"_s, u"Mail"_s);
    const auto editor = launch(u"Editor-Window"_s, 2);
    start();
    EXPECT_TRUE(frontmostBecomes(u"Bearbeiter"_s, u"org.example.Editor"_s));
    const auto mail = launch(u"Mail"_s);
    EXPECT_TRUE(frontmostBecomes(u"Mail"_s, u"Mail"_s));
    EXPECT_TRUE(waitUntil([&] { return maskNames() == QStringList(u"For Mail"_s); }));
    neighbour.requestActivation(editor->windows()[0]);
    EXPECT_TRUE(frontmostBecomes(u"Bearbeiter"_s, u"org.example.Editor"_s));
    const auto zoom = launch(u"zoom"_s);
    EXPECT_TRUE(frontmostBecomes(u"zoom"_s, u"us.zoom.xos"_s));
}

TEST_F(ApplicationsTest, MasksAppearWhenACapturingProgramStarts) {
    const QUuid mask = addMask({100, 500, 300, 200});
    workspace.settings.autoShowMasksOnScreenShare = true;
    start();
    const auto watcher = assistiveWatcher(u"watch"_s);
    const auto announcements = [&] { return linesOf(*watcher).filter(u"object:announcement"_s); };
    const auto masksShown = u"object:announcement 2 Screen sharing detected \u2014 masks shown"_s;
    const auto isShown = [&](bool isExpected) {
        return waitUntil([&] { return windowOf(mask)->isMapped == isExpected; });
    };
    const auto hide = [&] {
        EXPECT_EQ(run({u"hide-masks"_s}).status, 0);
        EXPECT_TRUE(isShown(false));
    };
    hide();
    auto zoom = launch(u"zoom"_s);
    EXPECT_TRUE(isShown(true));
    zoom.reset();
    EXPECT_TRUE(sharingBecomes(false));
    hide();
    auto recorder = launchWindowless(u"x11vnc"_s);
    EXPECT_TRUE(isShown(true));
    recorder.reset();
    EXPECT_TRUE(sharingBecomes(false));
    // With masks on screen there is nothing to do or say.
    recorder = launchWindowless(u"kazam"_s);
    EXPECT_TRUE(sharingBecomes(true));
    run({u"toggle-editing"_s});
    EXPECT_TRUE(waitUntil([&] { return announcements().size() == 5; }));
    EXPECT_EQ(announcements(), (QStringList{u"object:announcement 2 All masks hidden"_s, masksShown,
                                            u"object:announcement 2 All masks hidden"_s, masksShown,
                                            u"object:announcement 2 Editing locked"_s}));
}

TEST_F(ApplicationsTest, WindowsAndProgramsMayVanishAtAnyTime) {
    addMask({100, 500, 300, 200});
    start();
    std::vector<std::unique_ptr<ChildProcess>> fleeting;
    for (int round = 0; round < 60; ++round) {
        // Ids of windows and of clients are used again, for another class each time.
        const QString name = round % 2 == 0 ? u"obs"_s : u"Fleeting"_s;
        fleeting.push_back(NeighbourProgram::start(desktop.environment(), desktop.home().path(),
                                                   name, {u"vanish"_s, name}));
        if (round % 4 != 3) continue;
        for (const auto& program : fleeting)
            EXPECT_EQ(program->waitForExit(defaultWait), 0);
        fleeting.clear();
    }
    EXPECT_TRUE(sharingBecomes(false));
    // A manager of its own: this one may be confused by now.
    desktop.changeWindowManager({u"openbox"_s});
    const auto editor = launch(u"Editor"_s);
    EXPECT_TRUE(frontmostBecomes(u"Editor"_s, u"Editor"_s));
}

TEST_F(OldServerTest, ProgramsAreBelievedAboutTheirProcess) {
    start();
    const auto studio = NeighbourProgram::start(desktop.environment(), desktop.home().path(),
                                                u"obs"_s, {u"windows"_s, u"Unheard-Of"_s, u"1"_s});
    EXPECT_TRUE(frontmostBecomes(u"Unheard-Of"_s, u"com.obsproject.obs-studio"_s));
}

}  // namespace
