#include "Platform/Headless/HeadlessUrlLoader.h"
#include "Services/ChangelogService.h"
#include "network/LoaderFixture.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using Answer = HttpServer::Answer;

/// The notes, in words that a table can hold; errors as "KIND: MESSAGE".
std::string summary(const ChangelogService::Result& result) {
    if (const auto* const found = std::get_if<ChangelogRelease>(&result)) {
        return (found->version + u'|' + found->date + u'|' + found->dateLabel + u'|' +
                found->tag.value_or(u"none"_s) + u'|' + found->changes.join(u','))
            .toStdString();
    }
    constexpr const char* kinds[] = {"network", "url", "response"};
    const auto& error = *std::get_if<ChangelogError>(&result);
    return kinds[int(error.kind)] + (": " + error.message().toStdString());
}

class ChangelogServiceTest : public LoaderTest {
protected:
    ChangelogServiceTest() { setAddress(server.url(u"/latest?x=1"_s).toString()); }
    ~ChangelogServiceTest() override { qunsetenv("VEYLA_CHANGELOG_URL"); }

    static void setAddress(const QString& address) {
        qputenv("VEYLA_CHANGELOG_URL", address.toUtf8());
    }

    std::string fetch() {
        QStringList results;
        const Subscription handle = service.fetchLatest(
            [&](const auto& result) { results.append(QString::fromStdString(summary(result))); });
        EXPECT_TRUE(goOnUntil([&] { return !results.isEmpty(); }));
        EXPECT_EQ(results.size(), 1);
        return results.value(0).toStdString();
    }

    ChangelogService service{loader};
};

TEST_F(ChangelogServiceTest, TurnsEveryAnswerIntoNotesOrOneError) {
    const QByteArray full = R"({"version": "2.1", "date": "2026-05-04", "dateLabel": "May 4",
        "tag": "beta", "changes": ["One", "Two"], "unknown": {"a": [1]}})";
    const QByteArray head = R"({"version": "2.1", "date": "d", "dateLabel": "l")";
    const std::string badResponse = "response: Could not load the latest release notes.";
    const std::string unreadable = "network: The release notes cannot be read: ";
    const struct {
        const char* description;
        Answer answer;
        /// The beginning of the outcome.
        std::string outcome;
    } cases[] = {
        {"full", {.body = full}, "2.1|2026-05-04|May 4|beta|One,Two"},
        {"no tag", {.body = head + R"(, "changes": []})"}, "2.1|d|l|none|"},
        {"null tag", {.body = head + R"(, "tag": null, "changes": []})"}, "2.1|d|l|none|"},
        {"203", {.status = 203, .body = full}, badResponse},
        {"204", {.status = 204, .announcedLength = -1}, badResponse},
        {"304", {.status = 304, .announcedLength = -1}, badResponse},
        {"407", {.status = 407, .body = full}, badResponse},
        {"500", {.status = 500, .body = full}, badResponse},
        {"redirect", {.status = 307, .headers = {{"Location", "/full"}}}, "2.1|2026-05-04"},
        {"no JSON", {.body = "<html>"}, unreadable},
        {"no body", {}, unreadable},
        {"an array", {.body = "[" + full + "]"}, unreadable},
        {"missing", {.body = head + "}"}, unreadable + "changes"},
        {"wrong type", {.body = head + R"(, "changes": "One"})"}, unreadable + "changes"},
        {"wrong element", {.body = head + R"(, "changes": [1]})"}, unreadable + "changes[0]"},
        {"too large",
         {.body = full + QByteArray(ChangelogService::bodyLimit, ' ')},
         "network: The answer is too large."},
        {"cut off",
         {.body = full, .announcedLength = 9999},
         "network: The connection to 127.0.0.1"},
    };
    server.answer("/full", {.body = full});
    for (const auto& [description, answer, outcome] : cases) {
        server.answer("/latest", answer);
        const auto askedBefore = server.requests().size();
        const std::string result = fetch();
        EXPECT_TRUE(result.starts_with(outcome)) << description << ": " << result;
        ASSERT_GT(server.requests().size(), askedBefore) << description;
        const auto& request = server.requests().at(askedBefore);
        EXPECT_EQ(request.method + " " + request.target, "GET /latest?x=1");
        EXPECT_EQ(request.headers.value("accept"), "application/json");
    }
    server.stopListening();
    EXPECT_EQ(fetch(), "network: Connection refused by 127.0.0.1.");
}

TEST_F(ChangelogServiceTest, UnusableAddressesAreToldAtOnceWithoutARequest) {
    for (const QString& address :
         {u""_s, u"no address"_s, u"http://[::1"_s, u"/latest"_s, u" "_s}) {
        setAddress(address);
        std::string outcome;
        const Subscription handle =
            service.fetchLatest([&](const auto& result) { outcome = summary(result); });
        EXPECT_EQ(outcome, "url: Invalid changelog URL.") << address.toStdString();
    }
    setAddress(u"file:///etc/hostname"_s);
    EXPECT_EQ(fetch(), "network: Only http and https addresses can be loaded.");
    EXPECT_TRUE(loader.isIdle());
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(ChangelogServiceTest, SilenceEndsAfterFifteenSeconds) {
    server.answer("/latest", {.isSilent = true});
    std::string outcome;
    const Subscription handle =
        service.fetchLatest([&](const auto& result) { outcome = summary(result); });
    ASSERT_TRUE(goOnUntil([&] { return server.requests().size() == 1; }));
    loop.advanceBy(std::chrono::milliseconds(14'999));
    EXPECT_EQ(outcome, "");
    loop.advanceBy(std::chrono::milliseconds(1));
    EXPECT_EQ(outcome, "network: The request timed out.");
}

TEST_F(ChangelogServiceTest, AsksTheProductsHostUnlessToldOtherwise) {
    qunsetenv("VEYLA_CHANGELOG_URL");
    HeadlessUrlLoader recorder(loop);
    const Subscription handle = ChangelogService(recorder).fetchLatest([](const auto&) {});
    ASSERT_EQ(recorder.requests().size(), 1);
    EXPECT_EQ(recorder.requests().front().url,
              QUrl(u"https://" VEYLA_WEB_HOST "/api/changelog/latest"_s));
}

}  // namespace
