#include "Platform/WriteSignals.h"
#include "Services/PresetStore.h"
#include "support/FileSizeLimit.h"
#include "support/RecordingSystemLog.h"
#include "support/SampleWorkspace.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <cerrno>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString decodeFailure = u"Veyla failed to decode workspace (will use defaults): "_s;
const QString saveFailure = u"Veyla failed to save workspace: "_s;

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

void writeBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

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
    void writeDocument(const QByteArray& bytes) {
        ASSERT_TRUE(QDir().mkpath(folder));
        writeBytes(document, bytes);
    }

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
    const QByteArray first = bytesOf(document);
    EXPECT_EQ(modeOf(root.filePath(u"data"_s)), 0700U);
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(document), 0600U);

    setMode(folder, 0755);
    setMode(document, 0644);
    store.saveWorkspace(workspace);
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(document), 0600U);
    EXPECT_EQ(bytesOf(document), first);
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
    EXPECT_EQ(bytesOf(target), sampleWorkspace().toJsonText());
    EXPECT_EQ(store.loadWorkspace(), sampleWorkspace());
}

TEST_F(PresetStoreTest, KeepsACopyOfADocumentThatItCannotDecode) {
    const QByteArray good = sampleWorkspace().toJsonText();
    QByteArray withoutFlag = good;
    withoutFlag.replace("hasCompletedOnboarding", "hasCompletedBoarding");
    QByteArray wrongStyle = good;
    wrongStyle.replace("\"softTint\"", "\"SoftTint\"");
    QByteArray wrongEncoding = good;
    wrongEncoding.replace("Mask 1", "Mask \xC3");
    const struct {
        QByteArray bytes;
        QString reason;  // how it begins
    } cases[]{
        {withoutFlag, u"hasCompletedOnboarding: required member is missing"_s},
        {wrongStyle, u"masks[1].style: unknown style \"SoftTint\""_s},
        {wrongEncoding, u"document: invalid UTF8 string at byte offset "_s},
        {good.chopped(3), u"document: unterminated object at byte offset "_s},
        {QByteArray(), u"document: illegal value at byte offset "_s},
        {QByteArray(10'000, '['), u"document: too deeply nested document at byte offset "_s},
        {"{\"masks\": \"" + QByteArray(50'000'000, 'x') + "\"}",
         u"masks: expected an array, found a string"_s},
    };
    for (const auto& [bytes, reason] : cases) {
        writeDocument(bytes);
        QFile::remove(backup);
        log.lines.clear();
        EXPECT_EQ(store.loadWorkspace(), std::nullopt);
        ASSERT_EQ(log.lines.size(), 1);
        EXPECT_TRUE(log.lines[0].startsWith(decodeFailure + reason)) << log.lines[0].toStdString();
        EXPECT_TRUE(bytesOf(document) == bytes) << reason.toStdString();
        EXPECT_TRUE(bytesOf(backup) == bytes) << reason.toStdString();
        EXPECT_EQ(modeOf(backup), 0600U);
        EXPECT_EQ(namesIn(folder).size(), 2) << reason.toStdString();
    }

    writeDocument("another");
    const QByteArray kept = bytesOf(backup);
    EXPECT_EQ(store.loadWorkspace(), std::nullopt);
    EXPECT_TRUE(bytesOf(backup) == kept);
    EXPECT_EQ(log.lines.size(), 2);

    // Not even what a dangling link stands for.
    QFile::remove(backup);
    ASSERT_TRUE(QFile::link(u"nowhere"_s, backup));
    EXPECT_EQ(store.loadWorkspace(), std::nullopt);
    EXPECT_EQ(namesIn(folder), (QStringList{u"workspace-backup.json"_s, u"workspace.json"_s}));
    EXPECT_TRUE(QFileInfo(backup).isSymLink());
}

TEST_F(PresetStoreTest, GivesMasksThatShareAnIdOneOfTheirOwn) {
    WorkspaceSnapshot workspace = sampleWorkspace();
    workspace.masks.append(workspace.masks[0]);
    workspace.masks.append(workspace.masks[0]);
    writeDocument(workspace.toJsonText());
    auto loaded = store.loadWorkspace().value();
    QSet<QUuid> ids;
    for (qsizetype index = 0; index < loaded.masks.size(); ++index) {
        ids.insert(loaded.masks[index].id);
        if (index >= 2) loaded.masks[index].id = workspace.masks[0].id;
    }
    EXPECT_EQ(ids.size(), 4);
    EXPECT_EQ(loaded, workspace);
    EXPECT_EQ(log.lines.size(), 2);
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
    EXPECT_EQ(log.lines, QStringList(saveFailure + document + u": Is a directory"_s));
}

TEST_F(PresetStoreTest, ReportsNumbersThatCannotBeWrittenAndKeepsTheOldDocument) {
    store.saveWorkspace(sampleWorkspace());
    WorkspaceSnapshot workspace = sampleWorkspace();
    workspace.presets[0].masks[0].opacity = std::numeric_limits<double>::quiet_NaN();
    store.saveWorkspace(workspace);
    EXPECT_EQ(log.lines,
              QStringList(saveFailure + u"presets[0].masks[0].opacity: nan is not finite"_s));
    EXPECT_EQ(store.loadWorkspace(), sampleWorkspace());
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
        const QByteArray before = bytesOf(document);
        store.saveWorkspace(largeWorkspace());
        EXPECT_EQ(log.lines.join(u'\n').toStdString(),
                  (saveFailure + path + u": "_s + reason).toStdString());
        EXPECT_EQ(namesIn(folder), names);
        EXPECT_EQ(bytesOf(document), before);
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

TEST_F(PresetStoreFaultTest, ReadOnlyDocumentIsReplaced) {
    store.saveWorkspace(sampleWorkspace());
    writeBytes(document + u".new"_s, "left by a process that was killed");
    OrdinaryUser::own(root.path());
    const OrdinaryUser user;
    setMode(document, 0400);
    expectSuccess();
    EXPECT_EQ(modeOf(document), 0600U);
    EXPECT_EQ(namesIn(folder), QStringList(u"workspace.json"_s));
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
    ASSERT_TRUE(QDir().mkpath(root.filePath(u"data"_s)));
    writeBytes(folder, "in the way");
    expectFailure(folder, u"Not a directory"_s);
    EXPECT_EQ(bytesOf(folder), "in the way");
    ASSERT_TRUE(QFile::remove(folder));
    expectSuccess();
}

TEST_F(PresetStoreFaultTest, WriteThatStopsHalfway) {
    store.saveWorkspace(sampleWorkspace());
    absorbWriteSignals();
    {
        const FileSizeLimit limit(16 * 1024);
        expectFailure(document, u"File too large"_s);
    }
    expectSuccess();
}

TEST_F(PresetStoreFaultTest, FullDisk) {
    ASSERT_TRUE(QDir().mkpath(folder));
    const QByteArray mountPoint = QFile::encodeName(folder);
    if (::mount("none", mountPoint.constData(), "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "a small file system cannot be mounted: " << std::strerror(errno);
    }
    const std::unique_ptr<const QByteArray, void (*)(const QByteArray*)> mounted(
        &mountPoint,
        [](const QByteArray* point) { EXPECT_EQ(::umount2(point->constData(), MNT_DETACH), 0); });
    store.saveWorkspace(sampleWorkspace());
    expectFailure(document, u"No space left on device"_s);
    ASSERT_EQ(::mount("none", mountPoint.constData(), "tmpfs", MS_REMOUNT, "size=1m"), 0);
    expectSuccess();
}

}  // namespace
