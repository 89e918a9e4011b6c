#include "Platform/Qt/QtUrlLoader.h"

#include "Platform/Qt/SafeAddress.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslError>
#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

/// One request, from `load` until its completion is called.
class QtUrlLoader::Transfer : public std::enable_shared_from_this<Transfer> {
public:
    Transfer(UrlRequest toSend, Completion onEnd, Progress onProgress)
        : request(std::move(toSend)),
          completion(std::move(onEnd)),
          progress(std::move(onProgress)) {}
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() { letGoOfReply(); }

    bool hasEnded() const { return result.has_value(); }

    // May be called from inside a signal of the reply.
    void letGoOfReply() {
        if (reply == nullptr) return;
        QObject::disconnect(reply, nullptr, &context, nullptr);
        reply->abort();
        reply->deleteLater();
        reply = nullptr;
    }

    /// Its address is where the redirects have led so far.
    UrlRequest request;
    int redirectCount = 0;
    Completion completion;
    Progress progress;
    bool isProgressDue = false;
    QNetworkReply* reply = nullptr;
    std::optional<qint64> total;
    QByteArray body;
    /// What is wrong with the certificate of the server, if anything.
    QString certificateProblem;
    std::optional<Result> result;
    Subscription timeLimit;
    /// Ends the connections to the reply with the transfer.
    QObject context;
};

namespace {

bool isHttp(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == "http"_L1 || url.scheme() == "https"_L1);
}

bool isNoLessSafe(const QUrl& from, const QUrl& to) {
    if (!isHttp(to)) return false;
    if (to.scheme() == "https"_L1) return true;
    return from.scheme() == "http"_L1 && (isLoopback(to) || !isLoopback(from));
}

QNetworkRequest networkRequest(const UrlRequest& request) {
    QNetworkRequest result(request.url);
    // Qt would otherwise name a browser and the user's language. Compressed bodies would be counted
    // unpacked, and the length that the server announces would not be theirs.
    result.setRawHeader("User-Agent", "Veyla");
    result.setRawHeader("Accept-Language", "en");
    result.setRawHeader("Accept-Encoding", "identity");
    for (const auto& [name, value] : request.headers)
        result.setRawHeader(name, value);
    const auto set = [&](QNetworkRequest::Attribute attribute, int value) {
        result.setAttribute(attribute, value);
    };
    set(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    set(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    set(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    set(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    return result;
}

// Qt reports the statuses of servers as errors too, apart from those of the transport. A server
// that asks as a proxy does is one of them.
bool isTransportError(QNetworkReply::NetworkError error) {
    return error != QNetworkReply::ProxyAuthenticationRequiredError &&
           ((error > QNetworkReply::NoError && error < QNetworkReply::ContentAccessDenied) ||
            error == QNetworkReply::ProtocolFailure);
}

/// Where the answer sends the request, if it does.
std::optional<QUrl> redirectTarget(const QNetworkReply& reply) {
    const QVariant target = reply.attribute(QNetworkRequest::RedirectionTargetAttribute);
    if (!target.isValid()) return std::nullopt;
    return reply.url().resolved(target.toUrl());
}

QString errorText(const QNetworkReply& reply, const QUrl& url, const QString& certificateProblem) {
    switch (reply.error()) {
        case QNetworkReply::ConnectionRefusedError:
            return u"Connection refused by %1."_s.arg(url.host());
        case QNetworkReply::RemoteHostClosedError:
            return u"The connection to %1 was closed before the answer was complete."_s.arg(
                url.host());
        case QNetworkReply::HostNotFoundError:
            return u"The server %1 cannot be found."_s.arg(url.host());
        case QNetworkReply::SslHandshakeFailedError:
            return u"No secure connection to %1 could be made: %2"_s.arg(
                url.host(), certificateProblem.isEmpty() ? reply.errorString().simplified()
                                                         : certificateProblem);
        default:
            return reply.errorString().simplified();
    }
}

}  // namespace

QtUrlLoader::QtUrlLoader(Scheduler& scheduler) : m_scheduler(scheduler) {}

QtUrlLoader::~QtUrlLoader() {
    // Taken out first: what the completions hold may let go of further requests.
    const auto transfers = std::exchange(m_transfers, {});
    // One whose progress is being told outlives the loader, but its reply must not.
    for (const auto& transfer : transfers)
        transfer->letGoOfReply();
}

Subscription QtUrlLoader::load(const UrlRequest& request, Completion completion,
                               Progress progress) {
    const auto transfer =
        std::make_shared<Transfer>(request, std::move(completion), std::move(progress));
    m_transfers.push_back(transfer);
    if (isHttp(request.url)) {
        transfer->timeLimit = m_scheduler.after(
            request.timeLimit, m_lifetime.guard([this, weakTransfer = std::weak_ptr(transfer)] {
                const auto late = weakTransfer.lock();
                if (late && !late->hasEnded()) end(*late, UrlError{u"The request timed out."_s});
            }));
        send(*transfer);
    } else {
        end(*transfer, UrlError{u"Only http and https addresses can be loaded."_s});
    }
    return Subscription(m_lifetime.guard([this, weakTransfer = std::weak_ptr(transfer)] {
        if (const auto cancelled = weakTransfer.lock()) forget(cancelled);
    }));
}

void QtUrlLoader::send(Transfer& transfer) {
    if (!m_manager) m_manager = std::make_unique<QNetworkAccessManager>();
    transfer.reply = m_manager->get(networkRequest(transfer.request));

    // The connections end with the transfer's context at the latest.
    const auto* const reply = transfer.reply;
    QObject::connect(reply, &QNetworkReply::sslErrors, &transfer.context,
                     [&transfer](const QList<QSslError>& errors) {
                         transfer.certificateProblem = errors.value(0).errorString();
                     });
    QObject::connect(reply, &QNetworkReply::metaDataChanged, &transfer.context,
                     [this, &transfer] { receive(transfer); });
    QObject::connect(reply, &QNetworkReply::readyRead, &transfer.context,
                     [this, &transfer] { receive(transfer); });
    QObject::connect(reply, &QNetworkReply::finished, &transfer.context,
                     [this, &transfer] { conclude(transfer); });
}

// Qt 6.4 would follow by itself, but it goes on from http to any host, and when it asks before each
// step it takes some of them twice.
void QtUrlLoader::followRedirect(Transfer& transfer, const QUrl& target) {
    QUrl& url = transfer.request.url;
    if (!isNoLessSafe(url, target)) {
        end(transfer, UrlError{u"%1 redirects to a place that is less safe."_s.arg(url.host())});
    } else if (++transfer.redirectCount > redirectLimit) {
        end(transfer, UrlError{u"%1 redirects too often."_s.arg(url.host())});
    } else {
        url = target;
        transfer.letGoOfReply();
        send(transfer);
    }
}

void QtUrlLoader::receive(Transfer& transfer) {
    if (const auto target = redirectTarget(*transfer.reply)) {
        followRedirect(transfer, *target);
        return;
    }
    const QVariant length = transfer.reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid()) transfer.total = length.toLongLong();
    if (std::max(transfer.total.value_or(0),
                 transfer.body.size() + transfer.reply->bytesAvailable()) >
        transfer.request.bodyLimit) {
        end(transfer, UrlError{u"The answer is too large."_s});
        return;
    }
    transfer.body += transfer.reply->readAll();

    // Told from the main loop, like the completion, and only of the latest state.
    if (!transfer.progress || std::exchange(transfer.isProgressDue, true)) return;
    m_scheduler.post([weakTransfer = transfer.weak_from_this()] {
        const auto told = weakTransfer.lock();
        if (!told || told->hasEnded()) return;
        told->isProgressDue = false;
        told->progress(told->body.size(), told->total);
    });
}

void QtUrlLoader::conclude(Transfer& transfer) {
    const QNetworkReply& reply = *transfer.reply;
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (isTransportError(reply.error()) || !status.isValid()) {
        end(transfer,
            UrlError{errorText(reply, transfer.request.url, transfer.certificateProblem)});
        return;
    }
    receive(transfer);
    if (transfer.reply != &reply) return;
    end(transfer, UrlResponse{status.toInt(), std::exchange(transfer.body, {})});
}

void QtUrlLoader::end(Transfer& transfer, Result result) {
    transfer.result = std::move(result);
    transfer.timeLimit.reset();
    transfer.letGoOfReply();
    m_scheduler.post(m_lifetime.guard([this, weakTransfer = transfer.weak_from_this()] {
        if (const auto ended = weakTransfer.lock()) deliver(ended);
    }));
}

void QtUrlLoader::deliver(const std::shared_ptr<Transfer>& transfer) {
    forget(transfer);
    // Last, since the loader may die in it.
    transfer->completion(*transfer->result);
}

void QtUrlLoader::forget(const std::shared_ptr<Transfer>& transfer) {
    transfer->letGoOfReply();
    std::erase(m_transfers, transfer);
    if (m_transfers.empty()) m_manager.reset();
}
