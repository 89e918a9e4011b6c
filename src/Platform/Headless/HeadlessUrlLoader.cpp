#include "Platform/Headless/HeadlessUrlLoader.h"

#include <utility>

Subscription HeadlessUrlLoader::load(const UrlRequest& request, Completion completion,
                                     Progress /*progress*/) {
    m_requests.append(request);
    const auto waiting = std::make_shared<Waiting>();
    waiting->completion = std::move(completion);
    const std::weak_ptr<Waiting> weakWaiting = waiting;
    waiting->timeLimit = m_scheduler.after(request.timeLimit, m_lifetime.guard([this, weakWaiting] {
        finish(weakWaiting, UrlError{QStringLiteral("The request timed out.")});
    }));
    m_waiting.push_back(waiting);
    return Subscription(m_lifetime.guard([this, weakWaiting] {
        if (const auto cancelled = weakWaiting.lock()) std::erase(m_waiting, cancelled);
    }));
}

void HeadlessUrlLoader::answer(const Result& result) {
    m_scheduler.post(
        m_lifetime.guard([this, weakWaiting = std::weak_ptr<Waiting>(m_waiting.front()), result] {
            finish(weakWaiting, result);
        }));
}

void HeadlessUrlLoader::finish(const std::weak_ptr<Waiting>& weakWaiting, const Result& result) {
    const auto waiting = weakWaiting.lock();
    if (!waiting || std::erase(m_waiting, waiting) == 0) return;
    waiting->completion(result);
}
