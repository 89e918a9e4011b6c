#include "Platform/Qt/Updates/AppcastUpdateFramework.h"
#include "network/LoaderFixture.h"
#include "network/SigningKey.h"
#include "support/Files.h"
#include "support/RecordingSystemLog.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

using Answer = HttpServer::Answer;
using Transcript = QStringList;

/// Writes down what the user would see, and keeps the buttons.
class RecordingUser : public UpdateUserDriver {
public:
    void showChecking(std::function<void()> onCancel) override {
        shown.append(u"checking"_s);
        cancel = std::move(onCancel);
    }
    void showOffer(const UpdateOffer& offer, bool isExpected,
                   std::function<void(UpdateChoice)> onChoice) override {
        shown.append(u"offer %1 over %2: %3%4"_s.arg(offer.version, offer.runningVersion,
                                                     offer.notes,
                                                     isExpected ? u""_s : u", unexpected"_s));
        choose = std::move(onChoice);
    }
    void showDownload(const QString& version, std::function<void()> onCancel) override {
        shown.append(u"download "_s + version);
        cancel = std::move(onCancel);
    }
    void showProgress(qint64 received, std::optional<qint64> total) override {
        progress = {received, total.value_or(-1)};
    }
    void showOutcome(const UpdateOutcome& outcome) override {
        constexpr const char* names[] = {"up to date",      "cannot check",  "check failed",
                                         "download failed", "bad signature", "cannot keep",
                                         "handed over",     "not opened"};
        shown.append(u"%1 %2: %3"_s.arg(QString::fromLatin1(names[int(outcome.kind)]),
                                        outcome.version, outcome.reason));
        packagePath = outcome.packagePath;
    }
    void bringToFront() override { shown.append(u"to front"_s); }
    void dismiss() override { shown.append(u"nothing"_s); }
    void setAutomaticChecks(bool isOn, std::function<void(bool)> onChange) override {
        automaticChecks = isOn;
        switchAutomaticChecks = std::move(onChange);
    }

    Transcript take() { return std::exchange(shown, {}); }

    Transcript shown;
    bool automaticChecks = false;
    QString packagePath;
    std::pair<qint64, qint64> progress;
    std::function<void()> cancel;
    std::function<void(UpdateChoice)> choose;
    std::function<void(bool)> switchAutomaticChecks;
};

const SigningKey& releaseKey() {
    static const SigningKey key;
    return key;
}

const QByteArray goodPackage = QByteArray("package ").repeated(1000);

const QByteArray& goodSignature() {
    static const QByteArray signature = releaseKey().signatureOf(goodPackage);
    return signature;
}

/// Of a file that only the user can read, and nobody run.
QByteArray contentsOfOwnFile(const QString& path) {
    EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOwner),
              QFile::Permissions());
    return readFile(path);
}

class UpdateTest : public LoaderTest {
protected:
    UpdateTest() {
        setup = {.runningVersion = u"1.0"_s,
                 .publicKey = releaseKey().publicKey(),
                 .memoryPath = folder.filePath(u"state/Veyla/updates.json"_s),
                 .packageFolder = folder.filePath(u"cache/Veyla/updates"_s),
                 .now =
                     [this] {
                         return startOfClock + std::chrono::floor<std::chrono::seconds>(loop.now());
                     },
                 .openPackage =
                     [this](const QString& path) {
                         opened.append(path);
                         return canOpen;
                     }};
    }

    void start(const std::optional<QUrl>& feed) {
        framework.reset();
        framework = std::make_unique<AppcastUpdateFramework>(loader, loop, user, log, setup);
        framework->setFeedUrl(feed);
        startError = framework->start().value_or(QString());
        canCheckObserver = framework->canCheckForUpdates().subscribe(
            [this](bool newCanCheck) { canCheck = newCanCheck; });
    }
    void start() { start(server.url(u"/feed"_s)); }

    QByteArray enclosure(const QByteArray& more) const {
        return "<enclosure url='" + server.url(u"/veyla_1.2.deb"_s).toEncoded() + "' " + more +
               "/>";
    }
    QByteArray goodEnclosure() const {
        return enclosure("length='" + QByteArray::number(goodPackage.size()) + "' s:edSignature='" +
                         goodSignature() + "'");
    }
    static QByteArray item(const char* version, const QByteArray& more) {
        return "<item><s:version>" + QByteArray(version) +
               "</s:version><description>Notes</description>" + more + "</item>";
    }
    void answerFeed(const QByteArray& items) {
        server.answer("/feed",
                      {.body = "<rss "
                               "xmlns:s='http://www.andymatuschak.org/xml-namespaces/sparkle'>"
                               "<channel>" +
                               items + "</channel></rss>"});
    }
    void offerGoodRelease() {
        answerFeed(item("1.2", goodEnclosure()));
        server.answer("/veyla_1.2.deb", {.body = goodPackage});
    }

    /// Lets a check, or a download, go on to its outcome or offer.
    bool settle() {
        return goOnUntil([&] { return canCheck; });
    }

    /// A check that the user asks for, up to its outcome or offer.
    Transcript check() {
        framework->checkForUpdates();
        EXPECT_FALSE(canCheck);
        EXPECT_TRUE(settle());
        return user.take();
    }
    /// The download after it, up to its outcome.
    Transcript install() {
        user.choose(UpdateChoice::install);
        EXPECT_FALSE(canCheck);
        EXPECT_TRUE(settle());
        return user.take();
    }

    QStringList keptFiles() const {
        return QDir(setup.packageFolder).entryList(QDir::Files | QDir::Hidden);
    }
    auto requestCount() const { return server.requests().size(); }

    QTemporaryDir folder;
    std::chrono::sys_seconds startOfClock{std::chrono::seconds(1'800'000'000)};
    RecordingUser user;
    RecordingSystemLog log;
    QStringList opened;
    bool canOpen = true;
    AppcastUpdateFramework::Setup setup;
    QString startError;
    bool canCheck = false;
    Subscription canCheckObserver;
    std::unique_ptr<AppcastUpdateFramework> framework;
};

TEST_F(UpdateTest, ReleasesAreOfferedThatAreNewerAndOpenedThatAreWholeAndSigned) {
    const QByteArray good = goodEnclosure();
    const QByteArray signature = "s:edSignature='" + goodSignature() + "'";
    const auto signedBy = [&](const QByteArray& text) {
        return item("1.2", enclosure("s:edSignature='" + text + "'"));
    };
    const auto from = [](const QByteArray& url) {
        return item("1.2", "<enclosure url='" + url + "'/>");
    };
    QByteArray changed = goodPackage;
    changed[5000] = 'x';
    const Answer whole{.body = goodPackage};
    const QString handedOver = u"handed over 1.2: "_s;
    const QString upToDate = u"up to date 1.0: "_s;
    const QString notSafe = u"check failed 1.2: Its package is not at an https address."_s;
    const QString wrong = u"bad signature 1.2: The signature of the package is wrong."_s;
    const struct {
        QByteArray items;
        Answer package;
        /// The beginning of what is shown in the end.
        QString outcome;
    } cases[] = {
        {item("1.2", good), whole, handedOver},
        {item("1.1", {}) + item("1.2", enclosure(signature)), whole, handedOver},
        {item("1.2-beta.1", good), whole, upToDate},
        {{}, whole, upToDate},
        {"<item>", whole, u"check failed : The list of releases cannot be read, line 1: "_s},
        {item("1.2", {}), whole, u"check failed 1.2: There is no package"_s},
        {item("1.2", "<enclosure/>"), whole, u"check failed 1.2: There is no package"_s},
        {from("http://192.0.2.1/p.deb"), whole, notSafe},
        {from("file:///etc/hostname"), whole, notSafe},
        {item("1.2", enclosure("length='9999999999'")), whole,
         u"check failed 1.2: Its package is too large."_s},
        {item("1.2", enclosure({})), whole, u"bad signature 1.2: The release is not signed."_s},
        {signedBy(SigningKey().signatureOf(goodPackage)), whole, wrong},
        {signedBy(goodSignature().first(44)), whole, wrong},
        {signedBy("no Base64"), whole, wrong},
        {item("1.2", good), {.body = changed}, wrong},
        {signedBy(goodSignature()), {}, wrong},
        {item("1.2", good),
         {.body = goodPackage.chopped(1)},
         u"download failed 1.2: The package is shorter than announced."_s},
        {item("1.2", good),
         {.body = goodPackage + 'x'},
         u"download failed 1.2: The answer is too large."_s},
        {item("1.2", good),
         {.status = 410, .body = goodPackage},
         u"download failed 1.2: The server answered with status 410."_s},
    };
    start();
    EXPECT_EQ(startError, QString());
    for (const auto& [items, package, outcome] : cases) {
        answerFeed(items);
        server.answer("/veyla_1.2.deb", package);
        Transcript shown = check();
        const bool isOffered = shown.last() == u"offer 1.2 over 1.0: Notes"_s;
        EXPECT_EQ(server.requests().last().target, "/feed") << "a package was loaded unasked";
        if (isOffered) shown = install();
        EXPECT_TRUE(shown.last().startsWith(outcome))
            << items.constData() << ": " << shown.last().toStdString();
        EXPECT_EQ(opened.size(), outcome == handedOver ? 1 : 0) << items.constData();
        EXPECT_EQ(keptFiles().size(), opened.size()) << items.constData();
        opened.clear();
        QDir(setup.packageFolder).removeRecursively();
    }
    server.answer("/feed", {.status = 404});
    EXPECT_EQ(check(), (Transcript{u"checking"_s,
                                   u"check failed : The server answered with status 404."_s}));
    server.stopListening();
    EXPECT_EQ(check().last(), u"check failed : Connection refused by 127.0.0.1."_s);
}

TEST_F(UpdateTest, HandsOverAGoodReleaseAndKeepsNoOther) {
    offerGoodRelease();
    for (const auto& name : {u"/old.deb"_s, u"/half.part"_s})
        writeFile(setup.packageFolder + name, {});
    const auto everybody = QFile::Permissions(0x7777);
    ASSERT_TRUE(QFile::setPermissions(setup.packageFolder, everybody));
    start();
    EXPECT_EQ(keptFiles(), QStringList{u"old.deb"_s});
    check();
    EXPECT_EQ(install(), (Transcript{u"download 1.2"_s, u"handed over 1.2: "_s}));
    EXPECT_EQ(keptFiles(), QStringList{u"veyla_1.2.deb"_s});
    EXPECT_EQ(opened, QStringList{user.packagePath});
    EXPECT_EQ(contentsOfOwnFile(user.packagePath), goodPackage);
    EXPECT_EQ(QFile::permissions(setup.packageFolder) & QFile::Permissions(0x0077),
              QFile::Permissions());
    canOpen = false;
    check();
    EXPECT_EQ(install().last(), u"not opened 1.2: "_s);

    // Names are taken from an unsigned list, and a disk may be full.
    const QByteArray url = server.url(u"/..%2F.;$x"_s).toEncoded();
    server.answer("/..%2F.;$x", {.body = goodPackage});
    answerFeed(
        item("1.2", "<enclosure url='" + url + "' s:edSignature='" + goodSignature() + "'/>"));
    check();
    EXPECT_EQ(install().last(), u"not opened 1.2: "_s);
    EXPECT_EQ(keptFiles(), QStringList{u"_x"_s});
    setup.packageFolder = u"/proc/nowhere"_s;
    start();
    check();
    EXPECT_EQ(install().last(),
              u"cannot keep 1.2: The folder /proc/nowhere cannot be made: "
              "No such file or directory."_s);
}

TEST_F(UpdateTest, CancellingLeavesNothing) {
    offerGoodRelease();
    server.answer("/veyla_1.2.deb", {.body = goodPackage.first(999),
                                     .announcedLength = goodPackage.size(),
                                     .ending = HttpServer::Ending::stayOpen});
    start();
    check();
    user.choose(UpdateChoice::install);
    ASSERT_TRUE(goOnUntil([&] { return user.progress.first == 999; }));
    EXPECT_EQ(user.progress.second, goodPackage.size());
    framework->checkForUpdates();
    EXPECT_EQ(user.take(), (Transcript{u"download 1.2"_s, u"to front"_s}));
    user.cancel();
    EXPECT_TRUE(canCheck && loader.isIdle());
    EXPECT_TRUE(waitUntil([&] { return server.connectionCount() == 0; }));
    EXPECT_FALSE(QDir(setup.packageFolder).exists());

    server.answer("/feed", {.isSilent = true});
    framework->checkForUpdates();
    user.cancel();
    EXPECT_TRUE(canCheck && loader.isIdle());
    EXPECT_EQ(user.take(), (Transcript{u"nothing"_s, u"checking"_s, u"nothing"_s}));

    // The program may end in the middle of it.
    framework->checkForUpdates();
    framework.reset();
    user.cancel();
    EXPECT_TRUE(loader.isIdle() && loop.isIdle());
}

TEST_F(UpdateTest, TellsWhyItCannotCheck) {
    const QByteArray key = setup.publicKey;
    const struct {
        std::optional<QUrl> feed;
        QByteArray key;
        const char* reason;
    } cases[] = {
        {{}, key, "knows no list"},
        {QUrl(u"http://192.0.2.1/feed"_s), key, "not at an https address"},
        {QUrl(u"file:///feed"_s), key, "not at an https address"},
        {server.url(), {}, "has no key"},
        {server.url(), key.first(40), "broken"},
        {server.url(), "no Base64", "broken"},
    };
    for (const auto& [feed, usedKey, reason] : cases) {
        setup.publicKey = usedKey;
        start(feed);
        EXPECT_TRUE(startError.contains(QLatin1StringView(reason))) << startError.toStdString();
        EXPECT_FALSE(canCheck);
        framework->checkForUpdates();
        EXPECT_EQ(user.take(), Transcript{u"cannot check : "_s + startError});
        EXPECT_TRUE(loop.isIdle() && loader.isIdle());
    }
}

constexpr std::chrono::hours day{24};

TEST_F(UpdateTest, ChecksByItselfOnceADayAndSpeaksOnlyOfNews) {
    answerFeed({});
    start();
    EXPECT_TRUE(user.automaticChecks);
    const auto expectCheckAfter = [&](std::chrono::milliseconds delay) {
        const auto before = requestCount();
        loop.advanceBy(delay - std::chrono::milliseconds(1));
        EXPECT_TRUE(canCheck);
        loop.advanceBy(std::chrono::milliseconds(1));
        EXPECT_FALSE(canCheck);
        EXPECT_TRUE(settle());
        EXPECT_EQ(requestCount(), before + 1);
    };
    expectCheckAfter(AppcastUpdateFramework::delayAfterStart);
    server.answer("/feed", {.status = 500});
    expectCheckAfter(day);
    EXPECT_EQ(log.lines, QStringList{u"Veyla failed to check for updates: The server answered "
                                     "with status 500."_s});
    answerFeed({});

    // Days are counted over restarts, also when the clock has been put back.
    loop.advanceBy(std::chrono::hours(10));
    start();
    expectCheckAfter(std::chrono::hours(14));
    startOfClock -= std::chrono::hours(1000);
    start();
    expectCheckAfter(day);
    EXPECT_EQ(user.take(), Transcript());

    // A check of the user's counts too, and takes over one that runs.
    loop.advanceBy(std::chrono::hours(10));
    check();
    expectCheckAfter(day);
    loop.advanceBy(day);
    framework->checkForUpdates();
    EXPECT_TRUE(settle());
    EXPECT_EQ(user.take(), (Transcript{u"checking"_s, u"up to date 1.0: "_s}));

    offerGoodRelease();
    expectCheckAfter(day);
    EXPECT_EQ(user.take(), Transcript{u"offer 1.2 over 1.0: Notes, unexpected"_s});
    framework->checkForUpdates();
    EXPECT_EQ(user.take(), Transcript{u"to front"_s});
    // A day passes before the user answers; then the version is never offered unasked again.
    const auto before = requestCount();
    loop.advanceBy(day);
    EXPECT_EQ(requestCount(), before);
    user.choose(UpdateChoice::skip);
    start();
    expectCheckAfter(AppcastUpdateFramework::delayAfterStart);
    EXPECT_EQ(user.take(), Transcript{u"nothing"_s});
    EXPECT_EQ(check().last(), u"offer 1.2 over 1.0: Notes"_s);
}

TEST_F(UpdateTest, ChecksByItselfCanBeOffAndAreNotMadeWhenTheyCannotBeRemembered) {
    offerGoodRelease();
    start();
    user.switchAutomaticChecks(false);
    EXPECT_TRUE(loop.isIdle()) << "a timer is left";
    start();
    EXPECT_FALSE(user.automaticChecks);
    EXPECT_TRUE(loop.isIdle()) << "a timer is left";
    EXPECT_EQ(QJsonDocument::fromJson(contentsOfOwnFile(setup.memoryPath)).object(),
              (QJsonObject{{u"automaticChecks"_s, false}}));
    user.switchAutomaticChecks(true);
    EXPECT_FALSE(loop.isIdle());

    setup.memoryPath = u"/proc/nowhere/updates.json"_s;
    start();
    loop.advanceBy(day * 2);
    EXPECT_EQ(requestCount(), 0);
    EXPECT_EQ(log.lines, (QStringList(2, u"Veyla failed to save /proc/nowhere/updates.json"_s)));
    EXPECT_EQ(check().size(), 2);

    // Members that do not fit read as missing.
    setup.memoryPath = folder.filePath(u"damaged.json"_s);
    writeFile(setup.memoryPath,
              R"({"automaticChecks": "no", "lastCheck": 9e18, "skippedVersion": 1})");
    start();
    EXPECT_TRUE(user.automaticChecks);
    const auto before = requestCount();
    loop.advanceBy(AppcastUpdateFramework::delayAfterStart);
    EXPECT_TRUE(settle());
    EXPECT_EQ(requestCount(), before + 1);
}

TEST_F(UpdateTest, ThisBuildKeepsItsFilesInTheFoldersOfTheUser) {
    const QByteArray stateHome = qgetenv("XDG_STATE_HOME");
    const auto build = AppcastUpdateFramework::Setup::ofThisBuild();
    EXPECT_EQ(build.memoryPath, QString::fromUtf8(stateHome) + u"/Veyla/updates.json"_s);
    EXPECT_EQ(build.packageFolder, qEnvironmentVariable("XDG_CACHE_HOME") + u"/Veyla/updates"_s);
    EXPECT_GT(build.now(), startOfClock - std::chrono::years(5));
    qputenv("XDG_STATE_HOME", "relative");
    EXPECT_EQ(UpdateMemory::defaultPath(),
              QDir::homePath() + u"/.local/state/Veyla/updates.json"_s);
    qputenv("XDG_STATE_HOME", stateHome);
}

}  // namespace
