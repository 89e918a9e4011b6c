#pragma once

#include "Reactive/Published.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Source.h"
#include "Reactive/Subscription.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

/// Fires with the latest value of every source whenever any one of them delivers. The first
/// delivery comes once, when all sources have delivered their current value.
template <typename... Values>
Source<Values...> combineLatest(Source<Values>... sources) {
    return Source<Values...>([sources...](typename Source<Values...>::Callback callback) {
        struct Latest {
            std::tuple<std::optional<Values>...> values;
            typename Source<Values...>::Callback callback;

            void deliver() const {
                const auto pinned = values;
                std::apply(
                    [this](const auto&... each) {
                        if ((each.has_value() && ...)) callback(*each...);
                    },
                    pinned);
            }
        };
        const auto latest = std::make_shared<Latest>();
        latest->callback = std::move(callback);

        const auto bag = std::make_shared<SubscriptionBag>();
        const auto follow = [&]<std::size_t... Index>(std::index_sequence<Index...>) {
            (bag->keep(sources.subscribe([latest](const Values& value) {
                std::get<Index>(latest->values) = value;
                latest->deliver();
            })),
             ...);
        };
        follow(std::index_sequence_for<Values...>{});
        return Subscription([bag] { bag->clear(); });
    });
}

template <typename... Values>
Source<Values...> combineLatest(const Published<Values>&... fields) {
    return combineLatest(fields.source()...);
}

/// Delivers the last value once `delay` has passed without a new one. The scheduler must outlive
/// the subscriptions.
template <typename... Values>
Source<Values...> debounce(Source<Values...> source, std::chrono::milliseconds delay,
                           Scheduler& scheduler) {
    return Source<Values...>(
        [source, delay, &scheduler](typename Source<Values...>::Callback callback) {
            struct Pending {
                std::optional<std::tuple<Values...>> values;
                typename Source<Values...>::Callback callback;
                Subscription timer;
            };
            const auto pending = std::make_shared<Pending>();
            pending->callback = std::move(callback);
            const std::weak_ptr<Pending> weakPending = pending;

            auto upstream = source.subscribe([weakPending, delay, &scheduler](const Values&... v) {
                const auto current = weakPending.lock();
                if (!current) return;
                current->values.emplace(v...);
                current->timer = scheduler.after(delay, [weakPending] {
                    const auto due = weakPending.lock();
                    if (!due || !due->values) return;
                    const auto values = *std::exchange(due->values, std::nullopt);
                    std::apply(due->callback, values);
                });
            });
            const auto held = std::make_shared<Subscription>(std::move(upstream));
            return Subscription([held, pending] {
                held->reset();
                pending->timer.reset();
                pending->values.reset();
            });
        });
}

/// Delivers every value in the next turn of the main loop. A value that is still on its way when
/// the subscription ends is dropped. The scheduler must outlive the subscriptions.
template <typename... Values>
Source<Values...> deliverOnNextTurn(Source<Values...> source, Scheduler& scheduler) {
    return Source<Values...>([source, &scheduler](typename Source<Values...>::Callback callback) {
        using Callback = typename Source<Values...>::Callback;
        const auto alive = std::make_shared<Callback>(std::move(callback));
        const std::weak_ptr<Callback> weakCallback = alive;

        auto upstream = source.subscribe([weakCallback, &scheduler](const Values&... v) {
            scheduler.post([weakCallback, values = std::tuple<Values...>(v...)] {
                if (const auto target = weakCallback.lock()) std::apply(*target, values);
            });
        });
        const auto held = std::make_shared<Subscription>(std::move(upstream));
        // The callback dies with the handle.
        return Subscription([held, alive] { held->reset(); });
    });
}
