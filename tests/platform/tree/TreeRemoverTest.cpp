#include <cerrno>
#include <climits>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "platform/files/FileManagerFixture.h"
#include "platform/tree/RandomTree.h"
#include "platform/tree/TreeRemover.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"
#include "support/UntypedFileManager.h"

namespace sweepwright::platform {

namespace {

using test::Operation;
using Names = std::vector<std::string>;

Removal removed(FileManager& files, const std::string& path, const WalkRules& rules = {},
                unsigned threads = TreeRemover::kDefaultThreads) {
    const std::size_t slash = path.rfind('/');
    const auto parent =
        files.openDirectory(slash == 0 ? "/" : path.substr(0, slash), LastLink::Refuse);
    if (!parent) return {0, parent.error()};
    return TreeRemover(files, threads).remove(*parent, path.substr(slash + 1), rules);
}

int errorOf(const Removal& removal) {
    return removal.error ? static_cast<int>(removal.error->code) : 0;
}

WalkRules someRules() {
    WalkRules rules;
    rules.countHiddenEntries = *rc::gen::arbitrary<bool>();
    rules.countLinks = *rc::gen::arbitrary<bool>();
    rules.maxDepth = *rc::gen::weightedOneOf<int>(
        {{2, rc::gen::just(kDefaultMaxDepth)}, {2, rc::gen::inRange(-1, 6)}});
    return rules;
}

class TreeRemoverTest : public FileManagerTest {
  protected:
    TreeRemoverTest() { device_.fileWith("/canary/file", "alive"); }

    Removal remove(const std::string& path, const WalkRules& rules = {}) {
        return removed(files_, path, rules);
    }
    void expectOnlyTheCanaryIsLeft() {
        EXPECT_EQ(device_.entriesBeneath("/"), (Names{"/canary", "/canary/file"}));
        EXPECT_EQ(device_.content("/canary/file"), "alive");
    }
};

}  // namespace

RC_GTEST_PROP(TreeRemoverProperty, FreesWhatAWalkFoundBefore, ()) {
    const auto steps = *treeSteps();
    const WalkRules rules = someRules();
    for (const Calls calls : {Calls::Native, Calls::Portable}) {
        for (const unsigned threads : {1U, 2U, 8U}) {
            test::TemporaryDevice device(calls);
            device.file("/canary/file", 1000);
            makeTree(device, "/top", steps);
            const Account expected = walked(device.files(), 1, "/top", rules);
            Account found;
            const AccountedRules accounted(rules, found);
            const Removal removal = removed(device.files(), "/top", accounted.rules(), threads);
            found.bytes = removal.bytes;
            RC_ASSERT(!removal.error.has_value());
            RC_ASSERT(found == expected);
            RC_ASSERT(device.entriesBeneath("/") == (Names{"/canary", "/canary/file"}));
        }
    }
}

RC_GTEST_PROP(TreeRemoverProperty, NeedsNoTypesInTheListing, ()) {
    test::TemporaryDevice device;
    device.file("/canary/file", 1000);
    makeTree(device, "/top", *treeSteps());
    const WalkRules rules = someRules();
    const std::uint64_t expected = TreeWalker(device.files()).sizeOfDirectory("/top", rules);
    test::UntypedFileManager files(device.files());
    const Removal removal = removed(files, "/top", rules);
    RC_ASSERT(!removal.error.has_value());
    RC_ASSERT(removal.bytes == expected);
    RC_ASSERT(device.entriesBeneath("/") == (Names{"/canary", "/canary/file"}));
}

TEST_P(TreeRemoverTest, ALinkGoesAndWhatItLeadsToStays) {
    device_.link("/t/toFolder", "/canary");
    device_.link("/t/sub/toFile", "../../canary/file");
    device_.link("/t/up", "..");
    device_.link("/t/root", "/");
    EXPECT_EQ(errorOf(remove("/t")), 0);
    expectOnlyTheCanaryIsLeft();
}

TEST_P(TreeRemoverTest, ASingleFileOrLinkGoes) {
    device_.file("/file", 5);
    device_.file("/.hidden", 7);
    device_.link("/link", "canary");
    device_.link("/counted", "canary");
    device_.fifo("/fifo");
    WalkRules rules;
    EXPECT_EQ(remove("/file", rules).bytes, 5U);
    EXPECT_EQ(remove("/.hidden", rules).bytes, 7U);
    EXPECT_EQ(remove("/link", rules).bytes, 0U);
    EXPECT_EQ(remove("/fifo", rules).bytes, 0U);
    rules.countLinks = true;
    EXPECT_EQ(remove("/counted", rules).bytes, 6U);
    expectOnlyTheCanaryIsLeft();
}

TEST_P(TreeRemoverTest, WhatIsNotThereIsAnError) {
    const Removal removal = remove("/missing");
    EXPECT_EQ(errorOf(removal), ENOENT);
    EXPECT_EQ(removal.bytes, 0U);
}

TEST_P(TreeRemoverTest, OnlyAnEntryOfTheFolderIsRemoved) {
    device_.file("/t/sub/file", 5);
    const auto t = files_.openDirectory("/t", LastLink::Refuse);
    ASSERT_TRUE(t);
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("sub/file"),
          std::string("../canary"), std::string("/canary"), std::string("sub\0x", 5)}) {
        EXPECT_EQ(errorOf(TreeRemover(files_).remove(*t, name, {})), EINVAL) << name;
    }
    EXPECT_TRUE(device_.exists("/t/sub/file"));
    EXPECT_EQ(device_.content("/canary/file"), "alive");
}

TEST_P(TreeRemoverTest, EveryKindOfNameGoes) {
    for (const std::string name :
         {"'", "\"", "new\nline", "-rf", "$(touch x)", "*", "...", ".hidden", "\xff\xfe", " "}) {
        device_.file("/t/folder" + name + "/" + name, 1);
        device_.file("/t/" + name, 1);
    }
    device_.file("/t/" + std::string(255, 'n') + "/" + std::string(255, 'm'), 1);
    EXPECT_EQ(errorOf(remove("/t")), 0);
    expectOnlyTheCanaryIsLeft();
}

TEST_P(TreeRemoverTest, EachHardLinkCountsAndOneOutsideKeepsTheFile) {
    device_.fileWith("/t/one", "12345");
    device_.hardLink("/t/two", "/t/one");
    device_.hardLink("/t/three", "/canary/file");
    EXPECT_EQ(remove("/t").bytes, 15U);
    expectOnlyTheCanaryIsLeft();
}

TEST_P(TreeRemoverTest, TheRulesSayWhatCountsAndNotWhatGoes) {
    const auto fill = [&] {
        device_.file("/t/file", 1);
        device_.file("/t/.file", 10);
        device_.file("/t/.folder/file", 100);
        device_.file("/t/sub/file", 1000);
        device_.link("/t/link", "12345");
    };
    WalkRules rules;
    fill();
    EXPECT_EQ(remove("/t", rules).bytes, 1001U);
    fill();
    rules.countHiddenEntries = true;
    EXPECT_EQ(remove("/t", rules).bytes, 1111U);
    fill();
    rules.countLinks = true;
    EXPECT_EQ(remove("/t", rules).bytes, 1116U);
    fill();
    rules.maxDepth = 1;
    EXPECT_EQ(remove("/t", rules).bytes, 16U);
    fill();
    rules.maxDepth = 0;
    EXPECT_EQ(remove("/t", rules).bytes, 0U);
    expectOnlyTheCanaryIsLeft();
}

TEST_P(TreeRemoverTest, AMountInsideIsKeptWithItsContent) {
    if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    device_.file("/t/before/file", 5);
    device_.folder("/t/memory");
    device_.folder("/t/deep/bound");
    device_.file("/t/mountedFile", 3);
    device_.file("/t/zzz/file", 7);
    test::withOwnMounts([&] {
        test::mountMemory(device_.host("/t/memory"));
        test::mountAt(device_.host("/canary"), device_.host("/t/deep/bound"));
        test::mountAt(device_.host("/canary/file"), device_.host("/t/mountedFile"));
        device_.file("/t/memory/inside", 11);
        HostFileManager files = reopened();
        const Removal removal = removed(files, "/t");
        EXPECT_EQ(removal.bytes, 12U);
        EXPECT_TRUE(errorOf(removal) == EXDEV || errorOf(removal) == EBUSY);
        EXPECT_EQ(device_.entriesBeneath("/t"),
                  (Names{"/t/deep", "/t/deep/bound", "/t/deep/bound/file", "/t/memory",
                         "/t/memory/inside", "/t/mountedFile"}));
        EXPECT_EQ(device_.content("/canary/file"), "alive");
        const Removal itself = removed(files, "/t/deep/bound");
        EXPECT_EQ(errorOf(itself), EXDEV);
        EXPECT_EQ(device_.content("/canary/file"), "alive");
    });
}

TEST_P(TreeRemoverTest, AFolderFilledWhileItIsEmptiedIsEmptiedAgain) {
    device_.file("/t/busy/file", 1);
    int added = 0;
    test::FaultyFileManager files(files_, {Operation::RemoveDirectoryAt});
    files.before([&](Operation, const std::string& path) {
        if (path != "/t/busy" || added >= 10) return;
        device_.file("/t/busy/more/" + std::to_string(added), 10);
        ++added;
    });
    const Removal removal = removed(files, "/t");
    EXPECT_EQ(errorOf(removal), 0);
    EXPECT_EQ(removal.bytes, 101U);
    expectOnlyTheCanaryIsLeft();
}

TEST_P(TreeRemoverTest, AFolderThatNeverEmptiesIsGivenUp) {
    device_.file("/t/busy/file", 1);
    device_.file("/t/other/file", 5);
    std::uint64_t added = 0;
    test::FaultyFileManager files(files_, {Operation::RemoveDirectoryAt});
    files.before([&](Operation, const std::string& path) {
        if (path == "/t/busy") device_.file("/t/busy/" + std::to_string(++added), 10);
    });
    const Removal removal = removed(files, "/t");
    EXPECT_EQ(errorOf(removal), ENOTEMPTY);
    EXPECT_EQ(removal.bytes, 6 + 10 * (added - 1));
    EXPECT_EQ(device_.entriesBeneath("/t"), (Names{"/t/busy", "/t/busy/" + std::to_string(added)}));
}

TEST_P(TreeRemoverTest, TheDepthLimitIsToldOnceForAFolderEmptiedAgain) {
    device_.file("/t/busy/file", 1);
    bool added = false;
    test::FaultyFileManager files(files_, {Operation::RemoveDirectoryAt});
    files.before([&](Operation, const std::string& path) {
        if (path == "/t/busy" && !std::exchange(added, true)) device_.file("/t/busy/more", 10);
    });
    WalkRules rules;
    rules.maxDepth = 1;
    Account found;
    const AccountedRules accounted(rules, found);
    EXPECT_EQ(errorOf(removed(files, "/t", accounted.rules())), 0);
    EXPECT_EQ(found, (Account{0, {{"depth /t/busy", 1}}}));
}

TEST_P(TreeRemoverTest, WhatAnotherRemovesMeanwhileIsGone) {
    for (int i = 0; i < 5; ++i)
        device_.file("/t/sub/" + std::to_string(i), 10);
    bool done = false;
    test::FaultyFileManager files(files_, {Operation::RemoveFileAt, Operation::RemoveDirectoryAt});
    files.before([&](Operation, const std::string& path) {
        if (!path.starts_with("/t/sub/") || std::exchange(done, true)) return;
        const auto sub = files_.openDirectory("/t/sub", LastLink::Refuse);
        for (int i = 0; i < 5; ++i)
            EXPECT_TRUE(files_.removeFileAt(*sub, std::to_string(i)));
        EXPECT_TRUE(files_.removeDirectoryAt(*files_.openDirectory("/t", LastLink::Refuse), "sub"));
    });
    const Removal removal = removed(files, "/t");
    EXPECT_EQ(errorOf(removal), 0);
    EXPECT_EQ(removal.bytes, 0U);
    expectOnlyTheCanaryIsLeft();
}

TEST_P(TreeRemoverTest, AFolderTakenAwayWithWhatWaitsInItIsGone) {
    // So deep that the way up from the bottom is not open any more.
    const std::string bottom = "/t/a/1/2/3/4/5/6/7/8/9/10/11/12";
    device_.file(bottom + "/file", 10);
    bool done = false;
    test::FaultyFileManager files(files_, {Operation::RemoveDirectoryAt});
    files.before([&](Operation, const std::string& path) {
        if (path == bottom && !std::exchange(done, true)) {
            EXPECT_TRUE(files_.rename("/t/a", "/elsewhere"));
        }
    });
    EXPECT_EQ(errorOf(removed(files, "/t")), 0);
    EXPECT_FALSE(device_.exists("/t"));
    EXPECT_TRUE(device_.exists("/elsewhere"));
}

TEST_P(TreeRemoverTest, AFileThatBecameAFolderIsEmptied) {
    for (const int refusal : {EISDIR, EPERM}) {
        device_.file("/t/changing", 10);
        bool done = false;
        test::FaultyFileManager files(files_, {Operation::RemoveFileAt});
        files.failAt(1, refusal);  // as the system says to an unlink of a folder
        files.before([&](Operation, const std::string& path) {
            if (std::exchange(done, true)) return;
            EXPECT_EQ(path, "/t/changing");
            const auto t = files_.openDirectory("/t", LastLink::Refuse);
            EXPECT_TRUE(files_.removeFileAt(*t, "changing"));
            device_.file("/t/changing/file", 7);
        });
        const Removal removal = removed(files, "/t");
        EXPECT_EQ(errorOf(removal), 0);
        EXPECT_EQ(removal.bytes, 7U);
        expectOnlyTheCanaryIsLeft();
    }
}

FOR_BOTH_CALLS(TreeRemoverTest);

}  // namespace sweepwright::platform
