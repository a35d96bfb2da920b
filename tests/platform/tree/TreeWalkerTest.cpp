#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <mutex>
#include <set>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/FileManagerFixture.h"
#include "platform/tree/RandomTree.h"
#include "platform/tree/TreeWalker.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"
#include "support/UntypedFileManager.h"

namespace sweepwright::platform {

namespace {

using test::Operation;

constexpr unsigned kThreadCounts[] = {1, 2, 8};  // NOLINT(modernize-avoid-c-arrays)

class TreeWalkerTest : public FileManagerTest {
  protected:
    std::uint64_t size(const std::string& path, const WalkRules& rules = {}, unsigned threads = 8) {
        return TreeWalker(files_, threads).sizeOfDirectory(path, rules);
    }
};

WalkRules depthRule(int maxDepth) {
    WalkRules rules;
    rules.maxDepth = maxDepth;
    return rules;
}

std::vector<WalkRules> allRules(int maxDepth, const TreeProtection& protection) {
    std::vector<WalkRules> all;
    for (const bool hidden : {false, true})
        for (const bool links : {false, true})
            for (const TreeProtection* guard :
                 {static_cast<const TreeProtection*>(nullptr), &protection}) {
                WalkRules rules = depthRule(maxDepth);
                rules.countHiddenEntries = hidden;
                rules.countLinks = links;
                rules.protection = guard;
                all.push_back(rules);
            }
    return all;
}

/// Some of a tree's entries, to be protected.
std::vector<std::string> someOf(std::vector<std::string> paths) {
    if (paths.empty()) return {};
    return *rc::gen::resize(
        4, rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(std::move(paths))));
}

}  // namespace

RC_GTEST_PROP(TreeWalkerProperty, FindsWhatAPlainRecursiveWalkFinds, ()) {
    test::TemporaryDevice device;
    device.file("/canary/file", 1'000'000);
    makeTree(device, "/top", *treeSteps());
    const ListedProtection protection(someOf(device.entriesBeneath("/top")));
    const int maxDepth = *rc::gen::weightedOneOf<int>(
        {{2, rc::gen::just(kDefaultMaxDepth)}, {3, rc::gen::inRange(-1, 6)}});
    for (const Calls calls : {Calls::Native, Calls::Portable}) {
        HostFileManager files(DeviceRoot::open(device.root()).value(), calls);
        for (const WalkRules& rules : allRules(maxDepth, protection)) {
            const Account expected = measuredPlainly(device, "/top", rules);
            for (const unsigned threads : kThreadCounts)
                RC_ASSERT(walked(files, threads, "/top", rules) == expected);
        }
    }
}

RC_GTEST_PROP(TreeWalkerProperty, NeedsNoTypesInTheListing, ()) {
    test::TemporaryDevice device;
    makeTree(device, "/top", *treeSteps());
    test::UntypedFileManager files(device.files());
    const ListedProtection protection({});
    for (const WalkRules& rules : allRules(kDefaultMaxDepth, protection))
        RC_ASSERT(walked(files, 2, "/top", rules) == measuredPlainly(device, "/top", rules));
}

TEST_P(TreeWalkerTest, HiddenEntriesAndLinksCountOnlyWhereTheRulesSaySo) {
    device_.file("/t/file", 1);
    device_.file("/t/.file", 10);
    device_.file("/t/.folder/file", 100);
    device_.link("/t/link", "0123456789012345678901234567890123456789");
    device_.fifo("/t/fifo");
    EXPECT_EQ(size("/t"), 1U);
    WalkRules rules;
    rules.countHiddenEntries = true;
    EXPECT_EQ(size("/t", rules), 111U);
    rules.countLinks = true;
    EXPECT_EQ(size("/t", rules), 151U);
    rules.countHiddenEntries = false;
    EXPECT_EQ(size("/t", rules), 41U);
}

TEST_P(TreeWalkerTest, AHiddenRootIsMeasured) {
    device_.file("/.hidden/file", 7);
    EXPECT_EQ(size("/.hidden"), 7U);
}

TEST_P(TreeWalkerTest, EachHardLinkCounts) {
    device_.file("/t/one", 5);
    device_.hardLink("/t/two", "/t/one");
    EXPECT_EQ(size("/t"), 10U);
}

TEST_P(TreeWalkerTest, SparseAndLargeFilesCountByTheirLength) {
    device_.file("/t/one", 9'000'000'000);
    device_.file("/t/two", 9'000'000'000);
    EXPECT_EQ(size("/t"), 18'000'000'000U);
}

TEST_P(TreeWalkerTest, OnlyADirectoryHasASize) {
    device_.file("/file", 5);
    device_.file("/folder/sub/file", 7);
    device_.link("/toFile", "file");
    device_.link("/toFolder", "folder");
    device_.link("/dangling", "nowhere");
    EXPECT_EQ(size("/file"), 0U);
    EXPECT_EQ(size("/toFile"), 0U);
    EXPECT_EQ(size("/missing"), 0U);
    EXPECT_EQ(size("/dangling"), 0U);
    EXPECT_EQ(size(""), 0U);
    EXPECT_EQ(size("/toFolder"), 0U);
    EXPECT_EQ(size("/toFolder/"), 0U);
    EXPECT_EQ(size("/toFolder/sub"), 7U) << "a link on the way is followed";
    EXPECT_EQ(size("/folder/"), 7U);
}

TEST_P(TreeWalkerTest, LinksInsideAreNeverFollowed) {
    device_.file("/other/file", 1000);
    device_.file("/t/sub/file", 5);
    device_.link("/t/out", "/other");
    device_.link("/t/up", "..");
    device_.link("/t/sub/self", ".");
    device_.link("/t/sub/cycle", "/t");
    EXPECT_EQ(size("/t"), 5U);
}

TEST_P(TreeWalkerTest, DepthZeroMeasuresNothingAndSaysSo) {
    device_.file("/t/file", 5);
    device_.folder("/empty");
    for (const int depth : {0, -1, -100})
        for (const std::string path : {"/t", "/empty", "/missing"}) {
            const Account account = walked(files_, 2, path, depthRule(depth));
            EXPECT_EQ(account, (Account{0, {{"depth " + path, 1}}}));
        }
}

TEST_P(TreeWalkerTest, DepthOneMeasuresTheRootsFilesOnly) {
    device_.file("/t/file", 5);
    device_.file("/t/sub/file", 7);
    device_.folder("/t/empty");
    device_.file("/t/.hidden/file", 7);
    EXPECT_EQ(walked(files_, 2, "/t", depthRule(1)),
              (Account{5, {{"depth /t/sub", 1}, {"depth /t/empty", 1}}}));
}

TEST_P(TreeWalkerTest, AFolderAHundredLevelsBelowIsLeftOut) {
    std::string path = "/t";
    device_.file(path + "/file", 1);
    for (int level = 1; level <= 101; ++level) {
        path += "/" + std::to_string(level);
        device_.file(path + "/file", 1);
    }
    const std::string limit = path.substr(0, path.rfind('/'));
    ASSERT_TRUE(limit.ends_with("/100"));
    EXPECT_EQ(walked(files_, 8, "/t", WalkRules{}), (Account{100, {{"depth " + limit, 1}}}));
    EXPECT_EQ(walked(files_, 8, "/t", depthRule(102)), (Account{102, {}}));
}

TEST_P(TreeWalkerTest, AProtectedRootIsNotEvenOpened) {
    device_.file("/t/file", 5);
    const ListedProtection protection({"/t"});
    WalkRules rules = depthRule(0);
    rules.protection = &protection;
    test::FaultyFileManager watched(files_, {Operation::OpenDirectory});
    EXPECT_EQ(walked(watched, 2, "/t", rules), (Account{0, {{"root /t", 1}}}));
    EXPECT_EQ(watched.calls(), 0U);
}

TEST_P(TreeWalkerTest, ProtectedEntriesAreLeftOutAndTold) {
    device_.file("/t/kept/file", 5);
    device_.file("/t/file", 7);
    device_.file("/t/sub/other", 11);
    device_.file("/t/sub/.hidden", 13);
    const ListedProtection protection({"/t/kept", "/t/sub/other", "/t/sub/.hidden"});
    WalkRules rules;
    rules.protection = &protection;
    EXPECT_EQ(walked(files_, 2, "/t", rules),
              (Account{7, {{"entry /t/kept", 1}, {"entry /t/sub/other", 1}}}));
}

TEST_P(TreeWalkerTest, NothingIsAskedAboutInAFreeFolder) {
    class Counting : public ListedProtection {
      public:
        using ListedProtection::ListedProtection;
        [[nodiscard]] bool isProtected(const std::string& path) const override {
            if (path.starts_with("/t/free/")) ++asked;
            return ListedProtection::isProtected(path);
        }
        mutable std::atomic<int> asked{0};
    };
    for (int i = 0; i < 50; ++i)
        device_.file("/t/free/" + std::to_string(i) + "/file", 1);
    device_.file("/t/guarded/kept", 1);
    const Counting protection({"/t/guarded/kept"});
    WalkRules rules;
    rules.protection = &protection;
    EXPECT_EQ(size("/t", rules), 50U);
    EXPECT_EQ(protection.asked, 0);
}

TEST_P(TreeWalkerTest, AFolderThatCannotBeOpenedCountsNothing) {
    for (int i = 0; i < 6; ++i)
        device_.file("/t/" + std::to_string(i) + "/file", std::uint64_t{1} << i);
    for (std::uint64_t n = 1; n <= 6; ++n) {
        test::FaultyFileManager files(files_, {Operation::OpenBeneath});
        files.failAt(n, EACCES);
        const std::uint64_t found = TreeWalker(files, 2).sizeOfDirectory("/t", {});
        const int lost = std::stoi(files.failedPath().substr(3));
        EXPECT_EQ(found, 63U - (1U << static_cast<unsigned>(lost)));
    }
}

TEST_P(TreeWalkerTest, WhatCannotBeReadIsToldOnceAFolder) {
    device_.file("/top/closed/a", 1);
    device_.file("/top/nameless/b", 10);
    for (const char* name : {"c", "d", "e"})
        device_.file(std::string("/top/sizeless/") + name, 100);
    device_.file("/top/open/f", 1000);
    test::FaultyFileManager faulty(files_, {Operation::OpenBeneath, Operation::ReadEntries,
                                            Operation::AttributesAt, Operation::Attributes});
    faulty.failWhere(
        [](Operation operation, const std::string& path) {
            if (operation == Operation::OpenBeneath) return path == "/top/closed";
            if (operation == Operation::ReadEntries) return path == "/top/nameless";
            return path.starts_with("/top/sizeless/");
        },
        EACCES);
    std::mutex mutex;
    std::vector<std::string> told;
    WalkRules rules;
    rules.onUnreadable = [&](const std::string& folder, const Error& error) {
        const std::lock_guard lock(mutex);
        EXPECT_EQ(error, errorFromErrno(EACCES, folder));
        told.push_back(folder);
    };
    EXPECT_EQ(TreeWalker(faulty).sizeOfDirectory("/top", rules), 1000U);
    std::ranges::sort(told);
    EXPECT_EQ(told, (std::vector<std::string>{"/top/closed", "/top/nameless", "/top/sizeless"}));

    told.clear();
    for (const char* path : {"/top/absent", "/top/open/f", "/top/absent/x"})
        EXPECT_EQ(TreeWalker(faulty).sizeOfDirectory(path, rules), 0U);
    EXPECT_EQ(told, std::vector<std::string>());
}

TEST_P(TreeWalkerTest, WhateverFailsTheRestIsCounted) {
    makeTree(device_, "/t", {});
    for (int i = 0; i < 6; ++i)
        for (int k = 0; k < 3; ++k)
            device_.file("/t/" + std::to_string(i) + "/" + std::to_string(k), 100);
    for (const Operation operation :
         {Operation::OpenDirectory, Operation::ReadEntries, Operation::AttributesAt}) {
        test::FaultyFileManager counting(files_, {operation});
        ASSERT_EQ(TreeWalker(counting, 1).sizeOfDirectory("/t", {}), 1800U);
        for (std::uint64_t n = 1; n <= counting.calls(); ++n) {
            test::FaultyFileManager files(files_, {operation});
            files.failAt(n, EIO);
            const std::uint64_t found = TreeWalker(files, 2).sizeOfDirectory("/t", {});
            EXPECT_EQ(found % 100, 0U);
            EXPECT_LE(found, 1800U);
            EXPECT_TRUE(operation != Operation::AttributesAt || found == 1700U) << found;
        }
    }
}

TEST_P(TreeWalkerTest, AWalkNeedsFewDescriptors) {
    if (test::ranInFreshProcess()) return;
    for (int i = 0; i < 40; ++i) {
        std::string path = "/t/" + std::to_string(i);
        for (int k = 0; k < 20; ++k) {
            path += "/" + std::to_string(k);
            device_.file(path + "/file", 1);
        }
    }
    test::inChildProcess([&] {
        test::limitDescriptors(64);
        EXPECT_EQ(size("/t"), 800U);
    });
}

TEST_P(TreeWalkerTest, AVeryWideFolderIsMeasured) {
    constexpr int kFolders = 20'000;
    device_.folder("/t");
    const int top = open(device_.host("/t").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < kFolders; ++i) {
        const std::string name = std::to_string(i);
        ASSERT_EQ(mkdirat(top, name.c_str(), 0755), 0);
        if (i % 10 == 0) {
            ASSERT_EQ(symlinkat("12345", top, ("." + name).c_str()), 0);
        }
    }
    close(top);
    device_.file("/t/19999/file", 3);
    WalkRules rules;
    rules.countHiddenEntries = true;
    rules.countLinks = true;
    for (const unsigned threads : kThreadCounts)
        EXPECT_EQ(size("/t", rules, threads), 3U + 5U * kFolders / 10);
}

TEST_P(TreeWalkerTest, AMountInsideIsMeasured) {
    if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    device_.folder("/t/mounted");
    device_.file("/other/file", 5);
    test::withOwnMounts([&] {
        test::mountAt(device_.host("/other"), device_.host("/t/mounted"));
        HostFileManager files = reopened();
        EXPECT_EQ(TreeWalker(files).sizeOfDirectory("/t", {}), 5U);
    });
}

FOR_BOTH_CALLS(TreeWalkerTest);

}  // namespace sweepwright::platform
