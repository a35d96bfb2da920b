// Whole files: reading, replacing, making, renaming, locking.
#include <atomic>
#include <barrier>
#include <cerrno>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/files/FileManagerFixture.h"
#include "support/ChildProcess.h"

namespace sweepwright::platform {

namespace {

class HostFilesTest : public FileManagerTest {
  protected:
    struct stat status(const std::string& path) {
        struct stat found{};
        EXPECT_EQ(lstat(device_.host(path).c_str(), &found), 0) << path;
        return found;
    }
    void own(const std::string& path, unsigned owner) {
        ASSERT_EQ(chown(device_.host(path).c_str(), owner, owner), 0);
    }
    void permit(const std::string& path, unsigned mode) {
        ASSERT_EQ(chmod(device_.host(path).c_str(), mode), 0);
    }
    std::vector<std::string> all() { return device_.entriesBeneath("/"); }
};

using Names = std::vector<std::string>;

constexpr unsigned kMobile = 501;
constexpr std::string_view kNoAdministrator = "only an administrator may give files away";

}  // namespace

TEST_P(HostFilesTest, AFileIsReadUpToTheLimit) {
    device_.fileWith("/file", "12345");
    device_.fileWith("/empty", "");
    device_.link("/link", "file");
    EXPECT_EQ(files_.readFile("/file", 5), "12345");
    EXPECT_EQ(files_.readFile("/link", 6), "12345");
    EXPECT_EQ(errorOf(files_.readFile("/file", 4)), EFBIG);
    EXPECT_EQ(files_.readFile("/empty", 0), "");
    EXPECT_EQ(errorOf(files_.readFile("/missing", 5)), ENOENT);
    const std::string bytes("\0\xff\n", 3);
    device_.fileWith("/bytes", bytes);
    EXPECT_EQ(files_.readFile("/bytes", 10), bytes);
}

TEST_P(HostFilesTest, WhatIsNoRegularFileIsNotRead) {
    device_.fifo("/fifo");
    device_.folder("/folder");
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string at = device_.host("/socket");
    at.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(errorOf(files_.readFile("/fifo", 5)), EINVAL);
    EXPECT_EQ(errorOf(files_.readFile("/folder", 5)), EINVAL);
    EXPECT_NE(errorOf(files_.readFile("/socket", 5)), 0);
    close(server);
}

TEST_P(HostFilesTest, AFileIsReplacedWithItsPermissions) {
    device_.fileWith("/folder/file", "old");
    permit("/folder/file", 0600);
    device_.hardLink("/folder/other", "/folder/file");
    ASSERT_TRUE(files_.writeFile("/folder/file", "new content"));
    EXPECT_EQ(device_.content("/folder/file"), "new content");
    EXPECT_EQ(status("/folder/file").st_mode & 07777U, 0600U);
    EXPECT_EQ(device_.content("/folder/other"), "old") << "the old file itself is not changed";
    ASSERT_TRUE(files_.writeFile("/folder/fresh", ""));
    EXPECT_EQ(device_.content("/folder/fresh"), "");
    EXPECT_EQ(device_.entriesBeneath("/folder"),
              (Names{"/folder/file", "/folder/fresh", "/folder/other"}));
}

TEST_P(HostFilesTest, WhatAnAdministratorWritesBelongsToTheFormerOwner) {
    if (geteuid() != 0) GTEST_SKIP() << kNoAdministrator;
    device_.fileWith("/home/kept", "old");
    own("/home/kept", 502);
    own("/home", kMobile);
    ASSERT_TRUE(files_.writeFile("/home/kept", "new"));
    ASSERT_TRUE(files_.writeFile("/home/fresh", "new"));
    ASSERT_TRUE(files_.createDirectories("/home/made/deeper"));
    ASSERT_TRUE(files_.lock("/home/lock"));
    EXPECT_EQ(status("/home/kept").st_uid, 502U);
    EXPECT_EQ(status("/home/fresh").st_uid, kMobile);
    EXPECT_EQ(status("/home/made").st_uid, kMobile);
    EXPECT_EQ(status("/home/made/deeper").st_gid, kMobile);
    EXPECT_EQ(status("/home/lock").st_uid, kMobile);
}

TEST_P(HostFilesTest, WhatACrashLeftBehindIsNoHindrance) {
    device_.fileWith("/file", "old");
    device_.fileWith("/.file.new", "half of");
    permit("/.file.new", 0);
    ASSERT_TRUE(files_.writeFile("/file", "new"));
    EXPECT_EQ(device_.content("/file"), "new");
    EXPECT_EQ(all(), Names{"/file"});
}

TEST_P(HostFilesTest, ALinkThatWaitsUnderTheNewFilesNameIsNotFollowed) {
    device_.fileWith("/precious", "precious");
    device_.link("/.file.new", "precious");
    ASSERT_TRUE(files_.writeFile("/file", "new"));
    EXPECT_EQ(device_.content("/precious"), "precious");
    EXPECT_EQ(device_.content("/file"), "new");
}

TEST_P(HostFilesTest, TheLongestNameCanBeReplaced) {
    const std::string one = "/" + std::string(254, 'n') + "1";
    const std::string other = "/" + std::string(254, 'n') + "2";
    ASSERT_TRUE(files_.writeFile(one, "one"));
    ASSERT_TRUE(files_.writeFile(other, "other"));
    ASSERT_TRUE(files_.writeFile(one, "again"));
    EXPECT_EQ(device_.content(one), "again");
    EXPECT_EQ(device_.content(other), "other");
    EXPECT_EQ(all(), (Names{one, other}));
}

TEST_P(HostFilesTest, ALinkIsReplacedAndNotWhatItLeadsTo) {
    device_.fileWith("/target", "kept");
    device_.link("/link", "target");
    ASSERT_TRUE(files_.writeFile("/link", "new"));
    EXPECT_EQ(device_.content("/target"), "kept");
    EXPECT_EQ(files_.attributes("/link", LastLink::Refuse)->type, FileType::Regular);
}

TEST_P(HostFilesTest, AFailedWriteLeavesNothingBehind) {
    device_.folder("/folder");
    EXPECT_EQ(errorOf(files_.writeFile("/folder", "x")), EISDIR);
    EXPECT_EQ(errorOf(files_.writeFile("/missing/file", "x")), ENOENT);
    EXPECT_NE(errorOf(files_.writeFile("/", "x")), 0);
    EXPECT_EQ(all(), Names{"/folder"});
}

TEST_P(HostFilesTest, AFullDiskKeepsTheOldContent) {
    if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    device_.folder("/small");
    test::withOwnMounts([&] {
        test::mountMemory(device_.host("/small"), "size=64k");
        HostFileManager files = reopened();
        ASSERT_TRUE(files.writeFile("/small/file", "old"));
        EXPECT_EQ(errorOf(files.writeFile("/small/file", std::string(100'000, 'x'))), ENOSPC);
        EXPECT_EQ(errorOf(files.createFile("/small/other", std::string(100'000, 'x'))), ENOSPC);
        EXPECT_EQ(device_.content("/small/file"), "old");
        EXPECT_EQ(device_.entriesBeneath("/small"), Names{"/small/file"});
        EXPECT_TRUE(files.writeFile("/small/file", "new"));
    });
}

TEST_P(HostFilesTest, AReaderSeesTheOldOrTheNewContentWhole) {
    const std::string one(50'000, '1');
    const std::string two(70'000, '2');
    ASSERT_TRUE(files_.writeFile("/file", one));
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (int i = 0; i < 100; ++i)
            EXPECT_TRUE(files_.writeFile("/file", i % 2 == 0 ? two : one));
        done = true;
    });
    std::size_t torn = 0;
    while (!done) {
        const auto content = files_.readFile("/file", 1'000'000);
        if (!content || (*content != one && *content != two)) ++torn;
    }
    writer.join();
    EXPECT_EQ(torn, 0U);
}

TEST_P(HostFilesTest, AFileIsMadeOnlyWhereNothingIs) {
    device_.link("/dangling", "nowhere");
    ASSERT_TRUE(files_.createFile("/file", "content"));
    EXPECT_EQ(device_.content("/file"), "content");
    EXPECT_EQ(errorOf(files_.createFile("/file", "other")), EEXIST);
    EXPECT_EQ(errorOf(files_.createFile("/dangling", "other")), EEXIST);
    EXPECT_EQ(device_.content("/file"), "content");
    EXPECT_EQ(all(), (Names{"/dangling", "/file"}));
}

TEST_P(HostFilesTest, ASparseFileHoldsNoBlocks) {
    ASSERT_TRUE(files_.createSparseFile("/sparse", 300'000'000));
    EXPECT_EQ(status("/sparse").st_size, 300'000'000);
    EXPECT_EQ(status("/sparse").st_blocks, 0);
    device_.fileWith("/full", "some content");
    ASSERT_TRUE(files_.createSparseFile("/full", 5));
    EXPECT_EQ(device_.content("/full"), std::string(5, '\0'));
}

TEST_P(HostFilesTest, ASparseFileReplacesNothingButAFile) {
    device_.fifo("/fifo");
    device_.folder("/folder");
    device_.fileWith("/target", "kept");
    device_.link("/link", "target");
    EXPECT_NE(errorOf(files_.createSparseFile("/fifo", 5)), 0);
    EXPECT_NE(errorOf(files_.createSparseFile("/folder", 5)), 0);
    EXPECT_NE(errorOf(files_.createSparseFile("/link", 5)), 0);
    EXPECT_EQ(device_.content("/target"), "kept");
}

TEST_P(HostFilesTest, MissingFoldersAreMade) {
    device_.folder("/real");
    device_.link("/link", "real");
    EXPECT_TRUE(files_.createDirectories("/"));
    EXPECT_TRUE(files_.createDirectories("/a/b//c/"));
    EXPECT_TRUE(files_.createDirectories("/a/b"));
    EXPECT_TRUE(files_.createDirectories("/link/x/x"));
    EXPECT_TRUE(files_.createDirectories("/link"));
    EXPECT_EQ(all(), (Names{"/a", "/a/b", "/a/b/c", "/link", "/real", "/real/x", "/real/x/x"}));
}

TEST_P(HostFilesTest, ThreadsThatMakeOneFolderAllSucceed) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 400;
    std::barrier together(kThreads);
    std::atomic<int> made = 0;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                together.arrive_and_wait();
                if (files_.createDirectories(fmt::format("/{}/a/b", round))) ++made;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(made, kThreads * kRounds);
}

TEST_P(HostFilesTest, FoldersAreNotMadeWhereSomethingIsInTheWay) {
    device_.file("/file", 1);
    device_.link("/dangling", "nowhere");
    EXPECT_EQ(errorOf(files_.createDirectories("/file")), ENOTDIR);
    EXPECT_EQ(errorOf(files_.createDirectories("/file/x")), ENOTDIR);
    EXPECT_EQ(errorOf(files_.createDirectories("/dangling")), EEXIST);
    EXPECT_NE(errorOf(files_.createDirectories("/dangling/x")), 0);
    EXPECT_EQ(all(), (Names{"/dangling", "/file"}));
}

TEST_P(HostFilesTest, AnExistingLinkIsNotReplaced) {
    ASSERT_TRUE(files_.createSymbolicLink("/link", "/anywhere"));
    EXPECT_EQ(std::filesystem::read_symlink(device_.host("/link")), "/anywhere");
    EXPECT_EQ(errorOf(files_.createSymbolicLink("/link", "/elsewhere")), EEXIST);
    EXPECT_EQ(std::filesystem::read_symlink(device_.host("/link")), "/anywhere");
}

TEST_P(HostFilesTest, RenamingReplacesNothing) {
    device_.fileWith("/one", "one");
    device_.fileWith("/two", "two");
    device_.folder("/empty");
    device_.link("/dangling", "nowhere");
    for (const std::string to : {"/two", "/empty", "/dangling", "/one"}) {
        const auto renamed = files_.rename("/one", to);
        EXPECT_EQ(errorOf(renamed), EEXIST) << to;
        EXPECT_TRUE(renamed.error().description.starts_with(to + ":")) << to;
    }
    EXPECT_EQ(device_.content("/one"), "one");
    EXPECT_EQ(device_.content("/two"), "two");
}

TEST_P(HostFilesTest, RenamingMovesAFileAFolderOrALinkItself) {
    device_.fileWith("/folder/file", "x");
    device_.link("/link", "folder");
    ASSERT_TRUE(files_.rename("/link/file", "/file"));
    ASSERT_TRUE(files_.rename("/folder", "/moved"));
    ASSERT_TRUE(files_.rename("/link/", "/renamed"));
    EXPECT_EQ(all(), (Names{"/file", "/moved", "/renamed"}));
    EXPECT_EQ(device_.content("/file"), "x");
}

TEST_P(HostFilesTest, ARenameThatCannotBeSaysWhy) {
    device_.folder("/folder");
    const auto missing = files_.rename("/missing", "/other");
    EXPECT_EQ(errorOf(missing), ENOENT);
    EXPECT_TRUE(missing.error().description.starts_with("/missing:"));
    EXPECT_EQ(errorOf(files_.rename("/folder", "/folder/inside")), EINVAL);
    EXPECT_EQ(errorOf(files_.rename("/folder", "/nowhere/inside")), ENOENT);
}

TEST_P(HostFilesTest, ALockIsHeldUntilItIsDestroyed) {
    device_.folder("/folder");
    const auto isFree = [&] {
        const int other = open(device_.host("/folder/lock").c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_GE(other, 0);
        const bool locked = flock(other, LOCK_EX | LOCK_NB) == 0;
        EXPECT_TRUE(locked || errno == EWOULDBLOCK);
        close(other);
        return locked;
    };
    {
        const auto lock = files_.lock("/folder/lock");
        ASSERT_TRUE(lock);
        EXPECT_FALSE(isFree());
    }
    EXPECT_TRUE(isFree());
    EXPECT_EQ(errorOf(files_.lock("/missing/lock")), ENOENT);
    EXPECT_EQ(errorOf(files_.lock("/folder")), EISDIR);
    device_.link("/link", "folder/lock");
    EXPECT_EQ(errorOf(files_.lock("/link")), ELOOP);
}

TEST_P(HostFilesTest, ProcessesThatLockLoseNoChange) {
    constexpr int kProcesses = 4;
    constexpr int kChanges = 50;
    device_.fileWith("/count", "0");
    std::vector<pid_t> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(test::startChild([&] {
            for (int change = 0; change < kChanges; ++change) {
                const auto lock = files_.lock("/lock");
                const auto count = files_.readFile("/count", 10);
                ASSERT_TRUE(lock && count);
                device_.fileWith("/count", std::to_string(std::stoi(*count) + 1));
            }
        }));
    }
    for (const pid_t child : children)
        EXPECT_EQ(test::exitStatusOf(child), 0);
    EXPECT_EQ(device_.content("/count"), std::to_string(kProcesses * kChanges));
}

TEST_P(HostFilesTest, AProcessThatEndsGivesItsLockBack) {
    test::inChildProcess([&] {
        const auto lock = files_.lock("/lock");
        ASSERT_TRUE(lock);
        _exit(0);
    });
    EXPECT_TRUE(files_.lock("/lock"));
}

TEST_P(HostFilesTest, AFileThatMayOnlyBeReadCanBeLocked) {
    if (const std::string why = test::whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    ASSERT_TRUE(files_.lock("/lock"));
    permit("/", 0755);
    permit("/lock", 0444);
    test::asOrdinaryUser([&] { EXPECT_EQ(errorOf(files_.lock("/lock")), 0); });
}

TEST_P(HostFilesTest, ALockThatMayNotBeMadeSaysSo) {
    if (const std::string why = test::whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    permit("/", 0555);
    test::asOrdinaryUser([&] { EXPECT_EQ(errorOf(files_.lock("/lock")), EACCES); });
}

FOR_BOTH_CALLS(HostFilesTest);

}  // namespace sweepwright::platform
