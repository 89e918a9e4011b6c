#include "Platform/Headless/HeadlessMainLoop.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Operators.h"
#include "Reactive/Published.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace std::chrono_literals;

namespace {

using Seen = std::vector<int>;

}  // namespace

TEST(Published, AnnouncesBeforeStoringAndEqualValuesToo) {
    Published<int> field(1);
    Seen seen;
    Seen storedMeanwhile;
    const Subscription subscription = field.subscribe([&](int value) {
        seen.push_back(value);
        storedMeanwhile.push_back(field.value());
    });
    field.set(2);
    field.set(2);
    field.update([](int& value) { value += 5; });
    EXPECT_EQ(seen, (Seen{1, 2, 2, 7}));
    EXPECT_EQ(storedMeanwhile, (Seen{1, 1, 2, 2}));
    EXPECT_EQ(field.value(), 7);
}

TEST(Published, AWriteDuringTheAnnouncementBuildsOnItAndTheNewestWins) {
    Published<int> field(0);
    Seen before;
    Seen after;
    Seen storedInNested;
    const Subscription first = field.subscribe([&](int value) { before.push_back(value); });
    const Subscription writer = field.subscribe([&](int value) {
        if (value == 1) {
            field.update([](int& newest) { newest += 10; });
            EXPECT_EQ(field.newest(), 11);
        } else {
            storedInNested.push_back(field.value());
        }
    });
    const Subscription last = field.subscribe([&](int value) { after.push_back(value); });
    field.set(1);
    EXPECT_EQ(field.value(), 11);
    EXPECT_EQ(before, (Seen{0, 1, 11}));
    EXPECT_EQ(after, (Seen{0, 11})) << "never told of the superseded value";
    EXPECT_EQ(storedInNested, (Seen{0, 0})) << "still the old value while announced";
}

TEST(Published, SubscriptionsMayComeAndGoDuringDelivery) {
    Published<int> field(0);
    Seen late;
    Seen removed;
    std::optional<Subscription> lateOne;
    std::optional<Subscription> removedOne;
    const Subscription changer = field.subscribe([&](int value) {
        if (value != 1) return;
        removedOne.reset();
        lateOne = field.subscribe([&](int v) { late.push_back(v); });
    });
    removedOne = field.subscribe([&](int value) { removed.push_back(value); });
    field.set(1);
    field.set(2);
    EXPECT_EQ(removed, (Seen{0})) << "ended before its turn came";
    EXPECT_EQ(late, (Seen{1, 2})) << "told of the announced value exactly once";

    std::optional<Subscription> own;
    Seen once;
    own = field.subscribe([&, pinned = std::make_shared<int>(42)](int value) {
        once.push_back(value);
        if (value == 3) {
            own.reset();
            EXPECT_EQ(*pinned, 42) << "captures live until the call is over";
        }
    });
    field.set(3);
    field.set(4);
    EXPECT_EQ(once, (Seen{2, 3}));
}

TEST(Published, SourceAndSubscriberMayDieInEitherOrder) {
    auto field = std::make_unique<Published<int>>(0);
    Seen seen;
    Subscription killer = field->subscribe([&](int value) {
        if (value == 1) field.reset();
    });
    Subscription next = field->subscribe([&](int value) { seen.push_back(value); });
    const Source<int> source = field->source();
    field->set(1);
    EXPECT_EQ(seen, (Seen{0})) << "nobody else is told once the field is dead";
    next.reset();
    killer.reset();
    EXPECT_FALSE(
        source.subscribe([](int) { FAIL() << "a dead field delivers nothing"; }).isActive());

    // An ended subscription may hold the last reference to others of the same field.
    Published<int> other(0);
    auto bag = std::make_unique<SubscriptionBag>();
    auto* const bagPointer = bag.get();
    bagPointer->keep(other.subscribe([](int) {}));
    bagPointer->keep(
        other.subscribe([owned = std::shared_ptr<SubscriptionBag>(std::move(bag))](int) {}));
    other.set(1);
    bagPointer->clear();
    other.set(2);
}

TEST(SubscriptionBag, LetsGoInReverseOrder) {
    std::string order;
    {
        SubscriptionBag bag;
        bag.keep(Subscription([&] { order += 'a'; }));
        bag.keep(Subscription([&] { order += 'b'; }));
        bag.keep(Subscription([&] { order += 'c'; }));
    }
    EXPECT_EQ(order, "cba");
}

TEST(CombineLatest, FiresOnceAtFirstAndThenForEveryChange) {
    Published<int> number(1);
    Published<std::string> text("a");
    std::vector<std::string> seen;
    Subscription subscription =
        combineLatest(number, text).subscribe([&](int n, const std::string& t) {
            seen.push_back(t + std::to_string(n));
            if (n == 2) number.set(3);
        });
    number.set(2);
    text.set("b");
    subscription.reset();
    number.set(9);
    EXPECT_EQ(seen, (std::vector<std::string>{"a1", "a2", "a3", "b3"}));
}

TEST(Debounce, DeliversTheLastValueAfterQuiet) {
    HeadlessMainLoop loop;
    Published<int> field(1);
    Seen seen;
    Subscription subscription =
        debounce(field.source(), 250ms, loop).subscribe([&](int value) { seen.push_back(value); });
    loop.advanceBy(249ms);
    field.set(2);
    loop.advanceBy(249ms);
    EXPECT_EQ(seen, Seen{});
    loop.advanceBy(1ms);
    EXPECT_EQ(seen, (Seen{2}));
    EXPECT_TRUE(loop.isIdle());
    field.set(3);
    subscription.reset();
    EXPECT_TRUE(loop.isIdle()) << "no timer is left behind";
    loop.advanceBy(1s);
    EXPECT_EQ(seen, (Seen{2}));
}

TEST(NextTurn, DeliversEveryValueLaterAndNothingToTheDead) {
    HeadlessMainLoop loop;
    Published<int> field(1);
    Seen seen;
    Subscription subscription = deliverOnNextTurn(field.source(), loop).subscribe([&](int value) {
        seen.push_back(value);
    });
    field.set(2);
    EXPECT_EQ(seen, Seen{});
    loop.runTurn();
    EXPECT_EQ(seen, (Seen{1, 2}));
    field.set(3);
    subscription.reset();
    loop.runTurn();
    EXPECT_EQ(seen, (Seen{1, 2}));

    auto owner = std::make_unique<Lifetime>();
    int calls = 0;
    loop.post(owner->guard([&] { ++calls; }));
    loop.runTurn();
    loop.post(owner->guard([&] { ++calls; }));
    owner.reset();
    loop.runTurn();
    EXPECT_EQ(calls, 1);
}
