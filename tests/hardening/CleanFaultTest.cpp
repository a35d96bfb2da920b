// One call of the file system fails, whichever it is, in every clean there is.
#include <array>
#include <cerrno>
#include <cstdlib>
#include <tuple>

#include <gtest/gtest.h>

#include "hardening/SmallDevice.h"

namespace sweepwright {
namespace {

using test::Operation;
using test::SmallDevice;
using test::Worker;

struct Fault {
    int number;
    const char* name;
};

constexpr std::array kFaults = {Fault{EACCES, "EACCES"},
                                Fault{ENOSPC, "ENOSPC"},
                                Fault{EROFS, "EROFS"},
                                Fault{EIO, "EIO"},
                                Fault{EMFILE, "EMFILE"},
                                Fault{ENOENT, "ENOENT"},
                                Fault{ENAMETOOLONG, "ENAMETOOLONG"},
                                Fault{EINTR, "EINTR"}};

/// Calls of a clean fail with the errors in turn; with SWEEPWRIGHT_ALL_FAULTS every call fails with
/// each.
constexpr std::size_t kTurns = kFaults.size();
bool allFaults() {
    return std::getenv("SWEEPWRIGHT_ALL_FAULTS") != nullptr;
}

/// A clean, and which of the errors its calls fail with.
using CleanAndFault = std::tuple<int, std::size_t>;

class CleanFaults : public testing::TestWithParam<CleanAndFault> {
  protected:
    CleanFaults() {
        Worker worker(device_.tree());
        const std::uint64_t before = worker.files.calls();
        const auto outcome = worker.clean(clean());
        EXPECT_TRUE(outcome.success);
        calls_ = worker.files.calls() - before;
        healthy_ = outcome.bytes;
        EXPECT_EQ(device_.damage(), "");
        EXPECT_EQ(device_.bytesGone(), healthy_);
        device_.restore();
        EXPECT_GT(calls_, 20U);
        RecordProperty("calls", static_cast<int>(calls_));
    }

    static int clean() { return std::get<0>(GetParam()); }
    static int number() { return kFaults.at(std::get<1>(GetParam())).number; }
    /// Every second call fails, and every eighth of a batch, which repeats what the clean of one
    /// app does.
    static std::size_t spread() { return clean() > test::kOneApp ? 8 : 2; }
    static std::uint64_t step() { return allFaults() ? 1 : kTurns * spread(); }
    /// The first call whose turn this error is.
    static std::uint64_t firstCall() {
        const std::size_t turn = std::get<1>(GetParam());
        return allFaults() ? 1 : (turn == 0 ? kTurns : turn) * spread();
    }
    static bool isOfApps() { return clean() >= test::kOneApp; }
    static bool isRemoval(Operation operation) {
        return operation == Operation::RemoveFileAt || operation == Operation::RemoveDirectoryAt;
    }

    static bool isQuery(Operation operation) {
        return !std::set<Operation>(test::kChangingOperations).contains(operation);
    }

    /// What was claimed is what went. Where a figure is taken before a removal (apps; the shared
    /// folder of a deep clean) the removal's failure does not lower it; where something can't be
    /// measured, it counts 0.
    void expectHonestFigure(const Worker::Outcome& outcome, bool removalFailed,
                            bool queryFailed) const {
        const std::uint64_t gone = device_.bytesGone();
        const bool countsBefore = isOfApps() || clean() == test::kDeep;
        if (queryFailed) {
            EXPECT_LE(outcome.bytes, countsBefore ? healthy_ : gone);
        } else if (removalFailed && countsBefore) {
            EXPECT_GE(outcome.bytes, gone);
            EXPECT_LE(outcome.bytes, healthy_);
        } else {
            EXPECT_EQ(outcome.bytes, gone);
        }
    }

    void expectTheNextCleanWorks() {
        Worker& worker = next_;
        EXPECT_FALSE(worker.defaults.damage().has_value());
        EXPECT_GE(worker.history.getAllCleanHistory().size(), 1U);
        EXPECT_EQ(worker.pathWhitelist.getUserDefinedPaths().size(), 7U);
        const std::uint64_t before = device_.bytesGone();
        const auto again = worker.clean(clean());
        EXPECT_TRUE(again.success);
        EXPECT_EQ(device_.bytesGone(), healthy_);
        EXPECT_EQ(again.bytes, healthy_ - before);
        EXPECT_EQ(device_.damage(), "");
    }

    SmallDevice device_;
    Worker next_{device_.tree()};  ///< a process that nothing happens to
    std::uint64_t calls_ = 0;
    std::uint64_t healthy_ = 0;  ///< bytes of a clean in which nothing fails
};

TEST_P(CleanFaults, WhicheverCallFailsNothingProtectedGoesAndTheFigureIsHonest) {
    for (std::uint64_t n = firstCall(); n <= calls_; n += step()) {
        Worker worker(device_.tree());
        worker.failNext(n, number());
        const auto outcome = worker.clean(clean());
        const std::optional failed = worker.files.failedOperation();
        SCOPED_TRACE(testing::Message()
                     << "call " << n << " (" << (failed ? static_cast<int>(*failed) : -1)
                     << ") about " << worker.files.failedPath());
        EXPECT_EQ(device_.damage(), "");
        expectHonestFigure(outcome, failed && isRemoval(*failed), failed && isQuery(*failed));
        if (!outcome.success && !isOfApps()) {
            EXPECT_EQ(device_.bytesGone(), 0U);
        }
        expectTheNextCleanWorks();
        device_.restore();
        if (HasFailure()) return;
    }
}

TEST_P(CleanFaults, ADiskThatFailsFromOneCallOnLosesNothingProtected) {
    for (std::uint64_t n = firstCall(); n <= calls_; n += step()) {
        Worker worker(device_.tree());
        worker.failFromNext(n, number());
        static_cast<void>(worker.clean(clean()));
        SCOPED_TRACE(testing::Message()
                     << "from call " << n << " on, about " << worker.files.failedPath());
        EXPECT_EQ(device_.damage(), "");
        if (n % 5 == 1) expectTheNextCleanWorks();
        device_.restore();
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(, CleanFaults,
                         testing::Combine(testing::Range(0, int{test::kCleans}),
                                          testing::Range(std::size_t{0}, kTurns)),
                         [](const auto& each) {
                             return test::cleanName(std::get<0>(each.param)) + "_" +
                                    kFaults.at(std::get<1>(each.param)).name;
                         });

}  // namespace
}  // namespace sweepwright
