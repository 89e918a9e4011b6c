#pragma once

#include "Models/ChangelogRelease.h"
#include "Platform/UrlLoader.h"

#include <QString>
#include <QUrl>
#include <chrono>
#include <functional>
#include <optional>
#include <variant>

/// Why the release notes could not be fetched.
struct ChangelogError {
    enum class Kind { networkError, invalidURL, badResponse };

    Kind kind = Kind::networkError;
    /// What the transport or the reading of the answer said; for `networkError` only.
    QString reason;

    /// What the user sees.
    QString message() const;

    bool operator==(const ChangelogError&) const = default;
};

/// Fetches the notes of the latest release. Keeps nothing and tries once: every call is a request
/// of its own.
///
/// The address is that of the product's web host, or what the environment variable
/// VEYLA_CHANGELOG_URL holds at the time of the call.
class ChangelogService {
public:
    static constexpr std::chrono::seconds timeLimit{15};
    /// In bytes; the notes of a release are a few kilobytes.
    static constexpr qint64 bodyLimit = 1024 * 1024;

    using Result = std::variant<ChangelogRelease, ChangelogError>;

    /// The loader must outlive the service.
    explicit ChangelogService(UrlLoader& loader) : m_loader(loader) {}

    /// The page with the notes of all releases, which no environment variable changes; nothing
    /// where the build's web host makes no address.
    static std::optional<QUrl> pageURL();

    /// Calls back once; at once for an address that cannot be used, else from the main loop.
    /// Letting go of the handle cancels the request, and nothing is called.
    Subscription fetchLatest(std::function<void(const Result& result)> completion);

private:
    UrlLoader& m_loader;
};
