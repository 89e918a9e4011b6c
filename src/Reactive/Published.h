#pragma once

#include "Reactive/Source.h"
#include "Reactive/Subscription.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

/// A field whose changes are announced before they are stored.
///
/// `set` hands the new value to every subscriber, in order of subscription, and stores it
/// afterwards; inside a callback `value()` is therefore still the old one. Equal values are
/// announced too.
///
/// Rules for what happens during an announcement:
///  - A write to the same field builds on the announced value (`update` sees it, `newest()` returns
///    it) and is announced at once, inside the write. The newest write wins. A subscriber that had
///    not yet been told of the superseded value is told only of the newest.
///  - A new subscriber receives the announced value and is not told of it a second time.
///  - A subscription that ends is not called any more, not even for the running announcement.
///  - When the field itself dies, nobody else is told and nothing is stored.
///
/// Subscribers receive a pinned copy that stays valid for the whole call. Main thread only.
template <typename T>
class Published {
public:
    using Callback = std::function<void(const T&)>;

    explicit Published(T initial = T()) : m_state(std::make_shared<State>(std::move(initial))) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;
    ~Published() { m_state->isAlive = false; }

    /// The stored value.
    const T& value() const { return m_state->stored; }

    /// The value that a running announcement carries, else the stored one: what a write made now
    /// has to build on.
    const T& newest() const { return m_state->newest(); }

    void set(T value) { announce(m_state, std::move(value)); }

    /// Applies `mutate` to a copy of the newest value and sets the result.
    template <typename Mutate>
    void update(Mutate&& mutate) {
        T copy = newest();
        std::forward<Mutate>(mutate)(copy);
        set(std::move(copy));
    }

    /// Calls back with the newest value at once and then with every announced one.
    Subscription subscribe(Callback callback) const {
        return subscribeTo(m_state, std::move(callback));
    }

    Source<T> source() const {
        return Source<T>([weakState = std::weak_ptr<State>(m_state)](Callback callback) {
            const auto state = weakState.lock();
            if (!state || !state->isAlive) return Subscription();
            return subscribeTo(state, std::move(callback));
        });
    }

private:
    struct Subscriber {
        Callback callback;
        std::uint64_t toldVersion = 0;
        bool isActive = true;
    };

    // Outlives the field while an announcement runs, so that the field may die in a callback.
    struct State {
        explicit State(T initial) : stored(std::move(initial)) {}

        const T& newest() const { return announced ? *announced : stored; }
        // The removed ones die after the list is in order again: their captures may let go of
        // further subscriptions.
        void removeInactive() {
            const auto ended =
                std::stable_partition(subscribers.begin(), subscribers.end(),
                                      [](const auto& subscriber) { return subscriber->isActive; });
            const std::vector<std::shared_ptr<Subscriber>> removed(
                std::make_move_iterator(ended), std::make_move_iterator(subscribers.end()));
            subscribers.erase(ended, subscribers.end());
        }

        T stored;
        std::shared_ptr<const T> announced;
        std::uint64_t version = 0;
        int runningAnnouncements = 0;
        bool isAlive = true;
        std::vector<std::shared_ptr<Subscriber>> subscribers;
    };

    static Subscription subscribeTo(const std::shared_ptr<State> state, Callback callback) {
        const auto subscriber = std::make_shared<Subscriber>();
        subscriber->callback = std::move(callback);
        subscriber->toldVersion = state->version;
        state->subscribers.push_back(subscriber);
        const T pinned = state->newest();
        subscriber->callback(pinned);
        return Subscription([weakState = std::weak_ptr<State>(state),
                             weakSubscriber = std::weak_ptr<Subscriber>(subscriber)] {
            const auto ended = weakSubscriber.lock();
            if (!ended) return;
            ended->isActive = false;
            const auto source = weakState.lock();
            if (source && source->runningAnnouncements == 0) source->removeInactive();
        });
    }

    static void announce(const std::shared_ptr<State> state, T newValue) {
        const auto value = std::make_shared<const T>(std::move(newValue));
        const std::uint64_t version = ++state->version;
        state->announced = value;

        ++state->runningAnnouncements;
        // By index: callbacks may subscribe, and what they add is already told.
        for (std::size_t i = 0; i < state->subscribers.size(); ++i) {
            const auto subscriber = state->subscribers[i];
            if (!subscriber->isActive || subscriber->toldVersion >= version) continue;
            subscriber->toldVersion = version;
            subscriber->callback(*value);
            const bool isSuperseded = state->version != version;
            if (isSuperseded || !state->isAlive) break;
        }
        --state->runningAnnouncements;

        if (state->runningAnnouncements == 0) state->removeInactive();
        if (state->isAlive && state->version == version) {
            state->stored = *value;
            state->announced.reset();
        }
    }

    std::shared_ptr<State> m_state;
};
