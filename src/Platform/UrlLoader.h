#pragma once

#include "Reactive/Subscription.h"

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <chrono>
#include <functional>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

struct UrlRequest {
    QUrl url;
    std::vector<std::pair<QByteArray, QByteArray>> headers;
    /// From the start until the whole body is there.
    std::chrono::milliseconds timeLimit{60'000};
    /// A longer body is an error, in bytes.
    qint64 bodyLimit = 1024 * 1024;
};

struct UrlResponse {
    /// Absent when the answer did not come over HTTP.
    std::optional<int> statusCode;
    QByteArray body;
};

/// Why there is no answer, in words for the user.
struct UrlError {
    QString message;
};

/// Fetches what is behind addresses.
class UrlLoader {
public:
    using Result = std::variant<UrlResponse, UrlError>;
    using Completion = std::function<void(const Result& result)>;
    /// Bytes received so far, and of how many where that is known.
    using Progress = std::function<void(qint64 received, std::optional<qint64> total)>;

    virtual ~UrlLoader() = default;

    /// Sends a GET request. Calls `completion` once from the main loop, never before this returns;
    /// letting go of the handle before then cancels the request silently, and inside `completion`
    /// does nothing. Redirects are followed, but never from https to another scheme.
    virtual Subscription load(const UrlRequest& request, Completion completion,
                              Progress progress = {}) = 0;
};
