#include "Shared/Concurrency/Published.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {
namespace {

TEST(Published, HoldsItsValue) {
    Published<std::string> text("a");
    EXPECT_EQ(text.get(), "a");
    text.set("b");
    EXPECT_EQ(text.get(), "b");
    EXPECT_EQ(Published<int>().get(), 0);
}

TEST(Published, TellsObserversOnlyOfARealChange) {
    Published<int> number(1);
    std::vector<int> seen;
    const Subscription subscription = number.observe([&] { seen.push_back(number.get()); });
    EXPECT_TRUE(seen.empty());
    number.set(1);
    number.set(2);
    number.set(2);
    number.set(1);
    EXPECT_EQ(seen, (std::vector{2, 1}));
}

/// Neither copied nor compared.
struct Unique {
    std::unique_ptr<int> number = std::make_unique<int>(0);
};

TEST(Published, ChangesInPlaceAndTellsWhenTheChangeSaysSo) {
    Published<Unique> value;
    int notified = 0;
    const Subscription subscription = value.observe([&] { ++notified; });
    value.mutate([](Unique& unique) {
        *unique.number = 5;
        return true;
    });
    EXPECT_EQ(notified, 1);
    EXPECT_EQ(*value.get().number, 5);
    value.mutate([](Unique&) { return false; });
    EXPECT_EQ(notified, 1);
}

TEST(Published, CallsObserversInTheOrderOfTheirAttachment) {
    Published<int> number;
    std::string order;
    const Subscription a = number.observe([&] { order += 'a'; });
    const Subscription b = number.observe([&] { order += 'b'; });
    const Subscription c = number.observe([&] { order += 'c'; });
    number.set(1);
    EXPECT_EQ(order, "abc");
}

TEST(Published, ForgetsAnObserverWithItsSubscription) {
    Published<int> number;
    int notified = 0;
    {
        const Subscription subscription = number.observe([&] { ++notified; });
        number.set(1);
    }
    number.set(2);
    EXPECT_EQ(notified, 1);
    Subscription reset = number.observe([&] { ++notified; });
    reset.reset();
    reset.reset();
    number.set(3);
    EXPECT_EQ(notified, 1);
}

TEST(Published, SubscriptionMovesAndReplaces) {
    Published<int> number;
    int first = 0, second = 0;
    Subscription a = number.observe([&] { ++first; });
    Subscription b = std::move(a);
    number.set(1);
    EXPECT_EQ(first, 1);
    b = number.observe([&] { ++second; });
    number.set(2);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST(Published, SubscriptionMayOutliveTheValue) {
    auto token = std::make_shared<int>();
    Subscription subscription;
    {
        Published<int> number;
        subscription = number.observe([token] {});
        EXPECT_EQ(token.use_count(), 2);
    }
    EXPECT_EQ(token.use_count(), 1) << "the observer goes with the value";
    subscription.reset();
}

TEST(Published, ObserverMayDetachItselfWhileCalled) {
    Published<int> number;
    int first = 0, second = 0;
    Subscription a;
    a = number.observe([&, alive = std::make_shared<int>(7)] {
        a.reset();
        first += *alive;  // the observer itself lives to the end of its call
    });
    const Subscription b = number.observe([&] { ++second; });
    number.set(1);
    number.set(2);
    EXPECT_EQ(first, 7);
    EXPECT_EQ(second, 2);
}

TEST(Published, ObserverDetachedDuringANotificationIsNotCalled) {
    Published<int> number;
    int later = 0;
    std::optional<Subscription> b;
    const Subscription a = number.observe([&] { b.reset(); });
    b = number.observe([&] { ++later; });
    number.set(1);
    EXPECT_EQ(later, 0);
}

TEST(Published, ObserverAttachedDuringANotificationHearsOfTheNextChange) {
    Published<int> number;
    int added = 0;
    std::vector<Subscription> more;
    const Subscription a = number.observe([&] { more.push_back(number.observe([&] { ++added; })); });
    number.set(1);
    EXPECT_EQ(added, 0);
    number.set(2);
    EXPECT_EQ(added, 1);
}

TEST(Published, ObserverMayChangeTheValueAgain) {
    Published<int> number;
    std::vector<int> seen;
    const Subscription a = number.observe([&] {
        if (number.get() < 3) number.set(number.get() + 1);
    });
    const Subscription b = number.observe([&] { seen.push_back(number.get()); });
    number.set(1);
    EXPECT_EQ(number.get(), 3);
    EXPECT_EQ(seen, (std::vector{3, 3, 3})) << "nobody is ever told of a value that is no longer there";
}

TEST(Published, ObserverMayDestroyTheValue) {
    auto number = std::make_unique<Published<int>>();
    int later = 0;
    const Subscription a = number->observe([&] { number.reset(); });
    const Subscription b = number->observe([&] { ++later; });
    number->set(1);
    EXPECT_FALSE(number);
    EXPECT_EQ(later, 0);
}

TEST(Published, ObserverMayOwnOtherSubscriptions) {
    Published<int> number;
    int inner = 0;
    auto owned = std::make_shared<Subscription>(number.observe([&] { ++inner; }));
    Subscription outer = number.observe([owned] {});
    owned.reset();
    number.set(1);
    EXPECT_EQ(inner, 1);
    outer.reset();
    number.set(2);
    EXPECT_EQ(inner, 1);
}

}  // namespace
}  // namespace cairnfield
