#include <chrono>

#include "EngineTest.h"
#include "platform/queue/ProgressThrottle.h"

namespace sweepwright {
namespace {

using testing::ElementsAre;

using WholeCleanTest = EngineTest;

TEST_F(WholeCleanTest, AllTogetherFreeWhatEachWouldOfWhatTheOthersLeft) {
    d_.tree.file(d_.caches("Kingfisher/a"), 1);  // goes with the caches
    d_.tree.file(d_.temporary("a"), 10);
    d_.tree.file(d_.library("Cookies/a"), 100);
    d_.tree.file(d_.library("Logs/CrashReporter/a"), 1'000);  // goes with the logs
    d_.tree.file(d_.documents("Downloads/a"), 10'000);
    d_.tree.file(d_.library("x.sqlite-wal"), 100'000);
    d_.tree.file(d_.support("OfflineMaps/a"), 1'000'000);
    EXPECT_EQ(d_.clean(CleanType::All).bytes, 1'111'111U);
}

TEST_F(WholeCleanTest, ProgressReachesTheCallerFromEveryPlainDirectory) {
    d_.tree.file(d_.support("OfflineMaps/a"), 1);
    std::vector<std::string> heard;
    d_.clean(CleanType::OfflineData, [&](const std::string& item, double fraction) {
        heard.push_back(item);
        EXPECT_EQ(fraction, 1.0);
    });
    EXPECT_THAT(heard, ElementsAre("a"));
}

TEST_F(WholeCleanTest, TheFloodOfAWholeCleanIsThinnedAndEndsWithItsLastCall) {
    for (int i = 0; i < 500; ++i)
        d_.tree.file(d_.support("Offline" + std::to_string(i) + "/a"), 1);
    std::size_t heard = 0;
    bool done = false;
    const auto start = std::chrono::steady_clock::now();
    d_.engine.cleanWithType(
        CleanType::OfflineData, [&](const std::string&, double) { ++heard; },
        [&](bool, std::uint64_t bytes, const auto&) {
            EXPECT_EQ(bytes, 500U);
            done = true;
        });
    d_.mainQueue.runUntil([&] { return done; });
    EXPECT_GE(heard, 1U);
    const auto frames =
        (std::chrono::steady_clock::now() - start) / platform::ProgressThrottle::kInterval;
    EXPECT_LE(heard, static_cast<std::size_t>(frames) + 2);
}

}  // namespace
}  // namespace sweepwright
