// Two processes at work on one device.
#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "hardening/SmallDevice.h"
#include "platform/base/ThisProcess.h"
#include "support/ChildProcess.h"
#include "support/Process.h"

namespace sweepwright {
namespace {

using test::Operation;
using test::SmallDevice;
using test::Worker;
using testing::HasSubstr;

constexpr int kRounds = 40;

/// A process that holds the lock of cleaning until it is ended.
class Holder {
  public:
    explicit Holder(test::TemporaryDevice& tree) {
        std::array<int, 2> told{};
        EXPECT_EQ(pipe(told.data()), 0);
        child_ = fork();
        if (child_ == 0) {
            Worker worker(tree);
            const auto share = worker.lock.share();
            if (!share || write(told[1], "", 1) != 1) _exit(1);
            for (;;)
                pause();
        }
        close(told[1]);
        char byte = 0;
        EXPECT_EQ(read(told[0], &byte, 1), 1);
        close(told[0]);
    }
    ~Holder() { end(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    /// Ends it as a crash does.
    void end() {
        if (child_ <= 0) return;
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
        child_ = -1;
    }
    [[nodiscard]] pid_t number() const { return child_; }

  private:
    pid_t child_ = -1;
};

test::ProcessResult sweepctl(SmallDevice& device, std::vector<std::string> words) {
    std::vector<std::string> all = {SWEEPCTL, "--device-root", device.tree().root(), "--home",
                                    SmallDevice::kHome};
    all.insert(all.end(), words.begin(), words.end());
    test::ProcessOptions options;
    options.arguments = std::move(all);
    options.environment = {{"HOME", device.outside()}, {"PATH", "/usr/bin:/bin"}};
    return test::Process::run(options);
}

/// A folder of two files that appears in the temporary folder at once, whoever empties it.
void plant(SmallDevice& device, const std::string& name) {
    test::TemporaryDevice& tree = device.tree();
    const std::string made = SmallDevice::home("Documents/" + name);
    tree.file(made + "/deep/file", 1'000);
    tree.file(made + "/file", 1'000);
    std::filesystem::rename(tree.host(made), tree.host(SmallDevice::home("tmp/" + name)));
}

/// Adds to every list, plants a file and cleans it away, again and again; `telling` gets the bytes
/// that the cleans claimed.
void work(SmallDevice& device, const std::string& who, bool locked, int telling) {
    Worker worker(device.tree());
    EngineServices services = worker.engineServices();
    if (!locked) services.lock = nullptr;
    FileCleanerEngine engine(services);
    std::uint64_t claimed = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string name = who + std::to_string(round);
        EXPECT_TRUE(worker.pathWhitelist.addPathToWhitelist("/kept/" + name));
        EXPECT_TRUE(worker.appWhitelist.addAppToWhitelist(name));
        EXPECT_TRUE(worker.customPaths.addCustomPath("/custom/" + name));
        EXPECT_TRUE(worker.history.saveCleanHistoryWithType(CleanType::Cache, 1, name));
        plant(device, name);
        bool done = false;
        engine.cleanWithType(CleanType::TempFiles, {},
                             [&](bool success, std::uint64_t bytes, const auto& error) {
                                 claimed += bytes;
                                 if (!success) {
                                     EXPECT_EQ(error->domain, CleanLock::kErrorDomain);
                                 }
                                 EXPECT_TRUE(success || locked);
                                 done = true;
                             });
        worker.mainQueue.runUntil([&] { return done; });
    }
    EXPECT_EQ(write(telling, &claimed, sizeof claimed), ssize_t{sizeof claimed});
}

class TwoAtOnce : public testing::TestWithParam<bool> {};

TEST_P(TwoAtOnce, NoEntryIsLostAndNoByteIsCountedTwice) {
    if (test::ranInFreshProcess()) return;
    SmallDevice device;
    const auto total = test::answerOfChild<std::uint64_t>([&] {
        Worker before(device.tree());
        EXPECT_TRUE(before.clean(static_cast<int>(CleanType::TempFiles)).success);
        return before.statistics.totals().totalCleanedBytes;
    });
    std::array<int, 2> told{};
    ASSERT_EQ(pipe(told.data()), 0);
    std::array<pid_t, 2> children{};
    for (std::size_t i = 0; i < children.size(); ++i)
        children[i] =
            test::startChild([&, i] { work(device, i == 0 ? "a" : "b", GetParam(), told[1]); });
    close(told[1]);
    for (const pid_t child : children)
        EXPECT_EQ(test::exitStatusOf(child), 0);
    std::array<std::uint64_t, 2> claimed{};
    ASSERT_EQ(read(told[0], claimed.data(), sizeof claimed), ssize_t{sizeof claimed});
    close(told[0]);

    Worker worker(device.tree());
    EXPECT_EQ(worker.pathWhitelist.getUserDefinedPaths().size(), 7U + 2 * kRounds);
    EXPECT_EQ(worker.appWhitelist.getWhitelistCount(), 2U + 2 * kRounds);
    EXPECT_EQ(worker.customPaths.getCustomPathCount(), 2U + 2 * kRounds);
    EXPECT_EQ(worker.history.getAllCleanHistory().size(), 100U);
    const std::uint64_t both = claimed[0] + claimed[1];
    EXPECT_EQ(worker.statistics.totals().totalCleanedBytes, total + both);
    const std::uint64_t left = worker.engine.sizeOfDirectoryAtPath(SmallDevice::home("tmp"));
    EXPECT_EQ(both, 2U * kRounds * 2'000 - left);
    EXPECT_EQ(device.damage(), "");
}

INSTANTIATE_TEST_SUITE_P(, TwoAtOnce, testing::Bool(),
                         [](const auto& each) { return each.param ? "Locked" : "Unlocked"; });

TEST(CleanLockTest, ASecondProcessIsToldInOneLineWhoCleansAndRemovesNothing) {
    SmallDevice device;
    Holder holder(device.tree());
    Worker worker(device.tree());
    for (int which = 0; which < test::kCleans; ++which) {
        const auto outcome = worker.clean(which);
        EXPECT_FALSE(outcome.success) << which;
        ASSERT_TRUE(outcome.error.has_value());
        EXPECT_EQ(outcome.error->domain, CleanLock::kErrorDomain);
        EXPECT_THAT(outcome.error->description,
                    HasSubstr(platform::ThisProcess::program() + " (process " +
                              std::to_string(holder.number()) + ") is cleaning this device"));
        EXPECT_EQ(outcome.error->description.find('\n'), std::string::npos);
    }
    EXPECT_EQ(device.bytesGone(), 0U);
}

TEST(CleanLockTest, SweepctlSaysWhoCleansAndFailsWhileADryRunIsFree) {
    SmallDevice device;
    Holder holder(device.tree());
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"clean", "temp", "--yes"},
          {"deep-clean", "--yes"},
          {"apps", "clean", "com.example.one", "--yes"},
          {"apps", "clean", "--all", "--yes"}}) {
        const auto refused = sweepctl(device, words);
        EXPECT_EQ(refused.status, 1);
        EXPECT_THAT(refused.error, HasSubstr("(process " + std::to_string(holder.number()) + ")"));
        EXPECT_EQ(std::ranges::count(refused.error, '\n'), 1) << refused.error;
    }
    const auto document = sweepctl(device, {"--json", "clean", "temp", "--yes"});
    EXPECT_THAT(document.output, HasSubstr("\"domain\": \"CleanLock\""));
    EXPECT_THAT(document.output, HasSubstr("\"success\": false"));
    EXPECT_EQ(device.bytesGone(), 0U);
    EXPECT_EQ(sweepctl(device, {"clean", "temp", "--dry-run"}).status, 0);
}

TEST(CleanLockTest, ALockOfAProcessThatDiedFreesItself) {
    SmallDevice device;
    Holder holder(device.tree());
    EXPECT_EQ(sweepctl(device, {"clean", "temp", "--yes"}).status, 1);
    holder.end();
    EXPECT_EQ(sweepctl(device, {"clean", "temp", "--yes"}).status, 0);
    EXPECT_GT(device.bytesGone(), 0U);
}

TEST(CleanLockTest, CleansOfOneProcessShareTheLockAndDoNotWaitForEachOther) {
    SmallDevice device;
    Worker worker(device.tree());
    int done = 0;
    const auto count = [&done](bool success, std::uint64_t, const auto&) {
        EXPECT_TRUE(success);
        ++done;
    };
    worker.engine.cleanWithType(CleanType::All, {}, count);
    worker.apps.cleanCacheForApps({"com.example.one", "com.example.two"}, {}, count);
    worker.apps.cleanCacheForApp("com.example.one", {}, count);
    worker.engine.deepCleanWithCompletion(count);
    worker.mainQueue.runUntil([&done] { return done == 4; });
    // Given back by the last of them.
    test::inChildProcess([&] { EXPECT_TRUE(Worker(device.tree()).lock.share()); });
    EXPECT_EQ(device.damage(), "");
}

TEST(CleanLockTest, TheLastShareGivesItBack) {
    SmallDevice device;
    Worker worker(device.tree());
    std::optional first(worker.lock.share());
    std::optional second(worker.lock.share());
    ASSERT_TRUE(*first && *second);
    const auto isFree = [&] { EXPECT_TRUE(Worker(device.tree()).lock.share()); };
    const auto isHeld = [&] { EXPECT_FALSE(Worker(device.tree()).lock.share()); };
    test::inChildProcess(isHeld);
    first.reset();
    test::inChildProcess(isHeld);
    second.reset();
    test::inChildProcess(isFree);
}

TEST(CleanLockTest, WhereTheLockCannotBeMadeCleansRunAllTheSame) {
    SmallDevice device;
    for (const int number : {EROFS, EACCES, ENOSPC, EIO, EMFILE}) {
        Worker worker(device.tree());
        worker.files.failWhere(
            [](Operation operation, const std::string&) { return operation == Operation::TryLock; },
            number);
        EXPECT_TRUE(worker.clean(static_cast<int>(CleanType::TempFiles)).success) << number;
        EXPECT_GT(device.bytesGone(), 0U);
        device.restore();
    }
}

TEST(CleanLockTest, ANoteThatNamesNobodyIsNotRepeated) {
    SmallDevice device;
    Holder holder(device.tree());
    const std::string file =
        CleanLock::fileBeside(SmallDevice::home("Library/Preferences/com.sweepwright.app.plist"));
    for (const char* note : {"", "nonsense", "x \n", " 1\n", "a b c"}) {
        device.tree().fileWith(file, note);
        const auto refused = Worker(device.tree()).lock.share();
        ASSERT_FALSE(refused);
        EXPECT_THAT(refused.error().description, HasSubstr(": another process is cleaning"));
    }
}

TEST(CleanLockTest, ACleanDoesNotTakeItsOwnLockAway) {
    SmallDevice device;
    Worker worker(device.tree());
    ASSERT_TRUE(worker.customPaths.addCustomPath(SmallDevice::home("Library/Preferences")));
    EXPECT_TRUE(worker.clean(test::kAll).success);
    EXPECT_TRUE(device.tree().exists(CleanLock::fileBeside(worker.device.userDefaultsFile())));
    EXPECT_TRUE(device.tree().exists(worker.device.userDefaultsFile()));
}

}  // namespace
}  // namespace sweepwright
