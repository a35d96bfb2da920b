// The threads of a job, and work that they do side by side.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/files/FileManagerFixture.h"
#include "platform/queue/Crew.h"
#include "platform/queue/InOrder.h"
#include "platform/tree/ParallelFor.h"
#include "platform/tree/TreeRemover.h"
#include "platform/tree/TreeWalker.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"
#include "support/Meeting.h"

namespace sweepwright::platform {

namespace {

using namespace std::chrono_literals;
using test::Meeting;
using test::Operation;

constexpr int kHelpers = Crew::kMostThreads - 1;

/// Numbers from 0, as InOrder asks for them.
class Numbers {
  public:
    explicit Numbers(int count) : count_(count) {}
    std::optional<int> operator()() {
        if (next_ == count_) return std::nullopt;
        return next_++;
    }

  private:
    int count_;
    int next_ = 0;
};

}  // namespace

TEST(Crew, HelpsAtOnceWithAllThreadsAndRefusesMore) {
    Crew crew;
    Helpers helpers(crew);
    Meeting all(kHelpers + 1);
    std::atomic<int> met{0};
    for (int i = 0; i < kHelpers; ++i)
        EXPECT_TRUE(helpers.add([&] { met += all.attend() ? 1 : 0; }));
    EXPECT_FALSE(helpers.add([] {}));
    EXPECT_EQ(helpers.count(), std::size_t{kHelpers});
    all.attend();
    helpers.wait();
    EXPECT_EQ(met, kHelpers);
    EXPECT_EQ(helpers.count(), 0U);
}

TEST(Crew, ItsThreadsServeOneWalkAfterTheOther) {
    test::TemporaryDevice device;
    for (int i = 0; i < 100; ++i)
        device.file("/t/" + std::to_string(i) + "/file", 1);
    std::mutex mutex;
    std::set<std::thread::id> threads;
    test::FaultyFileManager files(device.files(), {Operation::ReadEntries});
    files.before([&](Operation, const std::string&) {
        const std::lock_guard lock(mutex);
        threads.insert(std::this_thread::get_id());
    });
    const TreeWalker walker(files);
    constexpr std::size_t kWalks = 200;
    for (std::size_t i = 0; i < kWalks; ++i)
        EXPECT_EQ(walker.sizeOfDirectory("/t", {}), 100U);
    // Threads of its own would be one a walk at least. One that has idled for a second ends, and
    // another may take its place.
    EXPECT_LT(threads.size(), kWalks);
}

TEST(Crew, WaitsOfManyStepsOrOfAProcessorAreNoJourneys) {
    EXPECT_TRUE(wereJourneys(5, 20ms, 1ms));
    EXPECT_TRUE(wereJourneys(66, 20ms, 100us));
    EXPECT_FALSE(wereJourneys(67, 20ms, 100us)) << "less than 300 microseconds each";
    EXPECT_FALSE(wereJourneys(5, 20ms, 6ms)) << "worked for more than a quarter";
    EXPECT_FALSE(wereJourneys(2000, 500ms, 20ms)) << "kept from the processor by others";
    EXPECT_FALSE(wereJourneys(5, 20ms, 20ms));
}

TEST(Crew, AFarDeviceGetsAllThreadsWhereSeveralAreWanted) {
    Crew crew;
    EXPECT_EQ(crew.threadsFor(2), 2U);
    crew.setFar(true);
    EXPECT_EQ(crew.threadsFor(2), unsigned{Crew::kMostThreads});
    EXPECT_EQ(crew.threadsFor(1), 1U);
    EXPECT_EQ(crew.threadsFor(100), 100U);
}

TEST(Crew, AFarDeviceGetsFewerThreadsWhereFewFilesMayBeOpen) {
    if (test::ranInFreshProcess()) return;
    for (const auto& [descriptors, threads] : {std::pair(256U, 4U), {128U, 2U}, {40U, 2U}}) {
        test::inChildProcess([descriptors, threads] {
            test::limitDescriptors(descriptors);
            Crew crew;
            crew.setFar(true);
            EXPECT_EQ(crew.threadsFor(2), threads);
        });
    }
}

TEST(Crew, ParallelForDoesEachOnce) {
    for (const bool isFar : {false, true}) {
        Crew crew;
        crew.setFar(isFar);
        for (const std::size_t count : {0U, 1U, 3U, 1000U}) {
            std::vector<std::atomic<int>> done(count);
            parallelFor(crew, count, 4, [&](std::size_t i) { ++done[i]; });
            for (const auto& times : done)
                EXPECT_EQ(times, 1);
        }
    }
}

TEST(InOrder, WithoutACrewAnItemIsAskedForWhenTheOneBeforeHasBeenToldOf) {
    std::vector<std::string> steps;
    Numbers numbers(2);
    InOrder<int, int>(nullptr).run(
        [&] {
            steps.emplace_back("next");
            return numbers();
        },
        [&](int item) {
            steps.push_back("work " + std::to_string(item));
            return item * 10;
        },
        [&](int item, int outcome) {
            steps.push_back("done " + std::to_string(item) + " " + std::to_string(outcome));
        });
    EXPECT_EQ(steps, (std::vector<std::string>{"next", "work 0", "done 0 0", "next", "work 1",
                                               "done 1 10", "next"}));
}

TEST(InOrder, OnANearDeviceTheCallersThreadDoesItAll) {
    Crew crew;
    std::set<std::thread::id> threads;
    InOrder<int, int>(&crew).run(
        Numbers(100),
        [&](int item) {
            threads.insert(std::this_thread::get_id());
            return item;
        },
        [](int, int) {});
    EXPECT_EQ(threads, std::set{std::this_thread::get_id()});
}

TEST(InOrder, OnAFarDeviceManyAreWorkedOnAtOnceAndToldOfInOrder) {
    Crew crew;
    crew.setFar(true);
    // The caller waits where a helper has taken the first item before it.
    Meeting all(kHelpers);
    std::atomic<bool> met{true};
    const std::thread::id caller = std::this_thread::get_id();
    std::vector<int> told;
    InOrder<int, int>(&crew).run(
        Numbers(100),
        [&](int item) {
            if (!all.attend()) met = false;
            return item * 10;
        },
        [&](int item, int outcome) {
            EXPECT_EQ(outcome, item * 10);
            EXPECT_EQ(std::this_thread::get_id(), caller);
            told.push_back(item);
        });
    EXPECT_TRUE(met);
    ASSERT_EQ(told.size(), 100U);
    EXPECT_TRUE(std::ranges::is_sorted(told));
}

TEST(FarDevice, ARemovalAndAWalkWorkInManyFoldersAtOnce) {
    constexpr int kFolders = 12;
    for (const Operation waited : {Operation::ReadEntries, Operation::RemoveDirectoryAt}) {
        test::TemporaryDevice device;
        for (int i = 0; i < kFolders; ++i)
            device.file("/t/" + std::to_string(i) + "/file", 1);
        Meeting all(kFolders);
        std::atomic<bool> met{true};
        test::FaultyFileManager files(device.files(), {waited});
        files.before([&](Operation, const std::string& path) {
            if (path.starts_with("/t/") && !all.attend()) met = false;
        });
        const auto crew = std::make_shared<Crew>();
        crew->setFar(true);
        if (waited == Operation::ReadEntries) {
            EXPECT_EQ(TreeWalker(files, 2, crew).sizeOfDirectory("/t", {}), 12U);
        } else {
            const auto root = files.openDirectory("/", LastLink::Refuse);
            EXPECT_EQ(TreeRemover(files, 2, crew).remove(*root, "t", {}).bytes, 12U);
        }
        EXPECT_TRUE(met);
    }
}

}  // namespace sweepwright::platform
