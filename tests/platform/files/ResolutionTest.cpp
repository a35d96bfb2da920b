// How device paths are found beneath the root.
#include <cerrno>
#include <cstddef>
#include <cstring>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/files/FileManagerFixture.h"
#include "support/ChildProcess.h"

namespace sweepwright::platform {

namespace {

using namespace std::string_literals;

class ResolutionTest : public FileManagerTest {
  protected:
    std::string read(const std::string& path) {
        const auto content = files_.readFile(path, 1000);
        return content ? *content : content.error().description;
    }
    int attributesError(const std::string& path, LastLink lastLink = LastLink::Follow) {
        return errorOf(files_.attributes(path, lastLink));
    }
    int openError(const std::string& path, LastLink lastLink = LastLink::Follow) {
        return errorOf(files_.openDirectory(path, lastLink));
    }
};

/// Lets the system call `number` fail with `error` from now on; for a child.
void denySystemCall(unsigned number, unsigned error) {
    sock_filter steps[] = {
        // NOLINT(modernize-avoid-c-arrays): as prctl asks
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{std::size(steps), steps};
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

}  // namespace

TEST_P(ResolutionTest, EveryRoadUpEndsAtTheRoot) {
    device_.fileWith("/etc/name", "device");
    const auto root = files_.attributes("/", LastLink::Follow);
    ASSERT_TRUE(root);
    for (const std::string path :
         {"//", "/.", "/..", "/../..", "/../../", "/etc/..", "/etc/../.."}) {
        const auto found = files_.attributes(path, LastLink::Refuse);
        ASSERT_TRUE(found) << path;
        EXPECT_EQ(found->inode, root->inode) << path;
        EXPECT_EQ(files_.resolvedPath(path), "/") << path;
        EXPECT_EQ(openError(path), 0) << path;
    }
    EXPECT_EQ(read("/../../etc/name"), "device");
    EXPECT_EQ(read("//etc//.///name"), "device");
}

TEST_P(ResolutionTest, AnAbsoluteLinkLeadsBeneathTheRoot) {
    device_.fileWith("/etc/name", "device");
    device_.link("/x/file", "/etc/name");
    device_.link("/x/folder", "/etc");
    EXPECT_EQ(read("/x/file"), "device");
    EXPECT_EQ(read("/x/folder/name"), "device");
    EXPECT_EQ(files_.resolvedPath("/x/folder/name"), "/etc/name");
}

TEST_P(ResolutionTest, TheComputersOwnFilesAreNotReachable) {
    device_.folder("/x");
    device_.link("/x/absolute", "/etc/passwd");
    device_.link("/x/up", "../../../../../../../../etc/passwd");
    device_.link("/x/top", "/");
    device_.link("/x/above", "..");
    for (const std::string path :
         {"/etc/passwd", "/x/absolute", "/x/up", "/x/top/etc/passwd", "/x/above/../etc/passwd",
          "/x/../../../../../../../etc/passwd", "/x/top/../../etc/passwd"})
        EXPECT_EQ(attributesError(path), ENOENT) << path;
    EXPECT_EQ(files_.resolvedPath("/x/top"), "/");
}

TEST_P(ResolutionTest, ALinkedVarIsFollowedOnTheWay) {
    device_.fileWith("/private/var/mobile/note", "hello");
    device_.link("/var", "private/var");
    EXPECT_EQ(read("/var/mobile/note"), "hello");
    EXPECT_EQ(files_.resolvedPath("/var/mobile/note"), "/private/var/mobile/note");
    EXPECT_EQ(files_.resolvedPath("/var"), "/private/var");
    EXPECT_EQ(openError("/var/mobile", LastLink::Refuse), 0);
    ASSERT_TRUE(files_.createFile("/var/mobile/new", "x"));
    EXPECT_EQ(device_.content("/private/var/mobile/new"), "x");
}

TEST_P(ResolutionTest, AResolvedPathMustExist) {
    device_.link("/dangling", "/nowhere");
    EXPECT_EQ(errorOf(files_.resolvedPath("/missing")), ENOENT);
    EXPECT_EQ(errorOf(files_.resolvedPath("/missing/deeper")), ENOENT);
    EXPECT_EQ(errorOf(files_.resolvedPath("/dangling")), ENOENT);
}

TEST_P(ResolutionTest, LinksThatLeadInACircleAreAnError) {
    device_.link("/self", "self");
    device_.link("/one", "/two");
    device_.link("/two", "one");
    for (const std::string path : {"/self", "/one", "/self/x", "/two/x/y"}) {
        EXPECT_EQ(attributesError(path), ELOOP) << path;
        EXPECT_EQ(openError(path), ELOOP) << path;
        EXPECT_EQ(errorOf(files_.readFile(path, 10)), ELOOP) << path;
        EXPECT_EQ(errorOf(files_.resolvedPath(path)), ELOOP) << path;
        EXPECT_FALSE(files_.fileExists(path)) << path;
    }
    const auto itself = files_.attributes("/self", LastLink::Refuse);
    ASSERT_TRUE(itself);
    EXPECT_EQ(itself->type, FileType::SymbolicLink);
}

TEST_P(ResolutionTest, FortyLinksInARowAreFollowedAndNoMore) {
    device_.fileWith("/end", "reached");
    device_.link("/1", "end");
    for (int i = 2; i <= 41; ++i)
        device_.link("/" + std::to_string(i), std::to_string(i - 1));
    EXPECT_EQ(read("/40"), "reached");
    EXPECT_EQ(attributesError("/41"), ELOOP);
}

TEST_P(ResolutionTest, ALastLinkIsRefusedWhateverSlashesFollow) {
    device_.fileWith("/folder/sub/file", "x");
    device_.link("/link", "folder");
    for (const std::string path : {"/link", "/link/", "/link///"}) {
        EXPECT_NE(openError(path, LastLink::Refuse), 0) << path;
        EXPECT_EQ(openError(path, LastLink::Follow), 0) << path;
        const auto link = files_.attributes(path, LastLink::Refuse);
        ASSERT_TRUE(link) << path;
        EXPECT_EQ(link->type, FileType::SymbolicLink) << path;
    }
    EXPECT_EQ(openError("/link/sub/", LastLink::Refuse), 0);
    EXPECT_EQ(openError("/folder/sub///", LastLink::Refuse), 0);
}

TEST_P(ResolutionTest, AFileIsNoDirectory) {
    device_.fileWith("/file", "x");
    EXPECT_EQ(openError("/file"), ENOTDIR);
    EXPECT_EQ(attributesError("/file/x"), ENOTDIR);
    EXPECT_EQ(attributesError("/file/.."), ENOTDIR);
    EXPECT_EQ(attributesError("/missing/.."), ENOENT);
    device_.fifo("/fifo");
    EXPECT_EQ(openError("/fifo"), ENOTDIR);
}

TEST_P(ResolutionTest, AnEmptyPathNamesNothing) {
    EXPECT_EQ(openError(""), ENOENT);
    EXPECT_EQ(attributesError(""), ENOENT);
    EXPECT_EQ(attributesError("", LastLink::Refuse), ENOENT);
    EXPECT_EQ(errorOf(files_.resolvedPath("")), ENOENT);
    EXPECT_EQ(errorOf(files_.readFile("", 10)), ENOENT);
    EXPECT_EQ(errorOf(files_.writeFile("", "x")), ENOENT);
    EXPECT_EQ(errorOf(files_.createDirectories("")), ENOENT);
    EXPECT_FALSE(files_.fileExists(""));
    EXPECT_FALSE(files_.isDirectory(""));
    EXPECT_FALSE(files_.isWritable(""));
}

TEST_P(ResolutionTest, APathIsNotCutShortAtAZeroByte) {
    device_.fileWith("/folder/file", "x");
    const std::string file = "/folder/file\0.txt"s;
    const std::string folder = "/folder\0x"s;
    EXPECT_EQ(openError(folder), EINVAL);
    EXPECT_EQ(attributesError(file), EINVAL);
    EXPECT_EQ(attributesError(folder + "/file"), EINVAL);
    EXPECT_EQ(errorOf(files_.resolvedPath(file)), EINVAL);
    EXPECT_EQ(errorOf(files_.readFile(file, 10)), EINVAL);
    EXPECT_EQ(errorOf(files_.writeFile(file, "y")), EINVAL);
    EXPECT_EQ(errorOf(files_.rename("/folder/file", "/folder/f\0g"s)), EINVAL);
    const auto root = files_.openDirectory("/", LastLink::Follow);
    ASSERT_TRUE(root);
    EXPECT_EQ(errorOf(files_.openBeneath(*root, folder.substr(1), Mounts::Cross)), EINVAL);
    EXPECT_EQ(device_.content("/folder/file"), "x");
}

TEST_P(ResolutionTest, ADirectoryIsOpenedBeneathAnother) {
    device_.fileWith("/a/b/c/file", "x");
    const auto a = files_.openDirectory("/a", LastLink::Follow);
    ASSERT_TRUE(a);
    const auto c = files_.openBeneath(*a, "b/c", Mounts::Refuse);
    ASSERT_TRUE(c);
    EXPECT_EQ(c->path(), "/a/b/c");
    EXPECT_TRUE(files_.attributesAt(*c, "file"));
    const auto again = files_.openBeneath(*a, "", Mounts::Refuse);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->path(), "/a");
    EXPECT_TRUE(files_.attributesAt(*again, "b"));
    EXPECT_EQ(errorOf(files_.openBeneath(*a, "missing", Mounts::Cross)), ENOENT);
    EXPECT_EQ(errorOf(files_.openBeneath(*a, "b/c/file", Mounts::Cross)), ENOTDIR);
}

TEST_P(ResolutionTest, OpeningBeneathFollowsNoLinkAndLeadsNowhereElse) {
    device_.folder("/a/real/sub");
    device_.folder("/outside");
    device_.link("/a/link", "real");
    device_.link("/a/out", "/outside");
    const auto a = files_.openDirectory("/a", LastLink::Follow);
    ASSERT_TRUE(a);
    for (const std::string relative :
         {"link", "link/", "link/sub", "out", "..", "real/../..", "../outside", "/outside"})
        EXPECT_FALSE(files_.openBeneath(*a, relative, Mounts::Cross)) << relative;
}

TEST_P(ResolutionTest, AMountPointIsRefusedWhereItMustNotBeEntered) {
    if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    device_.folder("/a/memory");
    device_.folder("/a/bound/below");
    device_.fileWith("/elsewhere/inside/file", "x");
    test::withOwnMounts([&] {
        test::mountMemory(device_.host("/a/memory"));
        test::mountAt(device_.host("/elsewhere"), device_.host("/a/bound"));
        HostFileManager files = reopened();
        const auto a = files.openDirectory("/a", LastLink::Follow);
        ASSERT_TRUE(a);
        for (const std::string relative : {"memory", "bound", "bound/inside"}) {
            EXPECT_EQ(errorOf(files.openBeneath(*a, relative, Mounts::Refuse)), EXDEV) << relative;
            EXPECT_EQ(errorOf(files.openBeneath(*a, relative, Mounts::Cross)), 0) << relative;
        }
        const auto bound = files.openDirectory("/a/bound", LastLink::Follow);
        ASSERT_TRUE(bound);
        EXPECT_EQ(errorOf(files.openBeneath(*bound, "inside", Mounts::Refuse)), 0);
    });
}

TEST_P(ResolutionTest, PathsLongerThanTheKernelTakesAreReached) {
    std::string path = "/long";
    for (int i = 0; i < 30; ++i)
        path += "/" + std::string(200, static_cast<char>('a' + i % 26));
    ASSERT_GT(path.size(), 4096U);
    ASSERT_TRUE(files_.createDirectories(path));
    ASSERT_TRUE(files_.writeFile(path + "/file", "deep"));
    EXPECT_EQ(read(path + "/file"), "deep");
    EXPECT_EQ(files_.resolvedPath(path + "/file"), path + "/file");
    EXPECT_TRUE(files_.isDirectory(path));
    EXPECT_TRUE(files_.rename(path + "/file", path + "/other"));
    const auto names = files_.contentsOfDirectory(path);
    ASSERT_TRUE(names);
    EXPECT_EQ(*names, std::vector<std::string>{"other"});
    const auto top = files_.openDirectory("/long", LastLink::Refuse);
    ASSERT_TRUE(top);
    const std::string relative = path.substr(std::strlen("/long/"));
    EXPECT_EQ(errorOf(files_.openBeneath(*top, relative, Mounts::Refuse)), 0);
    EXPECT_EQ(attributesError("/" + std::string(256, 'x')), ENAMETOOLONG);
}

TEST_P(ResolutionTest, AFolderRenamedAfterItWasOpenedStaysTheOneOpened) {
    device_.fileWith("/before/file", "x");
    const auto folder = files_.openDirectory("/before", LastLink::Refuse);
    ASSERT_TRUE(folder);
    ASSERT_TRUE(files_.rename("/before", "/after"));
    device_.folder("/before");
    EXPECT_TRUE(files_.attributesAt(*folder, "file"));
    EXPECT_TRUE(files_.removeFileAt(*folder, "file"));
    EXPECT_FALSE(device_.exists("/after/file"));
}

TEST_P(ResolutionTest, AKernelWithoutTheNewCallsIsServedByTheOldOnes) {
    device_.fileWith("/private/var/file", "old");
    device_.link("/var", "private/var");
    device_.link("/loop", "loop");
    for (const unsigned error : {unsigned{ENOSYS}, unsigned{EPERM}}) {
        test::inChildProcess([&] {
            denySystemCall(SYS_openat2, error);
            denySystemCall(SYS_statx, error);
            EXPECT_EQ(read("/var/file"), "old");
            EXPECT_EQ(attributesError("/loop"), ELOOP);
            EXPECT_EQ(attributesError("/../../etc/passwd"), ENOENT);
            EXPECT_NE(openError("/var/", LastLink::Refuse), 0);
            const auto root = files_.openDirectory("/", LastLink::Follow);
            ASSERT_TRUE(root);
            EXPECT_FALSE(files_.openBeneath(*root, "var", Mounts::Cross));
            EXPECT_TRUE(files_.openBeneath(*root, "private/var", Mounts::Refuse));
            const auto file = files_.attributes("/var/file", LastLink::Refuse);
            ASSERT_TRUE(file);
            EXPECT_EQ(file->size, 3U);
        });
    }
}

FOR_BOTH_CALLS(ResolutionTest);

}  // namespace sweepwright::platform
