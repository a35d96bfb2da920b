#include <chrono>
#include <functional>
#include <map>
#include <set>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "platform/tree/internal/SharedWork.h"
#include "support/ChildProcess.h"

namespace sweepwright::platform {

namespace {

/// What worked on which item of a tree of numbers: each n below `size` has children 2n and 2n + 1.
struct Record {
    std::mutex mutex;
    std::map<int, int> times;
    std::set<std::thread::id> threads;

    void note(int item) {
        const std::lock_guard lock(mutex);
        ++times[item];
        threads.insert(std::this_thread::get_id());
    }
};

/// Does all items below `size`, giving away what is wanted.
void workThrough(unsigned threads, int size, Record& record) {
    Crew crew;
    SharedWork<int>(crew, threads).run(1, [&] {
        return [&](int first, SharedWork<int>& shared) {
            std::vector<int> own{first};
            while (!own.empty()) {
                const int item = own.back();
                own.pop_back();
                record.note(item);
                for (const int child : {2 * item, 2 * item + 1})
                    if (child < size) own.push_back(child);
                while (own.size() > 1 && shared.wantsMore()) {
                    shared.give(own.front());
                    own.erase(own.begin());
                }
            }
        };
    });
}

/// An event that one thread waits for.
class Event {
  public:
    void happen() {
        const std::lock_guard lock(mutex_);
        happened_ = true;
        changed_.notify_all();
    }
    bool await() {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(60), [this] { return happened_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool happened_ = false;
};

}  // namespace

TEST(SharedWork, EveryItemIsDoneOnce) {
    constexpr int kSize = 2000;
    for (const unsigned threads : {0U, 1U, 2U, 3U, 8U, 32U}) {
        for (int round = 0; round < 20; ++round) {
            Record record;
            workThrough(threads, kSize, record);
            EXPECT_EQ(record.times.size(), std::size_t{kSize - 1});
            for (const auto& [item, times] : record.times)
                EXPECT_EQ(times, 1) << item;
            EXPECT_LE(record.threads.size(), std::max(threads, 1U));
        }
    }
}

TEST(SharedWork, ASmallTreeCostsNoThread) {
    Record record;
    workThrough(8, 12, record);
    EXPECT_EQ(record.times.size(), 11U);
    EXPECT_EQ(record.threads, std::set{std::this_thread::get_id()});
}

TEST(SharedWork, OneThreadIsTheCallers) {
    Record record;
    workThrough(1, 2000, record);
    EXPECT_EQ(record.threads, std::set{std::this_thread::get_id()});
}

TEST(SharedWork, AThreadThatRanOutOfWorkTakesWhatIsGivenLater) {
    std::map<int, Event> done;
    for (const int item : {1, 2, 3})
        done[item];
    bool allDone = true;
    Crew crew;
    SharedWork<int>(crew, 2).run(0, [&] {
        return [&](int item, SharedWork<int>& shared) {
            if (item != 0) return done.at(item).happen();
            while (!shared.wantsMore()) {
            }
            for (const int next : {1, 2, 3}) {
                shared.give(next);
                allDone = done.at(next).await() && allDone;
            }
        };
    });
    EXPECT_TRUE(allDone);
}

TEST(SharedWork, AsManyThreadsWorkAtOnceAsWereAskedFor) {
    constexpr int kThreads = 4;
    std::map<int, Event> arrived;
    for (int i = 0; i < kThreads; ++i)
        arrived[i];
    std::atomic<int> met{0};
    Crew crew;
    SharedWork<int>(crew, kThreads).run(0, [&] {
        return [&](int item, SharedWork<int>& shared) {
            if (item == 0) {
                while (!shared.wantsMore()) {
                }
                for (int i = 1; i < kThreads; ++i)
                    shared.give(i);
            }
            arrived.at(item).happen();
            bool all = true;
            for (auto& [other, event] : arrived)
                all = event.await() && all;
            if (all) ++met;
        };
    });
    EXPECT_EQ(met, kThreads);
}

TEST(SharedWork, WhereNoThreadCanBeStartedTheCallerDoesItAll) {
    if (const std::string why = test::whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    if (test::ranInFreshProcess()) return;
    test::asOrdinaryUser([] {
        const rlimit none{0, 0};
        ASSERT_EQ(setrlimit(RLIMIT_NPROC, &none), 0);
        Record record;
        workThrough(8, 2000, record);
        EXPECT_EQ(record.times.size(), 1999U);
        EXPECT_EQ(record.threads.size(), 1U);
    });
}

TEST(PackedNames, ComeOutInTheOrderTheyWentIn) {
    PackedNames names;
    EXPECT_TRUE(names.empty());
    EXPECT_FALSE(names.holdsSeveral());
    names.add("one");
    EXPECT_FALSE(names.empty());
    EXPECT_FALSE(names.holdsSeveral());
    names.add("\xff\n");
    names.add("three");
    EXPECT_TRUE(names.holdsSeveral());
    EXPECT_EQ(names.take(), "one");
    EXPECT_TRUE(names.holdsSeveral());
    EXPECT_EQ(names.take(), "\xff\n");
    EXPECT_FALSE(names.holdsSeveral());
    EXPECT_EQ(names.take(), "three");
    EXPECT_TRUE(names.empty());
    names.add("again");
    EXPECT_EQ(names.take(), "again");
}

}  // namespace sweepwright::platform
