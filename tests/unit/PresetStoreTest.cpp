#include "Services/PresetStore.h"
#include "support/FileSizeLimit.h"
#include "support/Files.h"
#include "support/RecordingSystemLog.h"
#include "support/SampleWorkspace.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString decodeFailure = u"Veyla failed to decode workspace (will use defaults): "_s;
const QString saveFailure = u"Veyla failed to save workspace: "_s;

mode_t modeOf(const QString& path) {
    struct stat status {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0) << path.toStdString();
    return status.st_mode & ALLPERMS;
}

void setMode(const QString& path, mode_t mode) {
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), mode), 0);
}

QStringList namesIn(const QString& directory) {
    return QDir(directory).entryList(QDir::AllEntries | QDir::System | QDir::Hidden |
                                     QDir::NoDotAndDotDot);
}

WorkspaceSnapshot largeWorkspace() {
    WorkspaceSnapshot workspace = sampleWorkspace();
    workspace.masks[0].name = QString(100'000, u'x');
    return workspace;
}

class PresetStoreTest : public testing::Test {
protected:
    QTemporaryDir root;
    QString folder = root.filePath(u"data/Veyla"_s);
    QString document = folder + u"/workspace.json"_s;
    QString backup = folder + u"/workspace-backup.json"_s;
    RecordingSystemLog log;
    PresetStore store{folder, log};
};

TEST_F(PresetStoreTest, FindsNothingAndMakesNothingWithoutADocument) {
    EXPECT_EQ(store.loadWorkspace(), std::nullopt);
    EXPECT_EQ(log.lines, QStringList());
    EXPECT_EQ(namesIn(root.path()), QStringList());
}

TEST_F(PresetStoreTest, SavesPrivatelyAndLoadsWhatItSaved) {
    const WorkspaceSnapshot workspace = sampleWorkspace();
    store.saveWorkspace(workspace);
    const QByteArray first = readFile(document);
    EXPECT_EQ(modeOf(root.filePath(u"data"_s)), 0700U);
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(document), 0600U);

    setMode(folder, 0755);
    setMode(document, 0644);
    store.saveWorkspace(workspace);
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(document), 0600U);
    EXPECT_EQ(readFile(document), first);
    EXPECT_EQ(namesIn(folder), QStringList(u"workspace.json"_s));

    EXPECT_EQ(store.loadWorkspace(), workspace);
    EXPECT_EQ(log.lines, QStringList());
}

TEST_F(PresetStoreTest, FollowsALinkToTheDocument) {
    const QString target = root.filePath(u"elsewhere.json"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(QFile::link(u"../../elsewhere.json"_s, document));
    store.saveWorkspace(sampleWorkspace());
    EXPECT_TRUE(QFileInfo(document).isSymLink());
    EXPECT_EQ(readFile(target), sampleWorkspace().toJsonText());
    EXPECT_EQ(store.loadWorkspace(), sampleWorkspace());
}

TEST_F(PresetStoreTest, KeepsACopyOfADocumentThatItCannotDecode) {
    const QByteArray good = sampleWorkspace().toJsonText();
    QByteArray wrongStyle = good;
    wrongStyle.replace("\"softTint\"", "\"SoftTint\"");
    const struct {
        QByteArray bytes;
        QString reason;  // how it begins
    } cases[]{
        {wrongStyle, u"masks[1].style: unknown style \"SoftTint\""_s},
        {good.chopped(3), u"document: unterminated object at byte offset "_s},
        {QByteArray(), u"document: illegal value at byte offset "_s},
        {"{\"masks\": \"" + QByteArray(50'000'000, 'x') + "\"}",
         u"masks: expected an array, found a string"_s},
    };
    for (const auto& [bytes, reason] : cases) {
        writeFile(document, bytes);
        QFile::remove(backup);
        log.lines.clear();
        EXPECT_EQ(store.loadWorkspace(), std::nullopt);
        ASSERT_EQ(log.lines.size(), 1);
        EXPECT_TRUE(log.lines[0].startsWith(decodeFailure + reason)) << log.lines[0].toStdString();
        EXPECT_TRUE(readFile(document) == bytes) << reason.toStdString();
        EXPECT_TRUE(readFile(backup) == bytes) << reason.toStdString();
        EXPECT_EQ(modeOf(backup), 0600U);
        EXPECT_EQ(namesIn(folder).size(), 2) << reason.toStdString();
    }

    writeFile(document, "another");
    const QByteArray kept = readFile(backup);
    EXPECT_EQ(store.loadWorkspace(), std::nullopt);
    EXPECT_TRUE(readFile(backup) == kept);
    EXPECT_EQ(log.lines.size(), 2);

    // Not even what a dangling link stands for.
    QFile::remove(backup);
    ASSERT_TRUE(QFile::link(u"nowhere"_s, backup));
    EXPECT_EQ(store.loadWorkspace(), std::nullopt);
    EXPECT_EQ(namesIn(folder), (QStringList{u"workspace-backup.json"_s, u"workspace.json"_s}));
    EXPECT_TRUE(QFileInfo(backup).isSymLink());
}

TEST_F(PresetStoreTest, TreatsWhatIsNoRegularFileAsNoWorkspace) {
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_EQ(::mkfifo(QFile::encodeName(document).constData(), 0600), 0);
    EXPECT_EQ(store.loadWorkspace(), std::nullopt);
    store.saveWorkspace(sampleWorkspace());
    EXPECT_EQ(store.loadWorkspace(), sampleWorkspace());

    ASSERT_TRUE(QFile::remove(document));
    ASSERT_TRUE(QDir().mkdir(document));
    EXPECT_EQ(store.loadWorkspace(), std::nullopt);
    EXPECT_EQ(log.lines, QStringList());
    store.saveWorkspace(sampleWorkspace());
    EXPECT_EQ(log.lines,
              QStringList(saveFailure + document + u": Filename refers to a directory"_s));
}

/// Runs as an ordinary user while it lives, since permissions do not bind root.
class OrdinaryUser {
public:
    OrdinaryUser() {
        if (m_isRoot) {
            EXPECT_EQ(::seteuid(nobody), 0);
        }
    }
    ~OrdinaryUser() {
        if (m_isRoot) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    /// Gives the folder and all in it to that user.
    static void own(const QString& path) {
        if (::geteuid() != 0) return;
        ASSERT_EQ(::chown(QFile::encodeName(path).constData(), nobody, nobody), 0);
        for (const QString& name : namesIn(path))
            own(path + u'/' + name);
    }

private:
    static constexpr uid_t nobody = 65534;
    bool m_isRoot = ::geteuid() == 0;
};

/// Saving fails for a reason that the log names, leaves everything as it was, and works again when
/// the cause is gone.
class PresetStoreFaultTest : public PresetStoreTest {
protected:
    void expectFailure(const QString& path, const QString& reason) {
        const QStringList names = namesIn(folder);
        const QByteArray before = readFile(document);
        store.saveWorkspace(largeWorkspace());
        EXPECT_EQ(log.lines.join(u'\n').toStdString(),
                  (saveFailure + path + u": "_s + reason).toStdString());
        EXPECT_EQ(namesIn(folder), names);
        EXPECT_EQ(readFile(document), before);
        log.lines.clear();
    }

    void expectSuccess() {
        store.saveWorkspace(largeWorkspace());
        EXPECT_EQ(log.lines, QStringList());
        EXPECT_EQ(store.loadWorkspace(), largeWorkspace());
    }
};

TEST_F(PresetStoreFaultTest, FolderThatCannotBeWrittenTo) {
    store.saveWorkspace(sampleWorkspace());
    OrdinaryUser::own(root.path());
    const OrdinaryUser user;
    setMode(folder, 0500);
    expectFailure(document, u"Permission denied"_s);
    setMode(folder, 0700);
    expectSuccess();
}

TEST_F(PresetStoreFaultTest, FolderThatCannotBeMade) {
    OrdinaryUser::own(root.path());
    const OrdinaryUser user;
    setMode(root.path(), 0500);
    expectFailure(root.filePath(u"data"_s), u"Permission denied"_s);
    setMode(root.path(), 0700);
    expectSuccess();
}

TEST_F(PresetStoreFaultTest, FileInPlaceOfTheFolder) {
    writeFile(folder, "in the way");
    expectFailure(folder, u"Not a directory"_s);
    EXPECT_EQ(readFile(folder), "in the way");
    ASSERT_TRUE(QFile::remove(folder));
    expectSuccess();
}

TEST_F(PresetStoreFaultTest, WriteThatStopsHalfwayAsOnAFullDisk) {
    store.saveWorkspace(sampleWorkspace());
    {
        const FileSizeLimit limit(16 * 1024);
        expectFailure(document, u"File too large"_s);
    }
    expectSuccess();
}

}  // namespace
