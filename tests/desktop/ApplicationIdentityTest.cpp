#include "Models/Json.h"
#include "Platform/Qt/Applications/ApplicationResolver.h"
#include "support/Files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray entryText(const QByteArray& name, const QByteArray& more = {}) {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\n" + more;
}

/// Desktop entries in folders of their own.
class ApplicationIdentityTest : public testing::Test {
protected:
    void write(const QString& path, const QByteArray& text) {
        writeFile(m_folder.filePath(path), text);
    }

    DesktopEntries entries() {
        return DesktopEntries({m_folder.filePath(u"user"_s), m_folder.filePath(u"system"_s)}, {});
    }

    QTemporaryDir m_folder;
};

TEST_F(ApplicationIdentityTest, NamesFollowTheLanguagesOfTheUser) {
    const QByteArray text = entryText("Files",
                                      "Name[de]=Dateien\nName[sr@latin]=Fajlovi\nName[pt_BR]="
                                      "Arquivos\nName[zh_CN]=\xe6\x96\x87\n");
    const struct {
        QStringList languages;
        const char* name;
    } cases[] = {{{u"de-AT"_s, u"de"_s, u"en"_s}, "Dateien"},
                 {{u"sr-Latn-RS"_s}, "Fajlovi"},
                 {{u"sr-Cyrl-RS"_s}, "Files"},
                 {{u"pt-BR"_s}, "Arquivos"},
                 {{u"pt-PT"_s, u"de"_s}, "Dateien"},
                 {{u"zh-Hans-CN"_s}, "\xe6\x96\x87"},
                 {{u"en-US"_s, u"de"_s}, "Files"},
                 {{u"C"_s, u"de"_s}, "Files"},
                 {{}, "Files"}};
    for (const auto& each : cases)
        EXPECT_EQ(parseDesktopEntry(u"a"_s, text, desktopEntryLanguages(each.languages))
                      .value_or(DesktopEntry())
                      .name.toStdString(),
                  each.name)
            << each.languages.join(u' ').toStdString();
}

TEST_F(ApplicationIdentityTest, ProgramsAreFoundInCommands) {
    const struct {
        const char* command;
        const char* executable;
    } cases[] = {{"firefox %u", "firefox"},
                 {"/opt/editor/run --x", "run"},
                 {"\"/opt/My App/editor\" %F", "editor"},
                 {"env LANG=C GDK=x11 gimp-2.10 %U", "gimp-2.10"},
                 {"/usr/bin/flatpak run org.example.App", ""},
                 {"python3.11 /usr/share/x.py", ""},
                 {"", ""}};
    for (const auto& each : cases) {
        const auto entry =
            parseDesktopEntry(u"a"_s, entryText("A", QByteArray("Exec=") + each.command), {});
        EXPECT_EQ(entry.value_or(DesktopEntry()).executable.toStdString(), each.executable)
            << each.command;
    }
}

TEST_F(ApplicationIdentityTest, EntriesAreReadAgainWhenTheirFoldersChange) {
    write(u"system/org.example.Editor.desktop"_s,
          entryText("Editor", "StartupWMClass=editor-window\nExec=editor"));
    write(u"system/kde/office.desktop"_s, entryText("Office", "Exec=suite --office"));
    write(u"system/kde/draw.desktop"_s, entryText("Draw", "Exec=suite --draw"));
    write(u"system/gone.desktop"_s, entryText("Gone"));
    write(u"user/gone.desktop"_s, "[Desktop Entry]\nHidden=true\n");
    write(u"user/link.desktop"_s, "[Desktop Entry]\nType=Link\nName=Link\n");
    write(u"user/noise.desktop"_s, QByteArray(100, '\xff') + "\n=\n[[\n[Desktop Entry\nName=x");
    write(u"user/empty.desktop"_s, "");
    write(u"user/nameless.desktop"_s, "[Desktop Entry]\nType=Application\n");
    write(u"user/late.desktop"_s, "[Other]\nName=x\n" + entryText("Late") + "[Desktop Action]\n");
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(u"user/folder.desktop"_s));
    // A pipe would never answer.
    ASSERT_EQ(mkfifo(qPrintable(m_folder.filePath(u"user/pipe.desktop"_s)), 0600), 0);
    ASSERT_TRUE(QFile::link(u"nowhere"_s, m_folder.filePath(u"user/broken.desktop"_s)));

    DesktopEntries entries = this->entries();
    const auto name = [](const std::optional<DesktopEntry>& entry) {
        return entry.value_or(DesktopEntry()).name.toStdString();
    };
    EXPECT_EQ(name(entries.byId(u"ORG.example.editor"_s)), "Editor");
    EXPECT_EQ(name(entries.byWindowClass(u"Editor-Window"_s)), "Editor");
    EXPECT_EQ(name(entries.byExecutable(u"editor"_s)), "Editor");
    EXPECT_EQ(name(entries.byId(u"kde-office"_s)), "Office");
    EXPECT_EQ(name(entries.byWindowClass(u"kde-draw"_s)), "Draw") << "the id as class";
    EXPECT_EQ(name(entries.byExecutable(u"suite"_s)), "") << "two entries start it";
    EXPECT_EQ(name(entries.byId(u"late"_s)), "Late");
    for (const char* unusable : {"gone", "link", "noise", "empty", "nameless", "folder", "pipe",
                                 "broken", "", "../system/gone"})
        EXPECT_EQ(entries.byId(QString::fromLatin1(unusable)), std::nullopt) << unusable;

    write(u"user/org.example.Editor.desktop"_s, entryText("My Editor"));
    EXPECT_EQ(name(entries.byId(u"org.example.Editor"_s)), "My Editor");
    EXPECT_EQ(name(entries.byExecutable(u"editor"_s)), "") << "the entry behind is hidden";
    ASSERT_TRUE(QFile::remove(m_folder.filePath(u"system/kde/draw.desktop"_s)));
    EXPECT_EQ(name(entries.byExecutable(u"suite"_s)), "Office");
}

TEST_F(ApplicationIdentityTest, ScopesNameTheirApplication) {
    const QByteArray slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
    const struct {
        QByteArray cgroups;
        const char* id;
        bool isSandbox;
    } cases[] = {
        {slice + "app-flatpak-com.obsproject.Studio-1234.scope\n", "com.obsproject.Studio", true},
        {slice + "app-flatpak-org.x.A\\x2dB-1.scope", "org.x.A-B", true},
        {slice + "snap.obs-studio.obs-studio-0a1b2c3d-0a1b-0a1b-0a1b-0a1b2c3d4e5f.scope",
         "obs-studio_obs-studio", true},
        {slice + "app-gnome-org.gnome.Nautilus-99.scope", "org.gnome.Nautilus", false},
        {slice + "app-gnome-google\\x2dchrome-99.scope", "google-chrome", false},
        {slice + "app-org.kde.dolphin@0a1b-22.service", "org.kde.dolphin", false},
        {slice + "app-gnome-foo@autostart.service/inner/group", "foo", false},
        {"3:cpu:/x\n1:name=systemd:/user.slice/app-firefox-5.scope\n0::/\n", "firefox", false},
        {slice + "app-org.gnome.Terminal.slice/vte-spawn-0a1b.scope", nullptr, false},
        {slice + "app-gnome-org.x.A-1.scope/run.service", nullptr, false},
        {"0::/system.slice/ssh.service", nullptr, false},
        {"0::/", nullptr, false},
        {"app-firefox-5.scope", nullptr, false},
        {"", nullptr, false},
    };
    for (const auto& each : cases) {
        const auto scope = applicationScopeFrom(each.cgroups);
        const auto expected =
            each.id ? std::optional(ApplicationScope{QString::fromLatin1(each.id), each.isSandbox})
                    : std::nullopt;
        EXPECT_TRUE(scope == expected)
            << each.cgroups.constData() << " gives "
            << scope.value_or(ApplicationScope{u"nothing"_s}).id.toStdString();
    }
}

TEST_F(ApplicationIdentityTest, AScriptIsCalledByItsFile) {
    const QString path = m_folder.filePath(u"kazam"_s);
    for (const char* interpreter : {"/bin/sh", "/usr/bin/env sh"}) {
        writeProgram(path, QByteArray("#!") + interpreter + "\necho ready\nread line\n");
        QProcess script;
        script.start(path, {});
        ASSERT_TRUE(script.waitForReadyRead()) << interpreter;
        const auto facts = readProcess(static_cast<pid_t>(script.processId()));
        EXPECT_EQ(facts.value_or(ProcessFacts()).commandName.toStdString(), "kazam") << interpreter;
        script.closeWriteChannel();
        EXPECT_TRUE(script.waitForFinished()) << interpreter;
    }
}

TEST_F(ApplicationIdentityTest, TheBestEvidenceNamesTheApplication) {
    write(u"user/org.example.Editor.desktop"_s,
          entryText("Editor", "StartupWMClass=editor-window\nExec=editor"));
    write(u"user/org.example.Terminal.desktop"_s, entryText("Terminal"));
    ApplicationResolver resolver(entries(), ApplicationIdentities::builtIn());
    const auto process = [](const char* executable, const char* command = "",
                            std::optional<ApplicationScope> scope = {}) {
        return std::optional(ProcessFacts{.user = 0,
                                          .executable = QString::fromLatin1(executable),
                                          .commandName = QString::fromLatin1(command),
                                          .scope = std::move(scope)});
    };
    const ApplicationScope sandbox{u"org.example.Boxed"_s, true};
    const ApplicationScope studio{u"com.obsproject.Studio"_s, true};
    const ApplicationScope terminal{u"org.example.Terminal"_s, false};
    const auto ofClass = [](const QString& windowClass) {
        return WindowFacts{{}, {}, u"i"_s, windowClass};
    };
    const WindowFacts plain = ofClass(u"Class"_s);
    const WindowFacts gtk{u"org.gtk.App"_s, u"kde"_s, u"i"_s, u"Class"_s};
    const WindowFacts withEntry{{}, u"/x/org.example.Editor.desktop"_s, u"i"_s, u"Class"_s};
    const WindowFacts ofInstance{{}, {}, u"editor-window"_s, u"Class"_s};
    const char* const editor = "org.example.Editor";
    const char* const recorder = "com.apple.QuickTimePlayerX";
    const struct {
        WindowFacts window;
        std::optional<ProcessFacts> process;
        const char* name;
        const char* identifier;
    } cases[] = {
        {gtk, process("editor", "", sandbox), "Class", "org.example.Boxed"},
        {plain, process("p", "", terminal), "Terminal", "org.example.Terminal"},
        {ofClass(u"Editor-Window"_s), process("p", "", terminal), "Editor", editor},
        {gtk, process("p"), "Class", "org.gtk.App"},
        {withEntry, process("p"), "Editor", editor},
        {ofInstance, std::nullopt, "Editor", editor},
        {plain, process("editor"), "Editor", editor},
        {plain, process("python3", "editor"), "Editor", editor},
        {plain, process("p"), "Class", "Class"},
        {ofClass({}), std::nullopt, "i", "i"},
        {{}, process("program", "other"), "program", "program"},
        {{}, process("python3.11", "script"), "script", "script"},
        {{}, std::nullopt, nullptr, nullptr},
        // The table, whatever the rest says.
        {ofClass(u"ZOOM"_s), process("p"), "ZOOM", "us.zoom.xos"},
        {ofClass(u"SimpleScreenRecorder"_s), process("p", "", terminal), "Terminal", recorder},
        {plain, process("p", "CiscoCollabHost"), "Class", "com.cisco.webexmeetingsapp"},
        {{}, process("p", "", studio), "p", "com.obsproject.obs-studio"},
    };
    for (const auto& each : cases) {
        const RunningApplication found = resolver.applicationOf(each.window, each.process);
        EXPECT_EQ(found.localizedName.value_or(u"absent"_s).toStdString(),
                  each.name ? each.name : "absent");
        EXPECT_EQ(found.bundleIdentifier.value_or(u"absent"_s).toStdString(),
                  each.identifier ? each.identifier : "absent");
    }
}

TEST_F(ApplicationIdentityTest, TheTableIsWellFormed) {
    const auto table = QJsonDocument::fromJson(
                           readFile(QStringLiteral(VEYLA_SOURCE_DIR "/resources/identities.json")))
                           .object();
    QStringList names;
    for (const QJsonValue& record : table["applications"_L1].toArray()) {
        EXPECT_FALSE(record["identifier"_L1].toString().isEmpty());
        EXPECT_FALSE(record["linux"_L1].toArray().isEmpty());
        for (const QJsonValue& name : record["linux"_L1].toArray())
            names << name.toString().toCaseFolded();
    }
    EXPECT_FALSE(names.contains(QString()));
    EXPECT_EQ(names.removeDuplicates(), 0) << "a name stands for one application";
    const ApplicationIdentities identities = ApplicationIdentities::builtIn();
    for (const char* name :
         {"us.zoom.Zoom", "TEAMS-for-linux", "obs", "ciscocollabhost", "parsecd", "x11vnc",
          "gnome-remote-desktop-daemon", "KRFB", "kazam", "vokoscreenng", "io.github.seadve.Kooha"})
        EXPECT_TRUE(identities.identifierFor(QString::fromLatin1(name))) << name;
    EXPECT_FALSE(identities.identifierFor(u"obsidian"_s));

    for (const char* broken : {"", "[]", R"({"applications":[{"identifier":"a"}]})",
                               R"({"applications":[{"identifier":1,"linux":[]}]})"})
        EXPECT_THROW(ApplicationIdentities::fromJsonText(broken), JsonError) << broken;
}

}  // namespace
