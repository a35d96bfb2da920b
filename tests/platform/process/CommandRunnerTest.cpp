#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/log/Log.h"
#include "platform/process/CommandRunner.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> strings(char* const* list) {
    std::vector<std::string> all;
    for (; *list != nullptr; ++list)
        all.emplace_back(*list);
    return all;
}

/// Calls that start nothing: each answers what the test set and notes what it was given.
struct FakeCalls {
    struct Spawn {
        std::string program;
        std::vector<std::string> arguments;
        std::vector<std::string> environment;
    };

    std::vector<int> spawnErrors;  ///< one a call; no more left: success
    std::vector<int> waitErrors;
    int confineError = 0;
    int status = 0;

    std::vector<Spawn> spawns;
    std::vector<int> waited;
    std::vector<std::string> confined;

    SpawnCalls calls() {
        return {.spawn =
                    [this](int* child, const char* program, char* const arguments[],
                           char* const environment[]) {
                        spawns.push_back({program, strings(arguments), strings(environment)});
                        const std::size_t n = spawns.size() - 1;
                        if (n < spawnErrors.size() && spawnErrors[n] != 0) return spawnErrors[n];
                        *child = kChild;
                        return 0;
                    },
                .wait =
                    [this](int child, int* out) {
                        waited.push_back(child);
                        const std::size_t n = waited.size() - 1;
                        if (n < waitErrors.size() && waitErrors[n] != 0) {
                            errno = waitErrors[n];
                            return -1;
                        }
                        *out = status;
                        return child;
                    },
                .confine =
                    [this](const std::string& folder) {
                        confined.push_back(folder);
                        return confineError;
                    }};
    }

    static constexpr int kChild = 4711;
};

class CommandRunnerTest : public testing::Test {
  protected:
    std::int32_t run(const std::string& command) {
        SpawnCommandRunner runner(fake_.calls());
        return runner.run(command, "/folder");
    }

    FakeCalls fake_;
    LogCapture log_;
};

TEST_F(CommandRunnerTest, TheShellGetsTheCommandAndThreeVariables) {
    EXPECT_EQ(run("echo 清理"), 0);
    ASSERT_EQ(fake_.spawns.size(), 1U);
    EXPECT_EQ(fake_.spawns[0].program, "/bin/sh");
    EXPECT_THAT(fake_.spawns[0].arguments, ElementsAre("sh", "-c", "echo 清理"));
    EXPECT_THAT(fake_.spawns[0].environment,
                ElementsAre("PATH=/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin", "HOME=/var/mobile",
                            "SHELL=/bin/sh"));
    EXPECT_THAT(fake_.waited, ElementsAre(FakeCalls::kChild));
    EXPECT_THAT(fake_.confined, ElementsAre("/folder"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(CommandRunnerTest, AFailedSpawnIsTriedOnceMoreWithTheOwnEnvironment) {
    ASSERT_EQ(setenv("SWEEPWRIGHT_TEST_MARK", "here", 1), 0);
    fake_.spawnErrors = {ENOMEM, 0};
    EXPECT_EQ(run("true"), 0);
    unsetenv("SWEEPWRIGHT_TEST_MARK");
    ASSERT_EQ(fake_.spawns.size(), 2U);
    EXPECT_EQ(fake_.spawns[1].program, "/bin/sh");
    EXPECT_THAT(fake_.spawns[1].arguments, ElementsAre("sh", "-c", "true"));
    EXPECT_THAT(fake_.spawns[1].environment, testing::Contains("SWEEPWRIGHT_TEST_MARK=here"));
    EXPECT_THAT(log_.lines(), ElementsAre("⚠️ 使用自定义环境变量失败，尝试使用系统环境变量"));
}

TEST_F(CommandRunnerTest, TwoFailedSpawnsAreMinusOneWithTheSecondError) {
    fake_.spawnErrors = {ENOMEM, ENOENT};
    EXPECT_EQ(run("true"), -1);
    EXPECT_EQ(fake_.spawns.size(), 2U);
    EXPECT_THAT(fake_.waited, IsEmpty());
    EXPECT_THAT(
        log_.lines(),
        ElementsAre("⚠️ 使用自定义环境变量失败，尝试使用系统环境变量",
                    "❌ posix_spawn失败: No such file or directory (错误码: 2), 命令: true"));
}

TEST_F(CommandRunnerTest, AnExitCodeIsTheResultAndIsLogged) {
    fake_.status = 3 << 8;
    EXPECT_EQ(run("exit 3"), 3);
    EXPECT_THAT(log_.lines(), ElementsAre("⚠️ 命令执行失败，退出码: 3, 命令: exit 3"));
}

TEST_F(CommandRunnerTest, AnEndBySignalIsMinusOneAndIsLogged) {
    fake_.status = SIGKILL;
    EXPECT_EQ(run("true"), -1);
    EXPECT_THAT(log_.lines(), ElementsAre("❌ 命令被信号终止: 9, 命令: true"));
}

TEST_F(CommandRunnerTest, AStoppedChildIsMinusOneWithoutALine) {
    fake_.status = (SIGSTOP << 8) | 0x7F;
    ASSERT_TRUE(WIFSTOPPED(fake_.status));
    EXPECT_EQ(run("true"), -1);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(CommandRunnerTest, AFailedWaitIsMinusOneAndIsLogged) {
    fake_.waitErrors = {ECHILD};
    EXPECT_EQ(run("true"), -1);
    EXPECT_THAT(log_.lines(), ElementsAre("❌ waitpid失败: No child processes"));
}

TEST_F(CommandRunnerTest, AnInterruptedWaitIsTakenUpAgain) {
    fake_.waitErrors = {EINTR, EINTR, 0};
    fake_.status = 0;
    EXPECT_EQ(run("true"), 0);
    EXPECT_EQ(fake_.waited.size(), 3U);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(CommandRunnerTest, ACommandThatIsNoStringOfCharactersDoesNotRun) {
    EXPECT_EQ(run("rm \xFF"), -1);
    EXPECT_EQ(run(std::string("true\0false", 10)), -1);
    EXPECT_THAT(fake_.spawns, IsEmpty());
    EXPECT_THAT(log_.lines(), ElementsAre("❌ 命令字符串转换失败", "❌ 命令字符串转换失败"));
}

TEST_F(CommandRunnerTest, ACommandThatCouldNotBeConfinedDoesNotRun) {
    fake_.confineError = E2BIG;
    EXPECT_EQ(run("true"), -1);
    EXPECT_THAT(fake_.spawns, IsEmpty());
    EXPECT_THAT(log_.lines(),
                ElementsAre("❌ posix_spawn失败: Argument list too long (错误码: 7), 命令: true"));
}

/// Real commands, on a folder "emptied" beside a folder "sibling" that must survive.
class RealCommandTest : public testing::Test {
  protected:
    void SetUp() override {
        for (const std::string& file :
             {folder() + "/a/b/c", folder() + "/x y", sibling() + "/kept"}) {
            fs::create_directories(fs::path(file).parent_path());
            std::ofstream(file) << "content";
        }
    }

    [[nodiscard]] std::string folder() const { return temporary_.path() + "/emptied"; }
    [[nodiscard]] std::string sibling() const { return temporary_.path() + "/sibling"; }

    /// As the command that empties a folder reads for a folder of a wicked name.
    [[nodiscard]] std::string commandThatEndsTheQuotingEarly() const {
        const std::string wicked = folder() + "' >/dev/null; rm -rf " + sibling() + "; : '";
        return "find '" + wicked +
               "' -mindepth 1 -maxdepth 1 ! -name '.*' -exec rm -rf {} + 2>/dev/null; true";
    }

    test::TemporaryFolder temporary_;
    SpawnCommandRunner runner_;
    LogCapture log_;
};

/// Ends the test as skipped where the host can't confine.
#define REQUIRE_CONFINEMENT()                   \
    if (!CommandRunner::confinementAvailable()) \
    GTEST_SKIP() << "this kernel offers no Landlock: commands run unconfined here"

TEST_F(RealCommandTest, TheShellRunsWithItsEnvironment) {
    EXPECT_EQ(runner_.run("test \"$HOME:$SHELL:$PATH\" = "
                          "/var/mobile:/bin/sh:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin",
                          folder()),
              0);
    EXPECT_EQ(runner_.run("exit 42", folder()), 42);
    EXPECT_EQ(runner_.run("kill -TERM $$", folder()), -1);
    EXPECT_THAT(log_.lines(), ElementsAre("⚠️ 命令执行失败，退出码: 42, 命令: exit 42",
                                          "❌ 命令被信号终止: 15, 命令: kill -TERM $$"));
}

TEST_F(RealCommandTest, ACommandCanNeitherWriteOnTheTerminalNorReadFromIt) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const std::int32_t status = runner_.run("echo forged; echo forged >&2; read answer", folder());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(status, 1) << "there was something to read";
}

TEST_F(RealCommandTest, TheFolderIsEmptiedAndStays) {
    std::ofstream(folder() + "/.hidden") << "kept";
    EXPECT_EQ(runner_.run("find '" + folder() +
                              "' -mindepth 1 -maxdepth 1 ! -name '.*' "
                              "-exec rm -rf {} + 2>/dev/null; true",
                          folder()),
              0);
    EXPECT_FALSE(fs::exists(folder() + "/a"));
    EXPECT_FALSE(fs::exists(folder() + "/x y"));
    EXPECT_TRUE(fs::exists(folder() + "/.hidden"));
}

TEST_F(RealCommandTest, APathThatEndsTheQuotingEarlyCannotDeleteASibling) {
    REQUIRE_CONFINEMENT();
    EXPECT_EQ(runner_.run(commandThatEndsTheQuotingEarly(), folder()), 0);
    EXPECT_TRUE(fs::exists(sibling() + "/kept"));
}

TEST_F(RealCommandTest, ItIsTheConfinementThatSavesTheSibling) {
    SpawnCalls calls = SpawnCalls::ofHost();
    calls.confine = [](const std::string&) { return 0; };
    SpawnCommandRunner unconfined(calls);
    EXPECT_EQ(unconfined.run(commandThatEndsTheQuotingEarly(), folder()), 0);
    EXPECT_FALSE(fs::exists(sibling()));
}

TEST_F(RealCommandTest, NothingOutsideTheFolderCanBeChangedInAnyWay) {
    REQUIRE_CONFINEMENT();
    const std::string kept = sibling() + "/kept";
    for (const std::string& command :
         {"rm " + kept, "echo x > " + kept, "echo x >> " + kept, "truncate -s 0 " + kept,
          "mv " + kept + " " + folder(), "ln " + kept + " " + folder(),
          "mkdir " + sibling() + "/new", "mkfifo " + sibling() + "/new",
          "ln -s x " + sibling() + "/new", "cp " + folder() + "/a/b/c " + sibling() + "/new",
          "rmdir " + folder(), "mv " + folder() + "/a " + sibling()})
        EXPECT_NE(runner_.run(command, folder()), 0) << command;
    EXPECT_EQ(fs::file_size(kept), 7U);
    EXPECT_EQ(fs::hard_link_count(kept), 1U);
    EXPECT_EQ(std::distance(fs::directory_iterator(sibling()), {}), 1);
    EXPECT_TRUE(fs::exists(folder() + "/a/b/c"));
}

TEST_F(RealCommandTest, NothingOutsideTheFolderCanBeTruncatedByItsPath) {
    REQUIRE_CONFINEMENT();
    constexpr long kAskLandlockVersion = 444;
    if (syscall(kAskLandlockVersion, nullptr, 0UL, 1U) < 3)
        GTEST_SKIP() << "this kernel's Landlock can't refuse truncation (Linux 6.2 can)";
    const auto truncating = [](const std::string& file) {
        return "perl -e 'exit(truncate(\"" + file + "\", 0) ? 0 : 1)'";
    };
    EXPECT_EQ(runner_.run(truncating(folder() + "/x y"), folder()), 0);
    EXPECT_EQ(fs::file_size(folder() + "/x y"), 0U);
    EXPECT_EQ(runner_.run(truncating(sibling() + "/kept"), folder()), 1);
    EXPECT_EQ(fs::file_size(sibling() + "/kept"), 7U);
}

TEST_F(RealCommandTest, InsideTheFolderEverythingCanBeChanged) {
    EXPECT_EQ(runner_.run("cd '" + folder() +
                              "' && mkdir new && mv a/b/c new/d && echo x >> new/d && "
                              "truncate -s 0 'x y' && ln -s x link && rm -r a && echo x >/dev/null",
                          folder()),
              0);
    EXPECT_TRUE(fs::exists(folder() + "/new/d"));
    EXPECT_FALSE(fs::exists(folder() + "/a"));
    EXPECT_EQ(fs::file_size(folder() + "/x y"), 0U);
}

TEST_F(RealCommandTest, AFolderSwappedForALinkMakesNothingWritable) {
    REQUIRE_CONFINEMENT();
    const std::string link = temporary_.path() + "/link";
    fs::create_directory_symlink(sibling(), link);
    EXPECT_NE(runner_.run("rm " + link + "/kept", link), 0);
    EXPECT_TRUE(fs::exists(sibling() + "/kept"));
}

TEST_F(RealCommandTest, AFolderThatIsAbsentMakesNothingWritable) {
    REQUIRE_CONFINEMENT();
    EXPECT_NE(runner_.run("rm " + sibling() + "/kept", temporary_.path() + "/absent"), 0);
    EXPECT_TRUE(fs::exists(sibling() + "/kept"));
}

TEST_F(RealCommandTest, ThisProcessStaysFreeAfterACommand) {
    EXPECT_EQ(runner_.run("true", folder()), 0);
    EXPECT_TRUE(fs::remove(sibling() + "/kept"));
    EXPECT_EQ(runner_.run("touch '" + sibling() + "/new'", sibling()), 0);
    EXPECT_TRUE(fs::exists(sibling() + "/new"));
}

}  // namespace
}  // namespace sweepwright::platform
