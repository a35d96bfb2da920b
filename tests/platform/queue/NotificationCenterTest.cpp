#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/queue/NotificationCenter.h"

namespace sweepwright::platform {
namespace {

using Subscription = NotificationCenter::Subscription;

TEST(NotificationCenter, ObserversOfTheNameRunInTheOrderTheySubscribed) {
    NotificationCenter center;
    std::vector<int> order;
    const auto first = center.observe("A", [&](const auto&) { order.push_back(1); });
    const auto other = center.observe("B", [&](const auto&) { order.push_back(9); });
    const auto second = center.observe("A", [&](const auto&) { order.push_back(2); });
    center.post("A");
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST(NotificationCenter, ObserversRunOnThePostersThreadAndGetItsNumbers) {
    NotificationCenter center;
    std::thread::id where;
    NotificationCenter::UserInfo got;
    const auto subscription = center.observe("Scroll", [&](const auto& info) {
        where = std::this_thread::get_id();
        got = info;
    });
    std::thread::id poster;
    std::thread([&] {
        poster = std::this_thread::get_id();
        center.post("Scroll", {{"contentOffsetY", 12.5}});
    }).join();
    EXPECT_EQ(where, poster);
    EXPECT_EQ(got, (NotificationCenter::UserInfo{{"contentOffsetY", 12.5}}));
}

TEST(NotificationCenter, ASubscriptionEndsWhenDestroyedResetOrReplaced) {
    NotificationCenter center;
    int destroyed = 0;
    {
        const auto subscription = center.observe("A", [&](const auto&) { ++destroyed; });
    }
    int reset = 0;
    auto subscription = center.observe("A", [&](const auto&) { ++reset; });
    subscription.reset();
    subscription.reset();
    int replaced = 0;
    auto kept = center.observe("A", [&](const auto&) { ++replaced; });
    int newer = 0;
    kept = center.observe("A", [&](const auto&) { ++newer; });
    center.post("A");
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(reset, 0);
    EXPECT_EQ(replaced, 0);
    EXPECT_EQ(newer, 1);
}

TEST(NotificationCenter, AMovedSubscriptionGoesOn) {
    NotificationCenter center;
    int ran = 0;
    std::optional<Subscription> first = center.observe("A", [&](const auto&) { ++ran; });
    const Subscription second = std::move(*first);
    first.reset();
    center.post("A");
    EXPECT_EQ(ran, 1);
}

TEST(NotificationCenter, AnObserverMaySubscribeUnsubscribeItselfAndPost) {
    NotificationCenter center;
    std::vector<Subscription> late;
    int lateRan = 0;
    int once = 0;
    int nested = 0;
    const auto other = center.observe("B", [&](const auto&) { ++nested; });
    Subscription self;
    self = center.observe("A", [&](const auto&) {
        ++once;
        late.push_back(center.observe("A", [&](const auto&) { ++lateRan; }));
        center.post("B");
        self.reset();
    });
    center.post("A");
    EXPECT_EQ(once, 1);
    EXPECT_EQ(nested, 1);
    EXPECT_EQ(lateRan, 0);
    center.post("A");
    EXPECT_EQ(once, 1);
    EXPECT_EQ(lateRan, 1);
}

TEST(NotificationCenter, AnObserverEndedByAnEarlierOneOfTheSamePostDoesNotRun) {
    NotificationCenter center;
    Subscription victim;
    const auto killer = center.observe("A", [&](const auto&) { victim.reset(); });
    int ran = 0;
    victim = center.observe("A", [&](const auto&) { ++ran; });
    center.post("A");
    EXPECT_EQ(ran, 0);
}

TEST(NotificationCenter, ResetWaitsForACallOnAnotherThread) {
    NotificationCenter center;
    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> left = false;
    auto subscription = center.observe("A", [&](const auto&) {
        entered.set_value();
        leave.get_future().wait();
        left = true;
    });
    std::thread poster([&] { center.post("A"); });
    entered.get_future().wait();
    std::thread ender([&] {
        subscription.reset();
        EXPECT_TRUE(left);
    });
    leave.set_value();
    ender.join();
    poster.join();
}

TEST(NotificationCenter, PostsAndEndsOnManyThreadsNeverRunAnEndedObserver) {
    NotificationCenter center;
    std::atomic<bool> stop = false;
    std::vector<std::thread> posters;
    for (int i = 0; i < 2; ++i) {
        posters.emplace_back([&] {
            while (!stop)
                center.post("A");
        });
    }
    for (int i = 0; i < 500; ++i) {
        auto alive = std::make_unique<int>(7);
        auto subscription = center.observe("A", [&](const auto&) { EXPECT_EQ(*alive, 7); });
        subscription.reset();
        alive.reset();
    }
    stop = true;
    for (auto& poster : posters)
        poster.join();
}

TEST(NotificationCenter, ASubscriptionMayOutliveTheCenter) {
    Subscription subscription;
    {
        NotificationCenter center;
        subscription = center.observe("A", [](const auto&) {});
    }
    subscription.reset();
}

TEST(NotificationCenter, TheDefaultOneIsOne) {
    EXPECT_EQ(&NotificationCenter::defaultCenter(), &NotificationCenter::defaultCenter());
}

}  // namespace
}  // namespace sweepwright::platform
