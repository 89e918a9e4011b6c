#pragma once

#include "Platform/UrlLoader.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Scheduler.h"

#include <QList>
#include <memory>

/// Keeps requests until its owner answers them; those that nobody answers run into their time
/// limit.
class HeadlessUrlLoader final : public UrlLoader {
public:
    explicit HeadlessUrlLoader(Scheduler& scheduler) : m_scheduler(scheduler) {}

    Subscription load(const UrlRequest& request, Completion completion,
                      Progress progress = {}) override;

    /// Every request so far, answered or not.
    const QList<UrlRequest>& requests() const { return m_requests; }
    /// Requests that wait for an answer.
    std::size_t waitingCount() const { return m_waiting.size(); }
    /// Answers the oldest request that waits, in the next turn. There must be one.
    void answer(const Result& result);

private:
    struct Waiting {
        Completion completion;
        Subscription timeLimit;
    };

    void finish(const std::weak_ptr<Waiting>& weakWaiting, const Result& result);

    Scheduler& m_scheduler;
    QList<UrlRequest> m_requests;
    std::vector<std::shared_ptr<Waiting>> m_waiting;
    Lifetime m_lifetime;
};
