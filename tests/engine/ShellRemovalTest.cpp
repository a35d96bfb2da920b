#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <utility>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using platform::SpawnCalls;
using platform::SpawnCommandRunner;
using test::EngineDevice;
using test::FakeCommandRunner;
using test::Operation;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kAssets = "/var/MobileAsset/AssetsV2";
constexpr const char* kStart = "🔧 使用posix_spawn删除系统路径: /var/MobileAsset/AssetsV2";

class ShellRemovalTest : public EngineTest {
  protected:
    ShellRemovalTest() {
        d_.tree.file(at("a"), 10);
        d_.tree.file(at("sub/b"), 100);
        d_.tree.file(at(".hidden"), 1'000);
    }

    static std::string at(const std::string& relative) {
        return platform::joinPath(kAssets, relative);
    }
    std::uint64_t empty() { return d_.engine.removeSystemPathWithSystemCommand(kAssets); }

    [[nodiscard]] std::string folder() const { return d_.tree.host(kAssets); }
    [[nodiscard]] std::string primary() const {
        return "find '" + folder() +
               "' -mindepth 1 -maxdepth 1 ! -name '.*' -exec rm -rf {} + 2>/dev/null; true";
    }
    [[nodiscard]] std::string fallback() const {
        return "cd '" + folder() + "' && rm -rf * 2>/dev/null; true";
    }
    [[nodiscard]] std::string primaryLine() const { return "🔧 执行命令 (find): " + primary(); }
    [[nodiscard]] std::string fallbackLine() const {
        return "🔧 find命令失败，尝试使用cd+rm方式: " + fallback();
    }

    /// Answers the primary command with one status and the fallback with the other; neither does
    /// anything.
    void statuses(std::int32_t ofPrimary, std::int32_t ofFallback) {
        d_.commands.answer([=](const FakeCommandRunner::Command& command) {
            return command.text.starts_with("find") ? ofPrimary : ofFallback;
        });
    }
    /// Runs commands by a shell of which `calls` are the system calls.
    void shell(SpawnCalls calls) {
        runner_ = std::make_unique<SpawnCommandRunner>(std::move(calls));
        d_.commands.answer([this](const FakeCommandRunner::Command& command) {
            return runner_->run(command.text, command.folder);
        });
    }
    /// A child that never was, with the status given.
    static SpawnCalls child(int status) {
        return {.spawn =
                    [](int* child, const char*, char* const[], char* const[]) {
                        *child = 4711;
                        return 0;
                    },
                .wait =
                    [status](int child, int* out) {
                        *out = status;
                        return child;
                    },
                .confine = [](const std::string&) { return 0; }};
    }
    /// Runs `hook` once: before the directory is opened again when it has been measured, which
    /// leads through the folder in it.
    void onceMeasured(std::function<void()> hook) {
        d_.files.before([this, hook = std::move(hook)](Operation operation, const std::string& p) {
            if (p == at("sub")) measured_ = true;
            if (operation != Operation::OpenDirectory || p != kAssets || !measured_) return;
            if (!std::exchange(opened_, true)) hook();
        });
    }
    /// Runs `hook` before the listing at the end, which follows the second measure.
    void beforeTheListing(std::function<void()> hook) {
        d_.eraser.onSettle = [this, hook = std::move(hook)] {
            measured_ = false;
            onceMeasured(hook);
        };
    }
    /// Lets that listing fail.
    void failTheListing(int number) {
        beforeTheListing([] {});
        d_.files.failWhere(
            [this](Operation operation, const std::string& path) {
                return opened_ && operation == Operation::OpenDirectory && path == kAssets;
            },
            number);
    }

    std::unique_ptr<SpawnCommandRunner> runner_;
    bool measured_ = false;
    bool opened_ = false;  ///< again, once it was measured
};

// --- Before anything runs ---

TEST_F(ShellRemovalTest, AWhitelistedDirectoryIsLeftAlone) {
    d_.protect(kAssets);
    log_.clear();
    EXPECT_EQ(empty(), 0U);
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
    EXPECT_THAT(lines(), ElementsAre("🔒 白名单系统路径跳过删除: /var/MobileAsset/AssetsV2"));
}

TEST_F(ShellRemovalTest, ADirectoryThatMeasuresNothingIsLeftAlone) {
    std::filesystem::remove_all(d_.tree.host(at("a")));
    std::filesystem::remove_all(d_.tree.host(at("sub")));
    EXPECT_EQ(empty(), 0U);
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
    EXPECT_TRUE(d_.tree.exists(at(".hidden")));
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(ShellRemovalTest, NoCommandRunsOnADirectoryThatIsItselfALink) {
    d_.tree.file("/var/canary/a", 10);
    d_.tree.link("/var/MobileAsset/Link", "/var/canary");
    EXPECT_EQ(d_.engine.removeSystemPathWithSystemCommand("/var/MobileAsset/Link"), 0U);
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
    EXPECT_TRUE(d_.tree.exists("/var/canary/a"));
}

TEST_F(ShellRemovalTest, NoCommandRunsWhenADirectoryIsSwappedForALinkAfterItWasMeasured) {
    d_.tree.file("/var/canary/a", 10);
    onceMeasured([&] {
        std::filesystem::rename(folder(), folder() + ".aside");
        std::filesystem::create_symlink("../canary", folder());
    });
    EXPECT_EQ(empty(), 0U);
    EXPECT_TRUE(opened_);
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
    EXPECT_TRUE(d_.tree.exists("/var/canary/a"));
}

TEST_F(ShellRemovalTest, NoCommandRunsOnADirectoryOfWhichTheHostKnowsNoPath) {
    failAbout(kAssets, {Operation::HostPath}, ENOENT);
    EXPECT_EQ(empty(), 0U);
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
}

// --- The commands ---

TEST_F(ShellRemovalTest, ThePrimaryCommandEmptiesTheDirectoryAndWhatWentIsMeasured) {
    EXPECT_EQ(empty(), 110U);
    EXPECT_THAT(d_.commands.commands(),
                ElementsAre(FakeCommandRunner::Command{primary(), folder()}));
    EXPECT_THAT(d_.tree.entriesBeneath(kAssets), ElementsAre(at(".hidden")));
    EXPECT_THAT(lines(), ElementsAre(kStart, primaryLine(),
                                     "✅ 成功使用posix_spawn删除系统路径: "
                                     "/var/MobileAsset/AssetsV2, 释放: 110 字节"));
    EXPECT_EQ(d_.eraser.settled, 1);
}

TEST_F(ShellRemovalTest, TheFallbackCommandRunsWhenThePrimaryFails) {
    d_.commands.answer([&](const FakeCommandRunner::Command& command) {
        if (command.text.starts_with("find")) return 3;
        test::removeVisibleEntries(command.folder);
        return 0;
    });
    EXPECT_EQ(empty(), 110U);
    EXPECT_THAT(d_.commands.commands(),
                ElementsAre(FakeCommandRunner::Command{primary(), folder()},
                            FakeCommandRunner::Command{fallback(), folder()}));
    EXPECT_THAT(lines(), ElementsAre(kStart, primaryLine(), fallbackLine(),
                                     "✅ 成功使用posix_spawn删除系统路径: "
                                     "/var/MobileAsset/AssetsV2, 释放: 110 字节"));
}

TEST_F(ShellRemovalTest, APartThatWentUnderFailingCommandsCounts) {
    d_.commands.answer([&](const FakeCommandRunner::Command&) {
        std::filesystem::remove(d_.tree.host(at("a")));
        return 2;
    });
    EXPECT_EQ(empty(), 10U);
    EXPECT_EQ(lines().back(),
              "✅ posix_spawn命令返回非0但部分删除成功: "
              "/var/MobileAsset/AssetsV2, 释放: 10 字节");
    EXPECT_TRUE(d_.tree.exists(at("sub/b")));  // and is all there was to it
}

TEST_F(ShellRemovalTest, TheSystemMaySettleBeforeTheSecondMeasure) {
    statuses(0, 0);
    d_.eraser.onSettle = [&] {
        ASSERT_EQ(d_.commands.commands().size(), 1U);
        std::filesystem::remove(d_.tree.host(at("a")));
    };
    EXPECT_EQ(empty(), 10U);
}

TEST_F(ShellRemovalTest, ItIsGivenATenthOfASecondForThat) {
    const auto start = std::chrono::steady_clock::now();
    d_.deviceEraser.settle();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
}

TEST_F(ShellRemovalTest, ADirectoryThatGrewIsAccountedByTheWrappedDifference) {
    d_.commands.answer([&](const FakeCommandRunner::Command&) {
        d_.tree.file(at("new"), 1'000);
        return 0;
    });
    EXPECT_EQ(empty(), std::uint64_t{0} - 1'000);
    EXPECT_EQ(lines().back(),
              "✅ 成功使用posix_spawn删除系统路径: /var/MobileAsset/AssetsV2, "
              "释放: 18446744073709550616 字节");
}

// --- When the measure did not change ---

TEST_F(ShellRemovalTest, AListingThatFailsAfterSuccessCountsAsAllFreed) {
    statuses(0, 0);
    failTheListing(EACCES);
    EXPECT_EQ(empty(), 110U);
    EXPECT_EQ(lines().back(),
              "⚠️ posix_spawn执行成功但无法检查目录内容: "
              "/var/MobileAsset/AssetsV2, 错误: /var/MobileAsset/AssetsV2: "
              "Permission denied");
}

TEST_F(ShellRemovalTest, AListingThatFailsAfterAFailureCountsAsNothing) {
    statuses(1, 5);
    failTheListing(EACCES);
    EXPECT_EQ(empty(), 0U);
    EXPECT_EQ(lines().back(),
              "⚠️ posix_spawn删除失败且无法检查目录内容: "
              "/var/MobileAsset/AssetsV2, 返回码: 5, 错误: "
              "/var/MobileAsset/AssetsV2: Permission denied");
}

TEST_F(ShellRemovalTest, OnlyHiddenEntriesLeftCountAsAllFreedThoughTheMeasureDidNotFall) {
    statuses(0, 0);
    beforeTheListing([this] { test::removeVisibleEntries(folder()); });
    EXPECT_EQ(empty(), 110U);
    EXPECT_TRUE(d_.tree.exists(at(".hidden")));
    EXPECT_THAT(lines(), ElementsAre(kStart, primaryLine(),
                                     "✅ posix_spawn成功清空目录: /var/MobileAsset/AssetsV2 "
                                     "(删除前: 110 字节)"));
}

TEST_F(ShellRemovalTest, OnlyHiddenEntriesLeftAfterAFailureCountTheSameWithAnotherLine) {
    statuses(1, 1);
    beforeTheListing([this] { test::removeVisibleEntries(folder()); });
    EXPECT_EQ(empty(), 110U);
    EXPECT_EQ(lines().back(),
              "✅ posix_spawn命令返回非0但目录已清空: /var/MobileAsset/AssetsV2 "
              "(删除前: 110 字节)");
}

TEST_F(ShellRemovalTest, VisibleEntriesLeftAfterSuccessCountAsNothingAndStay) {
    statuses(0, 0);
    EXPECT_EQ(empty(), 0U);
    EXPECT_THAT(d_.eraser.removed, IsEmpty());
    EXPECT_TRUE(d_.tree.exists(at("a")));
    EXPECT_EQ(lines().back(),
              "⚠️ posix_spawn执行成功但目录仍有 2 个可见文件: "
              "/var/MobileAsset/AssetsV2 (删除前: 110, 删除后: 110)");
}

TEST_F(ShellRemovalTest, VisibleEntriesLeftAfterAFailureAreRemovedByTheFileManager) {
    statuses(-1, -1);
    d_.tree.file(at("data.db"), 1);
    d_.tree.file("/var/canary/a", 5);
    d_.tree.link(at("link"), "/var/canary");
    EXPECT_EQ(empty(), 111U);
    EXPECT_THAT(d_.tree.entriesBeneath(kAssets), ElementsAre(at(".hidden")));
    EXPECT_TRUE(d_.tree.exists("/var/canary/a"));
    EXPECT_THAT(lines(),
                ElementsAre(kStart, primaryLine(), fallbackLine(),
                            "⚠️ posix_spawn删除失败: /var/MobileAsset/AssetsV2, 返回码: -1, "
                            "目录仍有 4 个可见文件",
                            "✅ 使用NSFileManager作为fallback删除部分文件: "
                            "/var/MobileAsset/AssetsV2, 释放: 111 字节"));
}

TEST_F(ShellRemovalTest, OfThatRemovalOnlyWhatWentCounts) {
    statuses(-1, -1);
    failAbout(at("sub/b"), {Operation::RemoveFileAt}, EPERM);
    EXPECT_EQ(empty(), 10U);
    EXPECT_TRUE(d_.tree.exists(at("sub/b")));
    EXPECT_EQ(lines().back(),
              "✅ 使用NSFileManager作为fallback删除部分文件: "
              "/var/MobileAsset/AssetsV2, 释放: 10 字节");
}

TEST_F(ShellRemovalTest, OfThatRemovalNothingIsToldWhenNothingWent) {
    statuses(-1, 7);
    d_.eraser.remover = [](const platform::Directory& parent, const std::string& name) {
        return platform::Removal{0, platform::errorFromErrno(EPERM, parent.pathOf(name))};
    };
    EXPECT_EQ(empty(), 0U);
    EXPECT_EQ(lines().back(),
              "⚠️ posix_spawn删除失败: /var/MobileAsset/AssetsV2, 返回码: 7, "
              "目录仍有 2 个可见文件");
}

// --- With the system's calls ---

TEST_F(ShellRemovalTest, AShellThatCannotBeStartedLeavesItToTheFileManager) {
    SpawnCalls calls = child(0);
    calls.spawn = [](int*, const char*, char* const[], char* const[]) { return ENOENT; };
    shell(calls);
    EXPECT_EQ(empty(), 110U);
    const std::string refused = "⚠️ 使用自定义环境变量失败，尝试使用系统环境变量";
    const std::string failed = "❌ posix_spawn失败: No such file or directory (错误码: 2), 命令: ";
    EXPECT_THAT(lines(),
                ElementsAre(kStart, primaryLine(), refused, failed + primary(), fallbackLine(),
                            refused, failed + fallback(),
                            "⚠️ posix_spawn删除失败: /var/MobileAsset/AssetsV2, 返回码: -1, "
                            "目录仍有 2 个可见文件",
                            "✅ 使用NSFileManager作为fallback删除部分文件: "
                            "/var/MobileAsset/AssetsV2, 释放: 110 字节"));
}

TEST_F(ShellRemovalTest, AWaitThatFailsIsAFailure) {
    SpawnCalls calls = child(0);
    calls.wait = [](int, int*) {
        errno = ECHILD;
        return -1;
    };
    shell(calls);
    EXPECT_EQ(empty(), 110U);
    EXPECT_THAT(lines(), Contains("❌ waitpid失败: No child processes").Times(2));
    EXPECT_THAT(lines(), Contains("⚠️ posix_spawn删除失败: /var/MobileAsset/AssetsV2, 返回码: -1, "
                                  "目录仍有 2 个可见文件"));
}

TEST_F(ShellRemovalTest, ASignalIsAFailure) {
    shell(child(SIGKILL));
    EXPECT_EQ(empty(), 110U);
    EXPECT_TRUE(logged("❌ 命令被信号终止: 9, 命令: " + primary()));
    EXPECT_TRUE(logged("❌ 命令被信号终止: 9, 命令: " + fallback()));
    EXPECT_TRUE(
        logged("⚠️ posix_spawn删除失败: /var/MobileAsset/AssetsV2, 返回码: -1, "
               "目录仍有 2 个可见文件"));
}

TEST_F(ShellRemovalTest, AStoppedChildIsAFailureWithoutALine) {
    shell(child((SIGSTOP << 8) | 0x7F));
    EXPECT_EQ(empty(), 110U);
    EXPECT_THAT(lines(),
                ElementsAre(kStart, primaryLine(), fallbackLine(),
                            "⚠️ posix_spawn删除失败: /var/MobileAsset/AssetsV2, 返回码: -1, "
                            "目录仍有 2 个可见文件",
                            "✅ 使用NSFileManager作为fallback删除部分文件: "
                            "/var/MobileAsset/AssetsV2, 释放: 110 字节"));
}

TEST_F(ShellRemovalTest, AnExitCodeThatIsNotNothingIsAFailure) {
    shell(child(127 << 8));
    EXPECT_EQ(empty(), 110U);
    EXPECT_TRUE(logged("⚠️ 命令执行失败，退出码: 127, 命令: " + primary()));
    EXPECT_TRUE(
        logged("⚠️ posix_spawn删除失败: /var/MobileAsset/AssetsV2, 返回码: 127, "
               "目录仍有 2 个可见文件"));
}

TEST_F(ShellRemovalTest, APathThatIsNoTextIsLeftToTheFileManager) {
    const std::string path = "/var/MobileAsset/\xFF";
    d_.tree.file(path + "/a", 10);
    shell(SpawnCalls::ofHost());
    EXPECT_EQ(d_.engine.removeSystemPathWithSystemCommand(path), 10U);
    EXPECT_TRUE(logged("❌ 命令字符串转换失败"));
    EXPECT_TRUE(d_.tree.exists(path));
}

// --- With the real shell ---

TEST_F(ShellRemovalTest, TheRealShellRemovesWhatIsVisibleAndFollowsNoLink) {
    d_.tree.file("/var/canary/a", 10);
    d_.tree.link(at("link"), d_.tree.host("/var/canary"));
    d_.tree.link(at("sub/link"), d_.tree.host("/var/canary"));
    for (const char* name : {"-rf", "a b", "new\nline", "*", "$(id)", "data.db"})
        d_.tree.file(at(name), 1);
    shell(SpawnCalls::ofHost());
    EXPECT_EQ(empty(), 116U);
    EXPECT_THAT(d_.tree.entriesBeneath(kAssets), ElementsAre(at(".hidden")));
    EXPECT_TRUE(d_.tree.exists("/var/canary/a"));
}

TEST_F(ShellRemovalTest, ManyEntriesGoWithTheRealShell) {
    for (int i = 0; i < 3'000; ++i)
        d_.tree.file(at("folder-with-a-long-name/and-a-file-of-a-long-name-" + std::to_string(i)),
                     1);
    for (int i = 0; i < 3'000; ++i)
        d_.tree.file(at("entry-" + std::to_string(i)), 1);
    shell(SpawnCalls::ofHost());
    EXPECT_EQ(empty(), 6'110U);
    EXPECT_THAT(d_.tree.entriesBeneath(kAssets), ElementsAre(at(".hidden")));
}

/// A directory whose path ends the command's quoting early and names a sibling to be removed.
class HostilePath : public ShellRemovalTest {
  protected:
    HostilePath() {
        d_.tree.file(sibling_ + "/precious", 10);
        d_.tree.file(path_ + "/a", 5);
    }
    void emptyHostilePath() { d_.engine.removeContentsOfDirectory(path_, {}); }

    const std::string sibling_ = EngineDevice::shared("com.apple.sibling");
    const std::string path_ =
        EngineDevice::shared("com.apple.x'; rm -rf '" + d_.tree.host(sibling_) + "'; echo '");
};

TEST_F(HostilePath, DoesNotReachASiblingBecauseTheCommandIsConfined) {
    if (!platform::CommandRunner::confinementAvailable())
        GTEST_SKIP() << "this kernel can't confine a command to a folder";
    shell(SpawnCalls::ofHost());
    emptyHostilePath();
    EXPECT_EQ(d_.commands.commands().size(), 1U);
    EXPECT_TRUE(d_.tree.exists(sibling_ + "/precious"));
    EXPECT_TRUE(d_.tree.exists(path_ + "/a"));  // the command named other things
    EXPECT_EQ(lines().back(),
              "⚠️ posix_spawn执行成功但目录仍有 1 个可见文件: " + path_ + " (删除前: 5, 删除后: 5)");
}

TEST_F(HostilePath, WouldReachASiblingWithoutConfinement) {
    if (!platform::CommandRunner::confinementAvailable())
        GTEST_SKIP() << "such a command is not run at all on this kernel";
    SpawnCalls calls = SpawnCalls::ofHost();
    calls.confine = [](const std::string&) { return 0; };
    shell(calls);
    emptyHostilePath();
    EXPECT_FALSE(d_.tree.exists(sibling_ + "/precious"));
}

TEST_F(HostilePath, IsNotRunAtAllWhereACommandCannotBeConfined) {
    if (platform::CommandRunner::confinementAvailable())
        GTEST_SKIP() << "this kernel can confine a command to a folder";
    emptyHostilePath();
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
    EXPECT_TRUE(d_.tree.exists(sibling_ + "/precious"));
    EXPECT_FALSE(d_.tree.exists(path_ + "/a"));  // the file manager took it
}

TEST_F(ShellRemovalTest, AnOpenQuoteIsRefusedByTheShellAndLeftToTheFileManager) {
    const std::string path = EngineDevice::shared("com.apple.o'brien");
    d_.tree.file(path + "/a", 5);
    shell(SpawnCalls::ofHost());
    EXPECT_EQ(d_.engine.removeContentsOfDirectory(path, {}), 5U);
    EXPECT_FALSE(d_.tree.exists(path + "/a"));
    EXPECT_TRUE(d_.tree.exists(path));
}

TEST_F(ShellRemovalTest, ACommandThatCouldNotBeConfinedIsNotRun) {
    SpawnCalls calls = SpawnCalls::ofHost();
    int spawned = 0;
    calls.confine = [](const std::string&) { return EPERM; };
    calls.spawn = [&](int*, const char*, char* const[], char* const[]) {
        ++spawned;
        return 0;
    };
    shell(calls);
    EXPECT_EQ(empty(), 110U);  // by the file manager
    EXPECT_EQ(spawned, 0);
}

}  // namespace
}  // namespace sweepwright
