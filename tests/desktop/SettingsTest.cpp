#include "Platform/Qt/AutostartEntry.h"
#include "Platform/WriteSignals.h"
#include "desktop/DashboardTest.h"
#include "support/FileSizeLimit.h"
#include "support/Files.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

namespace {

using Keycode = std::uint8_t;
// As the server numbers them, whatever the layout.
constexpr Keycode escapeKey = 9, keyQ = 24, controlKey = 37, keyL = 46, shiftKey = 50, keyN = 57,
                  altKey = 64, capsLock = 66, superKey = 133;

class SettingsTest : public DashboardTest {
protected:
    /// With a mask selected, so that the card is there.
    void openCard() {
        addMask({1100, 20, 160, 90});
        workspace.selectedMaskID = workspace.masks[0].id;
        openDashboard();
        watchFocus();
    }

    static QString fieldOf(HotkeyAction action) {
        return u"hotkey-field-"_s + hotkeyBindingKey(action);
    }
    /// Starts to record as a reader's user would; returns when the keyboard is there.
    void startRecording(HotkeyAction action) {
        const qsizetype before = focusChanges().size();
        ASSERT_TRUE(use({u"press"_s, fieldOf(action)}));
        ASSERT_TRUE(waitUntil([&] {
            return focusChanges().size() > before &&
                   focusChanges().last() ==
                       u"Press the new shortcut for "_s + hotkeyActionTitle(action);
        })) << focusChanges().join(u'\n').toStdString();
    }
    /// What `status` tells of a hot key.
    QJsonObject hotkey(HotkeyAction action) {
        return status()[u"hotkeys"].toArray().at(static_cast<int>(action) - 1).toObject();
    }
    testing::AssertionResult displays(HotkeyAction action, const QString& text) {
        return comesToBe([&] { return hotkey(action)[u"display"].toString(); }, text);
    }
    bool createsMask(const std::vector<Keycode>& chord) {
        const qsizetype before = maskWindowCount();
        input.typeChord(chord);
        return waitUntil([&] { return maskWindowCount() == before + 1; });
    }

    xcb_window_t settingsWindow() const {
        for (const xcb_window_t id : probe.numbersOf(probe.root(), u"_NET_CLIENT_LIST"_s))
            if (probe.textOf(id, u"_NET_WM_NAME"_s).value_or(QString()).contains(u"Settings"_s))
                return id;
        return XCB_NONE;
    }
    bool isActive(xcb_window_t window) const {
        return window != XCB_NONE && probe.activeWindow() == window;
    }
    testing::AssertionResult opensSettings() {
        input.typeKeysyms({control, ','});
        if (waitUntil([&] { return isActive(settingsWindow()); }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "the settings are not in front";
    }

    using enum HotkeyAction;
};

TEST_F(SettingsTest, RecordsThePhysicalKeyOnAnotherLayoutForGood) {
    setLayout({u"fr"_s});
    openCard();
    startRecording(createMask);
    for (const std::vector<Keycode>& ignored :
         {std::vector<Keycode>{keyQ}, {escapeKey}, {controlKey, altKey}, {superKey}, {altKey}})
        input.typeChord(ignored);
    // A hot key of Veyla's own is a combination like any other now.
    input.typeChord({controlKey, altKey, superKey, keyL});
    EXPECT_TRUE(shows({u"Conflicts with Lock/Unlock Editing"_s,
                       u"Create New Mask conflicts with Lock/Unlock Editing"_s}));
    EXPECT_TRUE(status()[u"isEditingEnabled"].toBool());

    // A shortcut of the menu, and then the place of Q, where this layout has A.
    startRecording(createMask);
    input.typeChord({controlKey, altKey, keyN});
    EXPECT_TRUE(displays(createMask, u"⌃⌥N"_s));
    startRecording(createMask);
    input.typeChord({controlKey, shiftKey, superKey, keyQ});
    EXPECT_TRUE(displays(createMask, u"⌃⇧⌘Q"_s));
    EXPECT_EQ(maskWindowCount(), 1) << "a recorded key did something else too";

    const auto window = neighbour.open({.frame = {0, 0, 200, 200}});
    neighbour.requestActivation(window);
    ASSERT_TRUE(waitUntil([&] { return isActive(window); }));
    EXPECT_TRUE(createsMask({controlKey, shiftKey, superKey, keyQ}));
    const HotkeyBinding expected{12, HotkeyBinding::controlModifier | HotkeyBinding::shiftModifier |
                                         HotkeyBinding::commandModifier};
    EXPECT_TRUE(waitUntil([&] {
        return document().settings.hotkeyBindings.value(u"createMask"_s) == expected &&
               document().masks.size() == 2;
    }));
    EXPECT_EQ(quit(), 0);
    workspace = document();
    restart();
    EXPECT_TRUE(createsMask({controlKey, shiftKey, superKey, keyQ}));
    input.typeChord({controlKey, altKey, superKey, keyN});
    input.typeChord({controlKey, altKey, superKey, keyL});
    EXPECT_TRUE(waitUntil([&] { return !status()[u"isEditingEnabled"].toBool(true); }));
    EXPECT_EQ(maskWindowCount(), 3) << "the former combination still works";
}

TEST_F(SettingsTest, ACombinationThatAnotherProgramHoldsIsToldInTheRow) {
    openCard();
    // With Caps Lock only: without it the combination comes here and can be recorded.
    ASSERT_TRUE(neighbour.grabKey(keyQ, 4 + 2));
    startRecording(toggleAll);
    input.typeChord({controlKey, keyQ});
    EXPECT_TRUE(displays(toggleAll, u"⌃Q"_s));
    EXPECT_FALSE(hotkey(toggleAll)[u"isRegistered"].toBool(true));
    EXPECT_TRUE(shows({u"Not working: another program may be using this shortcut."_s}));
    m_expectedLog = "Veyla cannot use the shortcut ⌃Q (Ctrl+Q): another program holds it\n";
    EXPECT_TRUE(use({u"press"_s, u"hotkeys-reset-button"_s}));
    EXPECT_TRUE(displays(toggleAll, u"⌃⌥⌘H"_s));
    EXPECT_TRUE(hotkey(toggleAll)[u"isRegistered"].toBool());
}

TEST_F(SettingsTest, AReaderSetsThem) {
    openCard();
    AppSettings expected = workspace.settings;
    expected.lastSeenVersion = QStringLiteral(VEYLA_VERSION);
    EXPECT_TRUE(use({u"press"_s, u"behavior-auto-show-masks-on-screen-share"_s}));
    expected.autoShowMasksOnScreenShare = true;
    EXPECT_TRUE(waitUntil([&] { return document().settings == expected; }));

    ASSERT_TRUE(opensSettings());
    for (const QStringList& arguments :
         {QStringList{u"set"_s, u"settings-default-opacity"_s, u"0.5"_s},
          {u"press"_s, u"settings-default-style-softTint"_s},
          {u"press"_s, u"settings-default-click-through"_s},
          {u"press"_s, u"settings-default-color-40204A"_s}})
        EXPECT_TRUE(use(arguments)) << arguments.join(u' ').toStdString();
    EXPECT_TRUE(shows({u"Opacity 50%"_s}));
    expected.defaultOpacity = 0.5;
    expected.defaultStyle = ScreenMask::Style::softTint;
    expected.defaultClickThrough = true;
    expected.defaultColorHex = u"#40204A"_s;
    EXPECT_TRUE(waitUntil([&] { return document().settings == expected; }));
}

TEST_F(SettingsTest, TheWindowComesToTheFrontAndIsNotTheDashboard) {
    openDashboard();
    const xcb_window_t main = dashboard();
    ASSERT_TRUE(opensSettings());
    EXPECT_EQ(probe.geometry(settingsWindow())->size(), QSize(560, 620));
    // The settings may still be about to come to the front for the second time.
    ASSERT_TRUE(waitUntil([&] {
        neighbour.requestActivation(main);
        return isActive(main);
    }));
    ASSERT_TRUE(opensSettings());
    run({u"toggle-dashboard"_s});
    EXPECT_TRUE(showsDashboard(false));
    EXPECT_NE(settingsWindow(), XCB_NONE);
    shortcut('n');
    EXPECT_TRUE(waitUntil([&] { return maskWindowCount() == 1; }))
        << "only the dashboard has menus";
    key(escape);
    EXPECT_TRUE(waitUntil([&] { return settingsWindow() == XCB_NONE; }));
    run({u"toggle-dashboard"_s});
    ASSERT_TRUE(showsDashboard());
    ASSERT_TRUE(waitUntil([&] { return isInFront(); }));
    ASSERT_TRUE(opensSettings());
    input.typeKeysyms({control, 'w'});
    EXPECT_TRUE(waitUntil([&] { return settingsWindow() == XCB_NONE; }));
    EXPECT_TRUE(showsDashboard()) << "the other window closed";
}

TEST_F(SettingsTest, StartsAtLoginAsLongAsTheSwitchIsOn) {
    const QString path = desktop.home().configFolder() + u"/autostart/app.veyla.Veyla.desktop"_s;
    const AutostartEntry entry(path, QStringLiteral(VEYLA_PROGRAM));
    openDashboard();
    ASSERT_TRUE(opensSettings());
    const auto name = u"settings-start-at-login"_s;
    ASSERT_TRUE(use({u"press"_s, name}));
    EXPECT_TRUE(waitUntil([&] { return entry.isEnabled(); }));
    ASSERT_TRUE(use({u"press"_s, name}));
    EXPECT_TRUE(waitUntil([&] { return !QFile::exists(path); }));
    QDir().rmdir(QFileInfo(path).path());
    writeFile(QFileInfo(path).path(), "in the way");
    ASSERT_TRUE(use({u"press"_s, name}));
    EXPECT_TRUE(shows({u"settings-start-at-login-failure"_s}));
    EXPECT_FALSE(named(name).value(0).value(3).contains(u"checked"_s));
}

TEST(AutostartEntry, IsReadAndWrittenAsDesktopsDo) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"autostart/app.veyla.Veyla.desktop"_s);
    const QString target = folder.filePath(u"of the system.desktop"_s);
    const QString program = folder.filePath(u"odd \"name\" $HOME `ls` \\n 🙂"_s);
    const QString output = folder.filePath(u"arguments"_s);
    AutostartEntry entry(path, program);
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_EQ(entry.setEnabled(false), std::nullopt);
    EXPECT_EQ(entry.setEnabled(true), std::nullopt);
    const QByteArray text = readFile(path);

    const std::pair<QByteArray, bool> texts[] = {
        {text, true},
        {text + "Hidden=true\n", false},
        {text + "Hidden=false\n[Desktop Action other]\nHidden=true\n", true},
        {QByteArray(text).replace("enabled=true", "enabled=false"), false},
        {"[Other]\nExec=veyla\n", false},
        {"", false}};
    for (const auto& [each, isEnabled] : texts) {
        writeFile(path, each);
        EXPECT_EQ(entry.isEnabled(), isEnabled) << each.constData();
        EXPECT_EQ(entry.setEnabled(true), std::nullopt);
        EXPECT_EQ(readFile(path), text);
    }
    ASSERT_TRUE(QFile::rename(path, target) && QFile::link(target, path));
    writeFile(target, "[Desktop Entry]\nHidden=true\n");
    absorbWriteSignals();
    {
        const FileSizeLimit none(0);
        EXPECT_NE(entry.setEnabled(true), std::nullopt);
    }
    const QDir entries(QFileInfo(path).path(), {}, {}, QDir::Files | QDir::Hidden);
    EXPECT_EQ(entries.entryList(), QStringList{QFileInfo(path).fileName()});
    EXPECT_TRUE(QFileInfo(path).isSymLink()) << "lost by a failed write";
    EXPECT_EQ(entry.setEnabled(true), std::nullopt);
    EXPECT_TRUE(entry.isEnabled());
    EXPECT_EQ(readFile(target), "[Desktop Entry]\nHidden=true\n") << "written through a link";

    // What a desktop makes of the line that starts the program.
    writeProgram(program, "#!/bin/sh\necho \"$# $1\" > '" + output.toUtf8() + "'\n");
    ChildProcess desktop(u"/usr/bin/python3"_s,
                         {u"-c"_s,
                          u"import sys; from gi.repository import Gio;"
                          "Gio.DesktopAppInfo.new_from_filename(sys.argv[1]).launch([], None)"_s,
                          path},
                         QProcessEnvironment::systemEnvironment());
    EXPECT_EQ(desktop.waitForExit(defaultWait), 0) << desktop.standardError().constData();
    EXPECT_TRUE(waitUntil([&] { return readFile(output) == "1 --background\n"; }))
        << readFile(path).constData();
    EXPECT_EQ(entry.setEnabled(false), std::nullopt);
    EXPECT_FALSE(QFile::exists(path));
}

}  // namespace
