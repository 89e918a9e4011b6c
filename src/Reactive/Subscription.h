#pragma once

#include <functional>
#include <utility>
#include <vector>

/// Owns one registration with a source (a published field, a timer, a port) and ends it when
/// destroyed. The source and the handle may die in either order: letting go of a source that is
/// already gone does nothing.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> letGo) : m_letGo(std::move(letGo)) {}
    Subscription(Subscription&& other) noexcept : m_letGo(std::exchange(other.m_letGo, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            reset();
            m_letGo = std::exchange(other.m_letGo, nullptr);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { reset(); }

    /// Ends the registration now. Once this returns, the callback is not called again; when it is
    /// called from inside that callback, the running call finishes first.
    void reset() {
        if (const auto letGo = std::exchange(m_letGo, nullptr)) letGo();
    }

    bool isActive() const { return m_letGo != nullptr; }

private:
    std::function<void()> m_letGo;
};

/// Keeps subscriptions and lets go of them in reverse order. Declare it last in its owner, so
/// that it dies before the fields that the callbacks use.
class SubscriptionBag {
public:
    SubscriptionBag() = default;
    SubscriptionBag(SubscriptionBag&&) = default;
    SubscriptionBag& operator=(SubscriptionBag&&) = delete;
    SubscriptionBag(const SubscriptionBag&) = delete;
    SubscriptionBag& operator=(const SubscriptionBag&) = delete;
    ~SubscriptionBag() { clear(); }

    void keep(Subscription subscription) { m_subscriptions.push_back(std::move(subscription)); }

    void clear() {
        // Taken out first: letting go may end the owner of this bag.
        auto subscriptions = std::exchange(m_subscriptions, {});
        while (!subscriptions.empty())
            subscriptions.pop_back();
    }

private:
    std::vector<Subscription> m_subscriptions;
};
