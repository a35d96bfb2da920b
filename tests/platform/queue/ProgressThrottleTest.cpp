#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/queue/ProgressThrottle.h"

namespace sweepwright::platform {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

struct Throttled {
    MainQueue queue;
    std::vector<std::string> seen;
    std::atomic<std::chrono::steady_clock::time_point> now{std::chrono::steady_clock::time_point{}};
    ProgressThrottle throttle{queue,
                              [this](const std::string& text, double) { seen.push_back(text); },
                              [this] { return now.load(); }};

    void passes(std::chrono::milliseconds time) { now = now.load() + time; }
};

TEST(ProgressThrottle, TheFirstCallIsPostedAtOnceAndNotRunByTheCaller) {
    Throttled t;
    t.throttle.report("a", 0.1);
    EXPECT_TRUE(t.seen.empty());
    t.queue.drain();
    EXPECT_THAT(t.seen, ElementsAre("a"));
}

TEST(ProgressThrottle, AFloodIsThinnedToAboutSixtyASecond) {
    Throttled t;
    for (int i = 0; i < 10'000; ++i) {  // one second
        t.now = t.now.load() + 100us;
        t.throttle.report(std::to_string(i), 0);
    }
    const std::size_t posted = t.queue.drain();
    EXPECT_GE(posted, 55U);
    EXPECT_LE(posted, 65U);
}

TEST(ProgressThrottle, FlushDeliversTheLastCallBeforeWhatIsPostedAfterIt) {
    Throttled t;
    t.throttle.report("first", 0);
    t.throttle.report("middle", 0.5);
    t.throttle.report("last", 1);
    t.throttle.flush();
    t.queue.async([&] { t.seen.emplace_back("completion"); });
    t.queue.drain();
    EXPECT_THAT(t.seen, ElementsAre("first", "last", "completion"));
}

TEST(ProgressThrottle, FlushWithNothingHeldBackPostsNothing) {
    Throttled t;
    t.throttle.flush();
    EXPECT_EQ(t.queue.drain(), 0U);
    t.throttle.report("a", 0);
    t.throttle.flush();
    EXPECT_EQ(t.queue.drain(), 1U);
    t.throttle.flush();
    EXPECT_EQ(t.queue.drain(), 0U);
}

TEST(ProgressThrottle, ACallAfterTheIntervalReplacesTheOneHeldBack) {
    Throttled t;
    t.throttle.report("a", 0);
    t.throttle.report("b", 0);
    t.passes(ProgressThrottle::kInterval);
    t.throttle.report("c", 0);
    t.throttle.flush();
    t.queue.drain();
    EXPECT_THAT(t.seen, ElementsAre("a", "c"));
}

TEST(ProgressThrottle, ACallHeldBackArrivesByItselfWhenTheFloodStops) {
    Throttled t;
    t.throttle.report("a", 0);
    t.throttle.report("b", 0);
    t.passes(ProgressThrottle::kInterval);
    t.queue.runUntil([&] { return t.seen.size() == 2; });
    EXPECT_THAT(t.seen, ElementsAre("a", "b"));
    t.throttle.flush();
    t.queue.drain();
    EXPECT_EQ(t.seen.size(), 2U) << "and only once";
}

TEST(ProgressThrottle, TheFractionTravelsWithTheText) {
    MainQueue queue;
    std::vector<std::pair<std::string, double>> seen;
    ProgressThrottle throttle(queue, [&](const std::string& text, double fraction) {
        seen.emplace_back(text, fraction);
    });
    throttle.report("x", 0.25);
    queue.drain();
    EXPECT_THAT(seen, ElementsAre(std::pair<std::string, double>("x", 0.25)));
}

TEST(ProgressThrottle, WithoutAReceiverNothingIsPosted) {
    MainQueue queue;
    ProgressThrottle throttle(queue, {});
    throttle.report("x", 0.25);
    throttle.flush();
    EXPECT_EQ(queue.drain(), 0U);
}

TEST(ProgressThrottle, MayBeDestroyedWhileItsCallsWait) {
    MainQueue queue;
    int ran = 0;
    {
        ProgressThrottle throttle(queue, [&](const std::string&, double) { ++ran; });
        throttle.report("a", 0);
        throttle.report("b", 0);
    }
    queue.runUntil([&] { return ran == 2; });
    EXPECT_EQ(ran, 2);
}

TEST(ProgressThrottle, ManyThreadsMayReport) {
    const auto queue = DispatchQueue::serial("progress");
    std::atomic<int> ran = 0;
    ProgressThrottle throttle(
        *queue, [&](const std::string&, double) { ++ran; },
        [] { return std::chrono::steady_clock::time_point{}; });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int call = 0; call < 500; ++call)
                throttle.report("x", 0);
        });
    }
    for (auto& thread : threads)
        thread.join();
    throttle.flush();
    queue->sync([] {});
    EXPECT_EQ(ran, 2) << "no time has passed: the first call, and what was held back";
}

}  // namespace
}  // namespace sweepwright::platform
