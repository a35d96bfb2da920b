#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <semaphore>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/log/Log.h"
#include "platform/queue/DispatchQueue.h"

namespace sweepwright::platform {
namespace {

using namespace std::chrono_literals;

TEST(SerialQueue, RunsJobsInTheOrderPosted) {
    const auto queue = DispatchQueue::serial("order");
    std::vector<int> ran;
    for (int i = 0; i < 1000; ++i)
        queue->async([&ran, i] { ran.push_back(i); });
    queue->sync([] {});
    ASSERT_EQ(ran.size(), 1000U);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(ran[static_cast<std::size_t>(i)], i);
}

TEST(SerialQueue, NeverRunsTwoJobsAtOnce) {
    const auto queue = DispatchQueue::serial("alone");
    std::atomic<int> inside = 0;
    std::atomic<bool> overlapped = false;
    std::vector<std::thread> posters;
    for (int poster = 0; poster < 4; ++poster) {
        posters.emplace_back([&] {
            for (int i = 0; i < 250; ++i) {
                queue->async([&] {
                    if (inside.fetch_add(1) != 0) overlapped = true;
                    std::this_thread::yield();
                    inside.fetch_sub(1);
                });
            }
        });
    }
    for (auto& poster : posters)
        poster.join();
    queue->sync([] {});
    EXPECT_FALSE(overlapped);
}

TEST(SerialQueue, KeepsItsLabel) {
    EXPECT_EQ(DispatchQueue::serial("com.sweepwright.cleanqueue")->label(),
              "com.sweepwright.cleanqueue");
}

TEST(DispatchQueue, SyncReturnsWhenTheJobHasRun) {
    for (const auto& queue : {DispatchQueue::serial("s"), DispatchQueue::concurrent("c")}) {
        bool ran = false;
        std::thread::id where;
        queue->sync([&] {
            ran = true;
            where = std::this_thread::get_id();
        });
        EXPECT_TRUE(ran);
        EXPECT_NE(where, std::this_thread::get_id());
    }
}

TEST(DispatchQueue, AJobThatThrowsIsLoggedAndTheQueueGoesOn) {
    const LogCapture log;
    const auto queue = DispatchQueue::serial("throws");
    queue->async([] { throw std::runtime_error("broken"); });
    queue->sync([] { throw 7; });
    bool ran = false;
    queue->sync([&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_TRUE(log.contains("❌ 队列 throws 的任务抛出异常: broken"));
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST(DispatchQueue, DestroyingItRunsWhatWasPostedAndWhatThatPosts) {
    for (const bool serial : {true, false}) {
        std::atomic<int> ran = 0;
        {
            auto queue = serial ? DispatchQueue::serial("end") : DispatchQueue::concurrent("end");
            for (int i = 0; i < 50; ++i) {
                queue->async([&ran, &queue = *queue] {
                    ++ran;
                    queue.async([&ran] { ++ran; });
                });
            }
        }
        EXPECT_EQ(ran, 100);
    }
}

TEST(DispatchQueue, WhatAJobHoldsIsReleasedWhenItHasRun) {
    const auto queue = DispatchQueue::serial("release");
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    queue->async([held = std::move(held)] {});
    queue->sync([] {});
    EXPECT_TRUE(watched.expired());
}

TEST(ConcurrentQueue, RunsJobsSideBySide) {
    std::binary_semaphore first{0};
    std::binary_semaphore second{0};
    std::binary_semaphore done{0};
    const auto queue = DispatchQueue::concurrent("pair");
    queue->async([&] {
        first.release();
        second.acquire();
        done.release();
    });
    queue->async([&] {
        first.acquire();
        second.release();
    });
    done.acquire();
}

// Each link of the chain blocks a thread of the queue until the links after it have run.
void chain(DispatchQueue& queue, int depth, std::atomic<int>& ran) {
    if (depth > 0) {
        const auto next = std::make_shared<std::promise<void>>();
        queue.async([&queue, &ran, depth, next] {
            chain(queue, depth - 1, ran);
            next->set_value();
        });
        next->get_future().wait();
    }
    ++ran;
}

TEST(ConcurrentQueue, AChainOfJobsThatWaitForOneAnotherEnds) {
    std::atomic<int> ran = 0;
    const auto queue = DispatchQueue::concurrent("chain");
    queue->sync([&] { chain(*queue, 63, ran); });
    EXPECT_EQ(ran, 64);
}

TEST(ConcurrentQueue, AChainEndsThoughTheQueueIsBeingDestroyed) {
    std::atomic<int> ran = 0;
    {
        const auto queue = DispatchQueue::concurrent("chain");
        queue->async([&ran, &queue = *queue] { chain(queue, 15, ran); });
    }
    EXPECT_EQ(ran, 16);
}

TEST(ConcurrentQueue, NestedSyncFromItsOwnJobsEnds) {
    const auto queue = DispatchQueue::concurrent("nested");
    int depth = 0;
    queue->sync([&] { queue->sync([&] { queue->sync([&] { depth = 3; }); }); });
    EXPECT_EQ(depth, 3);
}

TEST(ConcurrentQueue, AFloodOfBriefJobsTakesFewThreads) {
    std::mutex mutex;
    std::set<std::thread::id> threads;
    const auto start = std::chrono::steady_clock::now();
    auto queue = DispatchQueue::concurrent("flood");
    for (int i = 0; i < 5000; ++i) {
        queue->async([&] {
            const std::scoped_lock lock(mutex);
            threads.insert(std::this_thread::get_id());
        });
    }
    queue.reset();
    // One a core, and one more whenever the machine let nothing happen for the stall time.
    const auto stalls = (std::chrono::steady_clock::now() - start) / std::chrono::milliseconds(2);
    EXPECT_LE(threads.size(),
              std::max(2U, std::thread::hardware_concurrency()) + static_cast<std::size_t>(stalls));
}

TEST(ConcurrentQueue, ItsThreadsEndWhenTheyIdleAndStartAgainWithTheNextJob) {
    struct Farewell {
        std::promise<void>* said = nullptr;
        ~Farewell() {
            if (said != nullptr) said->set_value();
        }
    };
    std::promise<void> ended;
    auto whenEnded = ended.get_future();
    const auto queue = DispatchQueue::concurrent("idle");
    queue->sync([&] {
        thread_local Farewell farewell;
        farewell.said = &ended;
    });
    whenEnded.wait();
    bool ran = false;
    queue->sync([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST(DispatchQueueAfter, PostsWhenTheDelayHasPassed) {
    std::promise<std::chrono::steady_clock::time_point> ran;
    const auto queue = DispatchQueue::serial("after");
    const auto start = std::chrono::steady_clock::now();
    queue->after(20ms, [&] { ran.set_value(std::chrono::steady_clock::now()); });
    EXPECT_GE(ran.get_future().get() - start, 20ms);
}

TEST(DispatchQueueAfter, ShorterDelaysRunFirstAndEqualOnesInTheOrderSet) {
    std::vector<int> order;
    std::promise<void> done;
    const auto queue = DispatchQueue::serial("after");
    queue->after(1h, [&] { order.push_back(4); });
    queue->after(-1s, [&] { order.push_back(0); });
    queue->after(5ms, [&] { order.push_back(1); });
    queue->after(5ms, [&] { order.push_back(2); });
    queue->after(10ms, [&] {
        order.push_back(3);
        done.set_value();
    });
    done.get_future().wait();
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3}));
}

TEST(DispatchQueueAfter, TimersOfADestroyedQueueAreDroppedWithWhatTheyHold) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    std::atomic<bool> ran = false;
    {
        const auto queue = DispatchQueue::serial("gone");
        queue->after(5ms, [] {});
        queue->after(1h, [&ran, held = std::move(held)] { ran = true; });
        queue->after(std::chrono::milliseconds::max(), [&ran] { ran = true; });
    }
    EXPECT_TRUE(watched.expired());
    EXPECT_FALSE(ran);
}

TEST(DispatchQueueAfter, NothingRunsAnyMoreOnceAQueueIsDestroyedWhileItsTimersFire) {
    const auto later = DispatchQueue::serial("later");
    for (int i = 0; i < 200; ++i) {
        const auto ran = std::make_shared<std::atomic<int>>(0);
        auto queue = DispatchQueue::concurrent("race");
        for (int timer = 0; timer < 10; ++timer)
            queue->after(0ms, [ran] { ++*ran; });
        queue.reset();
        const int before = *ran;
        EXPECT_LE(before, 10);
        // All timers are due in turn, so when this one has run theirs would have.
        std::promise<void> passed;
        later->after(0ms, [&] { passed.set_value(); });
        passed.get_future().wait();
        EXPECT_EQ(*ran, before);
    }
}

}  // namespace
}  // namespace sweepwright::platform
