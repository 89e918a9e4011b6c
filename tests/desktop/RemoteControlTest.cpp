#include "Platform/Qt/Instance/InstanceLock.h"
#include "Platform/Qt/Instance/RemoteControlService.h"
#include "support/FileSizeLimit.h"
#include "support/Files.h"
#include "support/RecordingSystemLog.h"
#include "support/desktop/ChildProcess.h"
#include "support/desktop/DBusSession.h"
#include "support/desktop/TemporaryHome.h"
#include "support/desktop/Wait.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <utility>

using namespace Qt::Literals::StringLiterals;

using Ended = ChildProcess::Outcome;

void PrintTo(const Ended& ended, std::ostream* out) {
    *out << "status " << ended.status.value_or(-999) << "\noutput: " << ended.output.constData()
         << "\nerror: " << ended.error.constData();
}

namespace {

// Programs in a home of their own, on the display of the tests.
class RemoteControlTest : public testing::Test {
protected:
    RemoteControlTest() {
        environment.insert(u"DISPLAY"_s, qEnvironmentVariable("DISPLAY"));
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address());
        for (const auto& name : {u"ASAN_OPTIONS"_s, u"LSAN_OPTIONS"_s, u"UBSAN_OPTIONS"_s})
            environment.insert(name, qEnvironmentVariable(name.toUtf8().constData()));
    }

    std::unique_ptr<ChildProcess> start(const QStringList& arguments) {
        return std::make_unique<ChildProcess>(QStringLiteral(VEYLA_PROGRAM), arguments,
                                              environment);
    }

    // Returns when the program has its lock, which is before it is on the bus.
    std::unique_ptr<ChildProcess> startVeyla() {
        auto veyla = start({u"--background"_s});
        EXPECT_TRUE(waitUntil([&] { return lock().isHeldByAnother() || !veyla->isRunning(); }));
        EXPECT_TRUE(veyla->isRunning()) << veyla->standardError().constData();
        return veyla;
    }

    Ended run(const QStringList& arguments) { return start(arguments)->waitForOutcome(); }

    InstanceLock lock() const { return {workspaceFolder, home.runtimeFolder()}; }

    QJsonObject status() {
        const Ended ended = run({u"status"_s, u"--json"_s});
        EXPECT_EQ(ended.status, 0) << ended.error.constData();
        return QJsonDocument::fromJson(ended.output).object();
    }

    TemporaryHome home;
    QString workspaceFolder = home.dataFolder() + u"/Veyla"_s;
    QProcessEnvironment environment = home.environment();
    DBusSession bus{home, environment};
};

const Ended notRunning{1, {}, "Veyla is not running.\n"};

TEST_F(RemoteControlTest, CommandsTellInOneLineThatNothingRunsWhateverIsMissing) {
    const struct {
        const char* description;
        QString variable;
        std::optional<QString> value;
    } cases[] = {
        {"a session bus", {}, {}},
        {"an address without a bus", u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/proc/nowhere"_s},
        {"no address", u"DBUS_SESSION_BUS_ADDRESS"_s, u"nonsense"_s},
        {"the bus in the runtime directory", u"DBUS_SESSION_BUS_ADDRESS"_s, {}},
        {"no display", u"DISPLAY"_s, {}},
        {"a runtime directory that is not there", u"XDG_RUNTIME_DIR"_s, u"/proc/nowhere"_s},
        {"no runtime directory", u"XDG_RUNTIME_DIR"_s, {}},
        {"a locale without UTF-8", u"LC_ALL"_s, u"C"_s},
    };
    environment.insert(u"TMPDIR"_s, home.path());
    const QProcessEnvironment usual = environment;
    for (const auto& [description, variable, value] : cases) {
        SCOPED_TRACE(description);
        environment = usual;
        if (value) {
            environment.insert(variable, *value);
        } else {
            environment.remove(variable);
        }
        EXPECT_EQ(run({u"status"_s}), notRunning);
    }
}

TEST_F(RemoteControlTest, HelpVersionAndWrongUsageNeedNothingAround) {
    environment.clear();
    EXPECT_EQ(run({u"--version"_s}), (Ended{0, "Veyla " VEYLA_VERSION "\n", {}}));
    const Ended help = run({u"--help"_s});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.contains("apply-preset NAME"));
    EXPECT_EQ(help.error, "");
    EXPECT_EQ(run({u"--nonsense"_s}),
              (Ended{2, {}, "Unknown option \"--nonsense\". Try \"veyla --help\".\n"}));
    EXPECT_EQ(run({u"büro"_s}),
              (Ended{2, {}, "Unknown command \"büro\". Try \"veyla --help\".\n"}));
}

TEST_F(RemoteControlTest, WithoutADisplayItDoesNotStart) {
    environment.remove(u"DISPLAY"_s);
    const Ended ended = run({});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.error.count('\n'), 1) << ended.error.constData();
    EXPECT_FALSE(lock().isHeldByAnother());
}

TEST_F(RemoteControlTest, TheRunningProgramDoesWhatLaterOnesAsk) {
    const auto veyla = startVeyla();
    EXPECT_EQ(status()[u"pid"].toInteger(), veyla->pid());
    EXPECT_EQ(run({u"create-mask"_s}), (Ended{0, {}, {}}));
    EXPECT_EQ(run({u"hide-masks"_s}), (Ended{0, {}, {}}));
    const QJsonObject hidden = status();
    EXPECT_EQ(hidden[u"masks"].toArray().size(), 1);
    EXPECT_FALSE(hidden[u"areMasksVisible"].toBool(true));

    const QByteArray already = u"Veyla is already running (pid %1).\n"_s.arg(veyla->pid()).toUtf8();
    EXPECT_EQ(run({}), (Ended{0, already, {}}));
    EXPECT_EQ(run({u"--background"_s}), (Ended{0, already, {}}));
    EXPECT_EQ(veyla->standardError(), "");
    EXPECT_TRUE(veyla->isRunning());
}

TEST_F(RemoteControlTest, AfterQuitItCanBeStartedAgainAtOnce) {
    for (int round = 0; round < 3; ++round) {
        const auto veyla = startVeyla();
        EXPECT_EQ(run({u"quit"_s}), (Ended{0, {}, {}}));
        EXPECT_FALSE(lock().isHeldByAnother());
        EXPECT_EQ(veyla->waitForOutcome(), (Ended{0, {}, {}}));
    }
    EXPECT_EQ(run({u"quit"_s}), notRunning);
}

TEST_F(RemoteControlTest, WhatAKilledProgramLeavesIsNotTakenForARunningOne) {
    const auto killed = startVeyla();
    status();
    killed->sendSignal(SIGKILL);
    EXPECT_EQ(killed->waitForOutcome().status, -SIGKILL);
    EXPECT_EQ(run({u"status"_s}), notRunning);
    const auto next = startVeyla();
    EXPECT_EQ(status()[u"pid"].toInteger(), next->pid());
}

TEST_F(RemoteControlTest, ARunningProgramThatNoBusReachesKeepsTheWorkspace) {
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/proc/nowhere"_s);
    const auto veyla = startVeyla();
    const QByteArray pid = QByteArray::number(veyla->pid());
    const Ended unreachable{
        1, {}, "The running Veyla (pid " + pid + ") cannot be reached: there is no session bus.\n"};
    EXPECT_EQ(run({}), unreachable);
    EXPECT_EQ(run({u"quit"_s}), unreachable);
    EXPECT_EQ(run({u"--background"_s}).status, 0);
    EXPECT_TRUE(waitUntil([&] { return !veyla->standardError().isEmpty(); }));
    veyla->sendSignal(SIGTERM);
    const Ended ended = veyla->waitForOutcome();
    EXPECT_EQ(ended.status, 0);
    EXPECT_TRUE(ended.error.startsWith("Veyla found no session bus")) << ended.error.constData();
    EXPECT_EQ(ended.error.count('\n'), 1) << ended.error.constData();
}

TEST_F(RemoteControlTest, NeitherAnotherRuntimeDirectoryNorACleanUpGivesTheWorkspaceTwoOwners) {
    const auto veyla = startVeyla();
    EXPECT_EQ(status()[u"pid"].toInteger(), veyla->pid());
    const QByteArray already = u"Veyla is already running (pid %1).\n"_s.arg(veyla->pid()).toUtf8();
    environment.insert(u"TMPDIR"_s, home.path());
    const QProcessEnvironment usual = environment;
    for (const auto& directory : {home.cacheFolder(), u"/proc/nowhere"_s, QString()}) {
        SCOPED_TRACE(directory.toStdString());
        environment.insert(u"XDG_RUNTIME_DIR"_s, directory);
        EXPECT_EQ(run({}), (Ended{0, already, {}}));
        EXPECT_EQ(run({u"--background"_s}), (Ended{0, already, {}}));
    }
    ASSERT_TRUE(QFile::remove(home.runtimeFolder() + u"/app.veyla.Veyla.lock"_s));
    ASSERT_TRUE(QFile::remove(workspaceFolder + u"/workspace.lock"_s));
    environment = usual;
    EXPECT_EQ(run({}), (Ended{0, already, {}}));
    EXPECT_EQ(run({u"--background"_s}), (Ended{0, "Veyla is already running.\n", {}}));
    environment.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
    environment.insert(u"XDG_RUNTIME_DIR"_s, home.cacheFolder());
    EXPECT_EQ(run({}),
              (Ended{1, {}, "The running Veyla cannot be reached: there is no session bus.\n"}));
    EXPECT_TRUE(veyla->isRunning());
}

TEST_F(RemoteControlTest, ARuntimeDirectoryThatOthersCanWriteToIsNotUsed) {
    const QString open = home.path() + u"/open"_s;
    InstanceLock ofSomebodyElse(home.stateFolder(), open);
    ASSERT_TRUE(QDir().mkdir(open));
    ASSERT_EQ(::chmod(QFile::encodeName(open).constData(), 01777), 0);
    ASSERT_EQ(ofSomebodyElse.take(), InstanceLock::Outcome::taken);
    environment.insert(u"TMPDIR"_s, home.path());
    environment.insert(u"XDG_RUNTIME_DIR"_s, open);
    const auto veyla = startVeyla();
    EXPECT_EQ(status()[u"pid"].toInteger(), veyla->pid());
}

TEST_F(RemoteControlTest, NothingThatCannotBeWrittenEndsIt) {
    // The second one's log goes to a pipe that nobody reads.
    for (const auto& redirection : {u""_s, u"2> >(exit)"_s}) {
        SCOPED_TRACE(redirection.toStdString());
        ChildProcess veyla(
            u"bash"_s,
            {u"-c"_s, u"exec \"$0\" --background "_s + redirection, QStringLiteral(VEYLA_PROGRAM)},
            environment);
        const QString document = workspaceFolder + u"/workspace.json"_s;
        const auto masksInFile = [&] {
            return QJsonDocument::fromJson(readFile(document))[u"masks"].toArray().size();
        };
        ASSERT_TRUE(waitUntil([&] { return lock().isHeldByAnother(); }));
        const qsizetype before = status()[u"masks"].toArray().size();
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(document); }));
        const QByteArray signals =
            shellOutput(u"/proc/%1"_s.arg(veyla.pid()), u"awk '/SigIgn/ { print $2 }' status"_s);
        EXPECT_EQ(signals.toULongLong(nullptr, 16) & (1ULL << (SIGPIPE - 1)), 0U);
        EXPECT_EQ(signals.toULongLong(nullptr, 16) & (1ULL << (SIGXFSZ - 1)), 0U);
        {
            const FileSizeLimit limit(500, veyla.pid());
            const auto changed = [&] { return QFileInfo(workspaceFolder).lastModified(); };
            const QDateTime lastChange = changed();
            EXPECT_EQ(run({u"create-mask"_s}), (Ended{0, {}, {}}));
            // A save begins with a new file, and fails at its first bytes.
            EXPECT_TRUE(waitUntil([&] { return changed() != lastChange; }));
            EXPECT_EQ(status()[u"masks"].toArray().size(), before + 1);
            EXPECT_EQ(masksInFile(), before);
        }
        EXPECT_EQ(run({u"create-mask"_s}), (Ended{0, {}, {}}));
        EXPECT_TRUE(waitUntil([&] { return masksInFile() == before + 2; }));
        veyla.sendSignal(SIGTERM);
        const Ended ended = veyla.waitForOutcome();
        EXPECT_EQ(ended.status, 0);
        const QString line =
            u"Veyla failed to save workspace: "_s + document + u": File too large\n"_s;
        EXPECT_EQ(ended.error, redirection.isEmpty() ? line.toUtf8() : QByteArray());
    }
}

TEST_F(RemoteControlTest, ASignalThatWasIgnoredAtTheStartStaysIgnored) {
    ChildProcess veyla(u"sh"_s,
                       {u"-c"_s, u"trap '' HUP; exec \"$0\""_s, QStringLiteral(VEYLA_PROGRAM)},
                       environment);
    ASSERT_TRUE(waitUntil([&] { return lock().isHeldByAnother(); }));
    status();
    veyla.sendSignal(SIGHUP);
    EXPECT_EQ(status()[u"pid"].toInteger(), veyla.pid());
    veyla.sendSignal(SIGTERM);
    EXPECT_EQ(veyla.waitForOutcome().status, 0);
}

// The running program's end of the bus is in this process.
class RemoteControlServiceTest : public RemoteControlTest {
protected:
    RemoteControlServiceTest() { EXPECT_EQ(held.take(), InstanceLock::Outcome::taken); }
    ~RemoteControlServiceTest() override { qputenv("DBUS_SESSION_BUS_ADDRESS", previousAddress); }

    QDBusConnection observed() const { return observer->connection(); }

    qsizetype busClients() const {
        const QStringList names = observed().interface()->registeredServiceNames();
        return names.filter(QRegularExpression(u"^:"_s)).size();
    }

    QByteArray previousAddress = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    bool isAddressSet = qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    InstanceLock held{workspaceFolder, home.runtimeFolder()};
    RecordingSystemLog log;
    std::unique_ptr<SessionBus> observer = std::make_unique<SessionBus>(u"observer"_s);
    RemoteControlService service{log};
    CommandResult answer{ExitStatus::nothingToActOn, u"éí\nout"_s, u"why"_s};
    QStringList received;
    RemoteControlService::Perform perform = [this](const QStringList& arguments) {
        received = arguments;
        return answer;
    };
};

TEST_F(RemoteControlServiceTest, AProgramThatIsJustStartingIsWaitedFor) {
    const qsizetype before = busClients();
    const auto client = start({u"apply-preset"_s, u"--"_s, u"-Büro 演示 🎥"_s});
    ASSERT_TRUE(waitUntil([&] { return busClients() > before; }));
    service.start(perform);
    EXPECT_EQ(client->waitForOutcome(), (Ended{1, "éí\nout\n", "why\n"}));
    EXPECT_EQ(received, (QStringList{u"apply-preset"_s, u"--"_s, u"-Büro 演示 🎥"_s}));
    EXPECT_EQ(log.lines, QStringList());
}

TEST_F(RemoteControlServiceTest, AProgramThatNeverAppearsOnTheBusIsGivenUp) {
    const QByteArray pid = QByteArray::number(QCoreApplication::applicationPid());
    EXPECT_EQ(run({u"quit"_s}),
              (Ended{1, {}, "The running Veyla (pid " + pid + ") is not on the session bus.\n"}));
}

TEST_F(RemoteControlServiceTest, ANameThatAnotherProcessHasIsTakenOverWhenItGoes) {
    const QString name = QString::fromLatin1(RemoteControl::serviceName);
    ASSERT_TRUE(observed().registerService(name));
    service.start(perform);
    ASSERT_EQ(log.lines.size(), 1);
    EXPECT_TRUE(log.lines.first().contains(name)) << log.lines.first().toStdString();
    const Ended stranger = run({u"status"_s});
    EXPECT_EQ(stranger.status, 1);
    EXPECT_TRUE(stranger.error.contains(") does not answer: ")) << stranger.error.constData();
    EXPECT_EQ(stranger.error.count('\n'), 1) << stranger.error.constData();

    observer.reset();
    EXPECT_EQ(run({u"status"_s}).error, "why\n");
}

TEST_F(RemoteControlServiceTest, AnAnswerOfAnotherVersionIsNotBelieved) {
    answer.status = static_cast<ExitStatus>(7);
    service.start(perform);
    EXPECT_EQ(run({u"status"_s}),
              (Ended{1, {}, "Veyla gave an answer that this version does not know.\n"}));
}

TEST(InstanceLockTest, IsHeldByOneAndFreeWhenThatOneIsGone) {
    const TemporaryHome home;
    const QString folder = home.dataFolder() + u"/Veyla"_s;
    InstanceLock first(folder, home.runtimeFolder());
    const std::pair<QString, QString> others[]{{folder, home.runtimeFolder()},
                                               {folder, home.cacheFolder()},
                                               {folder, QString()},
                                               {home.stateFolder(), home.runtimeFolder()}};
    for (const auto& [workspace, runtime] : others) {
        InstanceLock second(workspace, runtime);
        EXPECT_FALSE(second.isHeldByAnother());
        ASSERT_EQ(first.take(), InstanceLock::Outcome::taken);
        EXPECT_EQ(first.take(), InstanceLock::Outcome::taken);
        EXPECT_EQ(second.take(), InstanceLock::Outcome::heldByAnother);
        EXPECT_EQ(second.ownerPid(), QCoreApplication::applicationPid());
        EXPECT_FALSE(first.isHeldByAnother());
        first.release();
        EXPECT_EQ(second.ownerPid(), std::nullopt);
        EXPECT_EQ(second.take(), InstanceLock::Outcome::taken);
        EXPECT_EQ(first.errorText() + second.errorText(), QString());
    }
}

TEST(InstanceLockTest, WhatIsInTheFilesDoesNotMatter) {
    for (const QByteArray& content :
         {QByteArray(), QByteArray("1\n"), QByteArray("junk"),
          QByteArray::number(QCoreApplication::applicationPid()) + "\nand more\n"}) {
        const TemporaryHome home;
        const QStringList paths{home.runtimeFolder() + u"/app.veyla.Veyla.lock"_s,
                                home.dataFolder() + u"/workspace.lock"_s};
        for (const QString& path : paths)
            writeFile(path, content);
        InstanceLock lock(home.dataFolder(), home.runtimeFolder());
        EXPECT_FALSE(lock.isHeldByAnother());
        EXPECT_EQ(lock.take(), InstanceLock::Outcome::taken);
        for (const QString& path : paths)
            EXPECT_EQ(readFile(path),
                      QByteArray::number(QCoreApplication::applicationPid()) + '\n');
    }
}

TEST(InstanceLockTest, SaysWhatItCannotLockAndDoesWithWhatItCan) {
    const TemporaryHome home;
    const QString folder = home.dataFolder();
    ASSERT_TRUE(QFile::link(folder + u"/elsewhere"_s, folder + u"/workspace.lock"_s));
    const struct {
        QString workspace;
        QString runtime;
        InstanceLock::Outcome expected;
    } cases[]{{u"/proc/nowhere"_s, {}, InstanceLock::Outcome::unusable},
              {u"/proc/nowhere"_s, home.runtimeFolder(), InstanceLock::Outcome::taken},
              {folder, {}, InstanceLock::Outcome::taken}};
    for (const auto& [workspace, runtime, expected] : cases) {
        SCOPED_TRACE(workspace.toStdString());
        InstanceLock lock(workspace, runtime);
        EXPECT_EQ(lock.take(), expected);
        EXPECT_TRUE(lock.errorText().contains(workspace + u"/workspace.lock: "_s));
    }
    EXPECT_FALSE(QFile::exists(folder + u"/elsewhere"_s));
}

}  // namespace
