#include "network/LoaderFixture.h"

#include <QDir>
#include <QSet>
#include <QSslCertificate>

using namespace Qt::Literals::StringLiterals;

namespace {

using Answer = HttpServer::Answer;

Answer redirect(const QUrl& target) {
    return {.status = 302, .headers = {{"Location", target.toEncoded()}}};
}

class UrlLoaderTest : public LoaderTest {
protected:
    /// The status and the body, or the error.
    std::string load(UrlRequest request) {
        int calls = 0;
        std::string outcome;
        const Subscription handle = loader.load(request, [&](const UrlLoader::Result& result) {
            ++calls;
            if (const auto* const error = std::get_if<UrlError>(&result)) {
                outcome = error->message.toStdString();
                return;
            }
            const auto& response = *std::get_if<UrlResponse>(&result);
            outcome = std::to_string(response.statusCode.value_or(-1)) + " " +
                      response.body.toStdString();
        });
        EXPECT_EQ(calls, 0) << "called before load returned";
        EXPECT_TRUE(goOnUntil([&] { return calls > 0; })) << request.url.toString().toStdString();
        loop.advanceBy(request.timeLimit * 2);
        EXPECT_EQ(calls, 1);
        EXPECT_TRUE(loader.isIdle() && loop.isIdle());
        return outcome;
    }

    std::string load(const QUrl& url) { return load(UrlRequest{.url = url, .headers = {}}); }
};

TEST_F(UrlLoaderTest, SendsWhatIsAskedForAndNothingOfTheUser) {
    server.answer("/", {.headers = {{"Set-Cookie", "who=me"}, {"Cache-Control", "max-age=999"}}});
    for (int i = 0; i < 2; ++i)
        load(UrlRequest{.url = server.url(u"/?a=b"_s), .headers = {{"Accept", "text/x"}}});
    ASSERT_EQ(server.requests().size(), 2) << "an answer was taken from a cache";
    for (const auto& request : server.requests()) {
        EXPECT_EQ(request.method + " " + request.target, "GET /?a=b");
        EXPECT_EQ(request.headers.value("accept"), "text/x");
        EXPECT_EQ(request.headers.value("user-agent"), "Veyla");
        EXPECT_EQ(request.headers.keys().join(' '),
                  "accept accept-encoding accept-language connection host user-agent");
    }
}

TEST_F(UrlLoaderTest, RefusesWhatIsNotHttp) {
    const std::string refusal = "Only http and https addresses can be loaded.";
    for (const QUrl& url : {QUrl::fromLocalFile(u"/etc/hostname"_s), QUrl(u"data:,text"_s),
                            QUrl(u"ftp://127.0.0.1/"_s), QUrl(u"http:///path"_s), QUrl()})
        EXPECT_EQ(load(url), refusal) << url.toString().toStdString();
}

TEST_F(UrlLoaderTest, FollowsRedirectsToNoLessSafePlace) {
    const std::string refused = "127.0.0.1 redirects to a place that is less safe.";
    const struct {
        QUrl target;
        std::string outcome;
    } cases[] = {
        {server.url(u"/end"_s), "200 end"},
        {QUrl(u"end"_s), "200 end"},
        {QUrl(u"http://192.0.2.1/"_s), refused},
        {QUrl(u"file:///etc/hostname"_s), refused},
        {server.url(u"/start"_s), "127.0.0.1 redirects too often."},
    };
    server.answer("/end", {.body = "end"});
    for (const auto& [target, outcome] : cases) {
        server.answer("/start", redirect(target));
        EXPECT_EQ(load(server.url(u"/start"_s)), outcome) << target.toString().toStdString();
    }
}

TEST_F(UrlLoaderTest, TrustsOnlyKnownCertificatesAndNeverLeavesTls) {
    const QSslConfiguration identity = HttpServer::selfSigned();
    HttpServer secure(identity);
    secure.answer("/", {.body = "secret"});
    secure.answer("/down", redirect(server.url()));
    secure.answer("/on", redirect(secure.url()));
    server.answer("/", {.body = "plain"});
    server.answer("/up", redirect(secure.url()));

    const std::string unknown = load(secure.url());
    EXPECT_TRUE(unknown.starts_with("No secure connection to 127.0.0.1 could be made: "))
        << unknown;
    EXPECT_EQ(unknown.find('\n'), std::string::npos);
    EXPECT_TRUE(secure.requests().isEmpty());

    const QSslConfiguration usual = QSslConfiguration::defaultConfiguration();
    QSslConfiguration trusting = usual;
    trusting.addCaCertificate(identity.localCertificate());
    QSslConfiguration::setDefaultConfiguration(trusting);
    EXPECT_EQ(load(secure.url(u"/on"_s)), "200 secret");
    EXPECT_EQ(load(server.url(u"/up"_s)), "200 secret");
    const auto plainRequests = server.requests().size();
    EXPECT_EQ(load(secure.url(u"/down"_s)), "127.0.0.1 redirects to a place that is less safe.");
    EXPECT_EQ(server.requests().size(), plainRequests);
    QSslConfiguration::setDefaultConfiguration(usual);
}

TEST_F(UrlLoaderTest, StopsAtTheBodyLimit) {
    const std::string tooLarge = "The answer is too large.";
    UrlRequest request{.url = server.url(), .headers = {}};
    request.bodyLimit = 10;
    const struct {
        const char* description;
        Answer answer;
        std::string outcome;
    } cases[] = {
        {"just fits", {.body = "0123456789"}, "200 0123456789"},
        {"one more", {.body = "0123456789a"}, tooLarge},
        {"announced only",
         {.announcedLength = 11, .ending = HttpServer::Ending::stayOpen},
         tooLarge},
        {"never ends",
         {.body = "0123456789a", .announcedLength = -1, .ending = HttpServer::Ending::stayOpen},
         tooLarge},
    };
    for (const auto& [description, answer, outcome] : cases) {
        server.answer("/", answer);
        EXPECT_EQ(load(request), outcome) << description;
    }
    // Bodies of redirects do not count.
    server.answer("/",
                  {.status = 302, .body = QByteArray(50, 'x'), .headers = {{"Location", "/b"}}});
    server.answer("/b", {.body = "end"});
    EXPECT_EQ(load(request), "200 end");
}

QSet<QString> threads() {
    const auto ids = QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return {ids.begin(), ids.end()};
}

TEST_F(UrlLoaderTest, LettingGoCancelsSilentlyAndLeavesNothing) {
    server.answer(
        "/", {.body = "begun", .announcedLength = 100, .ending = HttpServer::Ending::stayOpen});
    const auto threadsBefore = threads();
    std::vector<qint64> progress;
    int completions = 0;
    Subscription handle = loader.load(
        {.url = server.url(), .headers = {}}, [&](const auto&) { ++completions; },
        [&](qint64 received, std::optional<qint64> total) {
            EXPECT_EQ(total, 100);
            progress.push_back(received);
        });
    ASSERT_TRUE(goOnUntil([&] { return !progress.empty() && progress.back() == 5; }));
    server.sendMore("more");
    ASSERT_TRUE(goOnUntil([&] { return progress.back() == 9; }));
    const auto ownThreads = threads() - threadsBefore;
    EXPECT_FALSE(ownThreads.isEmpty());
    handle.reset();
    EXPECT_TRUE(waitUntil([&] { return server.connectionCount() == 0; }));
    EXPECT_TRUE(loader.isIdle() && loop.isIdle());
    EXPECT_TRUE(waitUntil([&] { return !threads().intersects(ownThreads); }));
    EXPECT_EQ(completions, 0);

    // A loader may die in a callback, with other requests under way.
    server.answer("/all", {.body = "all"});
    for (const QString& path : {u"/all"_s, u"/"_s}) {
        auto own = std::make_unique<QtUrlLoader>(loop);
        const auto end = [&](auto...) {
            ++completions;
            own.reset();
        };
        handle = own->load({.url = server.url(path), .headers = {}}, end, end);
        const Subscription other = own->load({.url = server.url(), .headers = {}}, end);
        EXPECT_TRUE(goOnUntil([&] { return own == nullptr; }));
        loop.advanceBy(std::chrono::hours(1));
    }
    EXPECT_EQ(completions, 2);
}

}  // namespace
