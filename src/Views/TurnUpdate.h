#pragma once

#include "Reactive/Lifetime.h"
#include "Reactive/Published.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <functional>
#include <utility>

/// Brings a view up to date after any of the fields that it follows has changed: in the next turn
/// of the main loop, once however many changes there were.
class TurnUpdate {
public:
    /// The scheduler must outlive it.
    TurnUpdate(Scheduler& scheduler, std::function<void()> update)
        : m_scheduler(scheduler), m_update(std::move(update)) {}
    TurnUpdate(const TurnUpdate&) = delete;
    TurnUpdate& operator=(const TurnUpdate&) = delete;

    template <typename... Values>
    void follow(const Published<Values>&... fields) {
        (m_subscriptions.keep(fields.subscribe([this](const Values&) { request(); })), ...);
    }

    /// Asks for an update; following a field does so at once.
    void request() {
        if (std::exchange(m_isRequested, true)) return;
        m_scheduler.post(m_lifetime.guard([this] {
            m_isRequested = false;
            m_update();
        }));
    }

private:
    Scheduler& m_scheduler;
    std::function<void()> m_update;
    bool m_isRequested = false;
    Lifetime m_lifetime;
    SubscriptionBag m_subscriptions;
};
