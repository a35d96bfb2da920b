#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/queue/DispatchQueue.h"

namespace sweepwright::platform {
namespace {

using namespace std::chrono_literals;

TEST(MainQueue, DrainRunsWhatWaitsOnTheCallersThreadInOrder) {
    MainQueue queue;
    std::vector<int> order;
    std::thread::id where;
    queue.async([&] { order.push_back(1); });
    queue.async([&] {
        order.push_back(2);
        where = std::this_thread::get_id();
    });
    EXPECT_TRUE(order.empty());
    EXPECT_EQ(queue.drain(), 2U);
    EXPECT_EQ(order, (std::vector{1, 2}));
    EXPECT_EQ(where, std::this_thread::get_id());
    EXPECT_EQ(queue.drain(), 0U);
}

TEST(MainQueue, JobsThatArriveDuringADrainAreLeftAndTheHookAsksForThem) {
    MainQueue queue;
    int wakes = 0;
    queue.setHook([&] { ++wakes; });
    int ran = 0;
    queue.async([&] {
        ++ran;
        queue.async([&] { ++ran; });
    });
    EXPECT_EQ(wakes, 1);
    EXPECT_EQ(queue.drain(), 1U);
    EXPECT_EQ(ran, 1);
    EXPECT_GE(wakes, 2);
    EXPECT_EQ(queue.drain(), 1U);
    EXPECT_EQ(ran, 2);
}

TEST(MainQueue, TheHookAsksAgainForJobsThatCameBehindWaitingOnes) {
    MainQueue queue;
    int wakes = 0;
    queue.setHook([&] { ++wakes; });
    // The second job arrives while the third still waits, so the queue was not empty then.
    queue.async([&] { queue.async([] {}); });
    queue.async([] {});
    EXPECT_EQ(queue.drain(), 2U);
    EXPECT_EQ(wakes, 2);
    EXPECT_EQ(queue.drain(), 1U);
    EXPECT_EQ(wakes, 2);
}

TEST(MainQueue, TheHookIsCalledOnceForJobsThatArriveTogether) {
    MainQueue queue;
    int wakes = 0;
    queue.setHook([&] { ++wakes; });
    queue.async([] {});
    queue.async([] {});
    EXPECT_EQ(wakes, 1);
    queue.drain();
    queue.async([] {});
    EXPECT_EQ(wakes, 2);
}

TEST(MainQueue, AHookSetWhileJobsWaitIsCalledAtOnceAndOneTakenAwayNoMore) {
    MainQueue queue;
    queue.async([] {});
    int wakes = 0;
    queue.setHook([&] { ++wakes; });
    EXPECT_EQ(wakes, 1);
    queue.setHook({});
    queue.drain();
    queue.async([] {});
    EXPECT_EQ(wakes, 1);
}

TEST(MainQueue, AJobMayDrainInTurn) {
    MainQueue queue;
    std::vector<int> order;
    queue.async([&] {
        order.push_back(1);
        EXPECT_EQ(queue.drain(), 1U);
        order.push_back(3);
    });
    queue.async([&] { order.push_back(2); });
    EXPECT_EQ(queue.drain(), 1U);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(MainQueue, AnEmptyJobDoesNotHoldUpTheOthers) {
    MainQueue queue;
    bool ran = false;
    queue.async({});
    queue.async([&] { ran = true; });
    EXPECT_EQ(queue.drain(), 2U);
    EXPECT_TRUE(ran);
}

TEST(MainQueue, RunUntilRunsJobsOfOtherThreadsUntilDone) {
    MainQueue queue;
    int ran = 0;
    std::thread poster([&] {
        for (int i = 0; i < 100; ++i)
            queue.async([&] { ++ran; });
    });
    queue.runUntil([&] { return ran == 100; });
    poster.join();
    EXPECT_EQ(ran, 100);
}

TEST(MainQueue, RunUntilAsksBeforeAndAfterEveryJob) {
    MainQueue queue;
    int ran = 0;
    queue.async([&] { ++ran; });
    queue.async([&] { ++ran; });
    queue.runUntil([] { return true; });
    EXPECT_EQ(ran, 0);
    queue.runUntil([&] { return ran == 1; });
    EXPECT_EQ(ran, 1);
}

TEST(MainQueue, WakeMakesRunUntilAskAgain) {
    MainQueue queue;
    std::atomic<bool> stop = false;
    std::promise<void> asked;
    std::thread stopper([&] {
        asked.get_future().wait();
        stop = true;
        queue.wake();
    });
    bool first = true;
    queue.runUntil([&] {
        if (std::exchange(first, false)) asked.set_value();
        return stop.load();
    });
    stopper.join();
}

TEST(MainQueue, SyncFromAWorkerWaitsForTheMainLoop) {
    MainQueue queue;
    const auto worker = DispatchQueue::serial("worker");
    std::thread::id where;
    bool done = false;
    worker->async([&] {
        queue.sync([&] { where = std::this_thread::get_id(); });
        queue.async([&] { done = true; });
    });
    queue.runUntil([&] { return done; });
    EXPECT_EQ(where, std::this_thread::get_id());
}

TEST(MainQueue, TimersArriveThroughTheLoop) {
    MainQueue queue;
    bool fired = false;
    queue.after(5ms, [&] { fired = true; });
    queue.runUntil([&] { return fired; });
    EXPECT_TRUE(fired);
}

TEST(MainQueue, TheSharedOneIsOne) {
    EXPECT_EQ(&MainQueue::shared(), &MainQueue::shared());
    EXPECT_EQ(MainQueue::shared().label(), "main");
}

}  // namespace
}  // namespace sweepwright::platform
