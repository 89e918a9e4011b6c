#include "Services/ChangelogService.h"

#include "Models/Json.h"

#include <QJsonDocument>
#include <QUrl>
#include <utility>

namespace {

constexpr int statusOk = 200;

std::optional<QUrl> validURL(const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    if (url.isEmpty() || !url.isValid() || url.isRelative()) return std::nullopt;
    return url;
}

std::optional<QUrl> latestURL() {
    const QString text = qEnvironmentVariableIsSet("VEYLA_CHANGELOG_URL")
                             ? qEnvironmentVariable("VEYLA_CHANGELOG_URL")
                             : QStringLiteral("https://" VEYLA_WEB_HOST "/api/changelog/latest");
    return validURL(text);
}

ChangelogError networkError(const QString& reason) {
    return {ChangelogError::Kind::networkError, reason};
}

ChangelogService::Result decoded(const QByteArray& body) {
    QJsonParseError parseError;
    const auto document = QJsonDocument::fromJson(body, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return networkError(QStringLiteral("The release notes cannot be read: ") +
                            parseError.errorString());
    try {
        const JsonPath path;
        const QJsonValue root =
            document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
        return ChangelogRelease::fromJson(JsonObjectReader(root, path));
    } catch (const JsonError& error) {
        return networkError(QStringLiteral("The release notes cannot be read: ") + error.message());
    }
}

ChangelogService::Result interpreted(const UrlLoader::Result& result) {
    if (const auto* const error = std::get_if<UrlError>(&result))
        return networkError(error->message);
    const auto& response = *std::get_if<UrlResponse>(&result);
    if (response.statusCode != statusOk)
        return ChangelogError{ChangelogError::Kind::badResponse, QString()};
    return decoded(response.body);
}

}  // namespace

QString ChangelogError::message() const {
    switch (kind) {
        case Kind::networkError:
            return reason;
        case Kind::invalidURL:
            return QStringLiteral("Invalid changelog URL.");
        case Kind::badResponse:
            return QStringLiteral("Could not load the latest release notes.");
    }
    return reason;
}

std::optional<QUrl> ChangelogService::pageURL() {
    const auto url = validURL(QStringLiteral("https://" VEYLA_WEB_HOST "/changelog"));
    return url && !url->host().isEmpty() ? url : std::nullopt;
}

Subscription ChangelogService::fetchLatest(std::function<void(const Result& result)> completion) {
    const auto url = latestURL();
    if (!url) {
        completion(ChangelogError{ChangelogError::Kind::invalidURL, QString()});
        return {};
    }
    return m_loader.load({*url, {{"Accept", "application/json"}}, timeLimit, bodyLimit},
                         [completion = std::move(completion)](const UrlLoader::Result& result) {
                             completion(interpreted(result));
                         });
}
