// The process ends at any call that changes the disk, in every clean there is.
#include <gtest/gtest.h>

#include "hardening/SmallDevice.h"
#include "support/ChildProcess.h"

namespace sweepwright {
namespace {

using test::SmallDevice;
using test::Worker;

/// A clean that comes through.
struct Healthy {
    std::uint64_t bytes;
    std::uint64_t calls;  ///< that change something
};

class CleanCrashes : public testing::TestWithParam<int> {};

TEST_P(CleanCrashes, WhereverTheProcessEndsNothingProtectedGoesAndTheNextCleanWorks) {
    if (test::ranInFreshProcess()) return;
    SmallDevice device;
    const auto [healthy, calls] = test::answerOfChild<Healthy>([&] {
        Worker worker(device.tree(), test::kChangingOperations);
        const std::uint64_t bytes = worker.clean(GetParam()).bytes;
        return Healthy{bytes, worker.files.calls()};
    });
    device.restore();
    ASSERT_GT(calls, 4U);
    for (std::uint64_t n = 1; n <= calls + 1; ++n) {
        SCOPED_TRACE(n);
        const int status = test::exitStatusOfChild([&] {
            Worker worker(device.tree(), test::kChangingOperations);
            worker.files.killAt(n);
            EXPECT_TRUE(worker.clean(GetParam()).success);
        });
        EXPECT_EQ(status, n <= calls ? test::kKilled : 0);
        EXPECT_EQ(device.damage(), "");

        test::inChildProcess([&] {
            Worker next(device.tree());
            EXPECT_FALSE(next.defaults.damage().has_value());
            EXPECT_EQ(next.pathWhitelist.getUserDefinedPaths().size(), 7U);
            EXPECT_GE(next.history.getAllCleanHistory().size(), 1U);
            const std::uint64_t gone = device.bytesGone();
            const auto outcome = next.clean(GetParam());
            EXPECT_TRUE(outcome.success);  // the lock of the one that ended holds nobody back
            EXPECT_EQ(outcome.bytes, healthy - gone);
            EXPECT_EQ(device.bytesGone(), healthy);
            EXPECT_EQ(device.damage(), "");
        });
        device.restore();
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(, CleanCrashes, testing::Range(0, int{test::kCleans}),
                         [](const auto& each) { return test::cleanName(each.param); });

}  // namespace
}  // namespace sweepwright
