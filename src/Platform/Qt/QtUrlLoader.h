#pragma once

#include "Platform/UrlLoader.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Scheduler.h"

#include <memory>
#include <vector>

class QNetworkAccessManager;

/// Fetches over http and https; any other address is refused with an error. Every answer of the
/// server is a response, whatever its status. Keeps no cookies and no cache, sends nothing that
/// tells of the user, and uses the proxy of the environment.
///
/// Redirects are followed at most `redirectLimit` times, and not to a less safe place: neither from
/// https to another scheme, nor over plain http from this machine to another one. A server that
/// hangs up before it says anything is asked again a few times by the toolkit.
///
/// What the network needs (connections, a thread of the toolkit) exists only while something is
/// being loaded; where the toolkit asks libproxy for the proxy, the sleeping thread that it does so
/// with stays. Needs a QCoreApplication, and its event loop to run.
class QtUrlLoader final : public UrlLoader {
public:
    static constexpr int redirectLimit = 5;

    /// Time limits and completions go through the scheduler, which must outlive the loader.
    explicit QtUrlLoader(Scheduler& scheduler);
    QtUrlLoader(const QtUrlLoader&) = delete;
    QtUrlLoader& operator=(const QtUrlLoader&) = delete;
    /// Cancels what is under way.
    ~QtUrlLoader() override;

    Subscription load(const UrlRequest& request, Completion completion,
                      Progress progress = {}) override;

    /// Whether nothing is under way, and nothing is kept for it.
    bool isIdle() const { return m_manager == nullptr && m_transfers.empty(); }

private:
    class Transfer;

    void send(Transfer& transfer);
    void followRedirect(Transfer& transfer, const QUrl& target);
    void receive(Transfer& transfer);
    void conclude(Transfer& transfer);
    void end(Transfer& transfer, Result result);
    void deliver(const std::shared_ptr<Transfer>& transfer);
    void forget(const std::shared_ptr<Transfer>& transfer);

    Scheduler& m_scheduler;
    std::unique_ptr<QNetworkAccessManager> m_manager;
    std::vector<std::shared_ptr<Transfer>> m_transfers;
    Lifetime m_lifetime;
};
