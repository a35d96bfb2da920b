// One call of the file system fails, or ends the process, in every change of a stored list.
#include <array>
#include <cerrno>

#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include "hardening/SmallDevice.h"
#include "support/ChildProcess.h"

namespace sweepwright {
namespace {

using platform::Result;
using test::SmallDevice;
using test::Worker;

constexpr std::array kErrors = {EACCES, ENOSPC, EROFS, EIO, EMFILE, ENOENT, ENAMETOOLONG, EINTR};

struct Change {
    const char* name;
    Result<> (*make)(Worker&);
};

constexpr std::array kChanges = {
    Change{"AddPath", [](Worker& w) { return w.pathWhitelist.addPathToWhitelist("/new/"); }},
    Change{"RemovePath",
           [](Worker& w) {
               return w.pathWhitelist.removePathFromWhitelist(
                   w.pathWhitelist.getUserDefinedPaths().at(1));
           }},
    Change{"ClearPaths", [](Worker& w) { return w.pathWhitelist.clearAllWhitelistedPaths(); }},
    Change{"AddApp", [](Worker& w) { return w.appWhitelist.addAppToWhitelist("com.example.x"); }},
    Change{"RemoveApp",
           [](Worker& w) { return w.appWhitelist.removeAppFromWhitelist("com.example.kept"); }},
    Change{"ClearApps", [](Worker& w) { return w.appWhitelist.clearAllWhitelistedApps(); }},
    Change{"AddCustom", [](Worker& w) { return w.customPaths.addCustomPath("/new"); }},
    Change{"RemoveCustom",
           [](Worker& w) { return w.customPaths.removeCustomPath("/var/mobile/Media/Custom"); }},
    Change{"ClearCustom", [](Worker& w) { return w.customPaths.clearAllCustomPaths(); }},
    Change{"AddHistory",
           [](Worker& w) {
               return w.history.saveCleanHistoryWithType(CleanType::SystemLogs, 100, "");
           }},
    Change{"DeleteHistory",
           [](Worker& w) -> Result<> {
               const auto items = w.history.getAllCleanHistory();
               if (items.empty()) return std::unexpected(platform::Error{"Test", 1, "unread"});
               return w.history.deleteHistoryItem(items.front());
           }},
    Change{"ClearHistory", [](Worker& w) { return w.history.clearAllHistory(); }},
    Change{"Statistics", [](Worker& w) { return w.statistics.recordClean(5); }}};

class ListFaults : public testing::TestWithParam<Change> {
  protected:
    ListFaults() {
        before_ = state();
        Worker worker(device_.tree());
        const std::uint64_t calls = worker.files.calls();
        EXPECT_TRUE(GetParam().make(worker));
        calls_ = worker.files.calls() - calls;
        after_ = state();
        EXPECT_NE(before_, after_);
        EXPECT_GE(calls_, 3U);
        device_.restore();
    }

    /// All that is stored, as one text; a clean can start.
    std::string state() {
        Worker worker(device_.tree());
        EXPECT_FALSE(worker.defaults.damage().has_value());
        EXPECT_TRUE(worker.engine.readiness());
        EXPECT_TRUE(worker.apps.readiness());
        std::string history;
        for (const auto& item : worker.history.getAllCleanHistory())
            history += fmt::format("{}:{} ", item.cleanTypeName, item.cleanedBytes);
        const auto totals = worker.statistics.totals();
        return fmt::format("{} {} {} {} {}/{}", worker.pathWhitelist.getUserDefinedPaths(),
                           worker.appWhitelist.getAllWhitelistedApps(),
                           worker.customPaths.getAllCustomPaths(), history,
                           totals.totalCleanedBytes, totals.cleanCount);
    }

    SmallDevice device_;
    std::string before_;
    std::string after_;
    std::uint64_t calls_ = 0;
};

TEST_P(ListFaults, WhicheverCallFailsTheListIsTheOldOrTheNewOne) {
    for (std::uint64_t n = 1; n <= calls_; ++n) {
        for (const int number : kErrors) {
            Worker worker(device_.tree());
            worker.failNext(n, number);
            const auto changed = GetParam().make(worker);
            SCOPED_TRACE(testing::Message() << "call " << n << " about "
                                            << worker.files.failedPath() << ": " << number);
            EXPECT_EQ(state(), changed ? after_ : before_);
            // The process that met it goes on: its next change is whole.
            if (!changed) {
                EXPECT_TRUE(GetParam().make(worker));
            }
            EXPECT_EQ(state(), after_);
            device_.restore();
        }
    }
}

TEST_P(ListFaults, AProcessThatEndsAtAnyCallLeavesTheOldOrTheNewList) {
    for (std::uint64_t n = 1; n <= calls_ + 1; ++n) {
        const int status = test::exitStatusOfChild([&] {
            Worker worker(device_.tree());
            worker.files.killAt(worker.files.calls() + n);
            EXPECT_TRUE(GetParam().make(worker));
        });
        EXPECT_EQ(status, n <= calls_ ? test::kKilled : 0) << n;
        const std::string left = state();
        EXPECT_TRUE(left == before_ || left == after_) << n << ": " << left;
        device_.restore();
    }
}

INSTANTIATE_TEST_SUITE_P(, ListFaults, testing::ValuesIn(kChanges),
                         [](const auto& each) { return each.param.name; });

}  // namespace
}  // namespace sweepwright
