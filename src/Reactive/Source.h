#pragma once

#include "Reactive/Subscription.h"

#include <functional>
#include <utility>

/// Something that can be subscribed to: a published field, or an operator applied to others.
/// A source delivers its current values once when it is subscribed to, then every new one. It is
/// a cheap value that may outlive the field behind it; subscribing to a dead field does nothing.
template <typename... Values>
class Source {
public:
    using Callback = std::function<void(const Values&...)>;
    using Subscribe = std::function<Subscription(Callback)>;

    explicit Source(Subscribe subscribe) : m_subscribe(std::move(subscribe)) {}

    Subscription subscribe(Callback callback) const { return m_subscribe(std::move(callback)); }

private:
    Subscribe m_subscribe;
};
