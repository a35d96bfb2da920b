// Removals that fail, or end, at any step.
#include <algorithm>
#include <cerrno>
#include <set>

#include <gtest/gtest.h>

#include "platform/files/FileManagerFixture.h"
#include "platform/tree/TreeRemover.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"

namespace sweepwright::platform {

namespace {

using test::FaultyFileManager;
using test::Operation;
using Names = std::vector<std::string>;

constexpr int kFolders = 5;

class TreeRemoverFaultTest : public FileManagerTest {
  protected:
    TreeRemoverFaultTest() { device_.fileWith("/canary", "alive"); }

    /// Folder "/t" with files of different sizes on several levels; some hidden, and links.
    void fill() {
        std::uint64_t size = 1;
        for (int i = 0; i < kFolders; ++i) {
            const std::string folder = "/t/" + std::to_string(i);
            device_.file(folder + "/one", size *= 2);
            device_.file(folder + "/.hidden", 1'000'000);
            device_.file(folder + "/deep/er/two", size *= 2);
            device_.link(folder + "/deep/link", "/canary");
        }
        device_.folder("/t/empty");
        device_.file("/t/.folder/file", 1'000'000);
        device_.file("/t/file", 1);
    }
    std::uint64_t size() { return TreeWalker(files_).sizeOfDirectory("/t", {}); }
    Removal removeThrough(FileManager& files, unsigned threads = 2) {
        const auto root = files_.openDirectory("/", LastLink::Refuse);
        return TreeRemover(files, threads).remove(*root, "t", {});
    }
    std::uint64_t callsTo(const std::set<Operation>& operations) {
        fill();
        FaultyFileManager counting(files_, operations);
        EXPECT_FALSE(removeThrough(counting).error.has_value());
        return counting.calls();
    }
    void removeTheRest() {
        EXPECT_FALSE(removeThrough(files_).error.has_value());
        EXPECT_EQ(device_.entriesBeneath("/"), Names{"/canary"});
        EXPECT_EQ(device_.content("/canary"), "alive");
    }
};

/// A path and the folders above it, down to "/t".
Names withFoldersAbove(std::string path) {
    Names all;
    for (; !path.empty(); path.erase(path.rfind('/')))
        all.push_back(path);
    std::ranges::sort(all);
    return all;
}

}  // namespace

TEST_P(TreeRemoverFaultTest, WhateverCannotBeRemovedTheRestGoesAndTheBytesAreRight) {
    const std::set<Operation> removing = {Operation::RemoveFileAt, Operation::RemoveDirectoryAt};
    const std::uint64_t steps = callsTo(removing);
    ASSERT_EQ(steps, kFolders * 7U + 5U);
    for (std::uint64_t n = 1; n <= steps; ++n) {
        fill();
        const std::uint64_t before = size();
        FaultyFileManager files(files_, removing);
        files.failAt(n, EACCES);
        const Removal removal = removeThrough(files, n % 2 == 0 ? 1 : 2);
        ASSERT_TRUE(removal.error.has_value());
        EXPECT_EQ(removal.error->code, EACCES);
        EXPECT_TRUE(removal.error->description.starts_with(files.failedPath() + ":"));
        EXPECT_EQ(removal.bytes, before - size()) << files.failedPath();
        Names left = device_.entriesBeneath("/");
        std::erase(left, "/canary");
        EXPECT_EQ(left, withFoldersAbove(files.failedPath()));
        removeTheRest();
    }
}

TEST_P(TreeRemoverFaultTest, AFolderThatCannotBeReadStaysAndTheBytesAreRight) {
    for (const Operation operation : {Operation::OpenBeneath, Operation::ReadEntries}) {
        const std::uint64_t steps = callsTo({operation});
        for (std::uint64_t n = 1; n <= steps; ++n) {
            fill();
            const std::uint64_t before = size();
            FaultyFileManager files(files_, {operation});
            files.failAt(n, EACCES);
            const Removal removal = removeThrough(files);
            EXPECT_EQ(removal.bytes, before - size());
            EXPECT_EQ(removal.error.has_value(), device_.exists("/t")) << n;
            EXPECT_EQ(removal.error ? removal.error->code : EACCES, EACCES);
            device_.folder("/t");
            removeTheRest();
        }
    }
}

TEST_P(TreeRemoverFaultTest, AFileWhoseSizeIsNotToldGoesUncounted) {
    const std::uint64_t steps = callsTo({Operation::AttributesAt});
    for (std::uint64_t n = 2; n <= steps; ++n) {  // the first is the start's own
        fill();
        const std::uint64_t before = size();
        FaultyFileManager files(files_, {Operation::AttributesAt});
        files.failAt(n, EIO);
        const Removal removal = removeThrough(files);
        EXPECT_FALSE(removal.error.has_value());
        EXPECT_LT(removal.bytes, before);
        EXPECT_EQ(device_.entriesBeneath("/"), Names{"/canary"});
    }
}

TEST_P(TreeRemoverFaultTest, OnADiskThatTurnsReadOnlyTheBytesAreThoseThatWent) {
    const std::set<Operation> removing = {Operation::RemoveFileAt, Operation::RemoveDirectoryAt};
    const std::uint64_t steps = callsTo(removing);
    for (std::uint64_t n = 1; n <= steps; ++n) {
        fill();
        const std::uint64_t before = size();
        FaultyFileManager files(files_, removing);
        files.failFrom(n, EROFS);
        const Removal removal = removeThrough(files);
        ASSERT_TRUE(removal.error.has_value());
        EXPECT_EQ(removal.error->code, EROFS);
        EXPECT_EQ(removal.bytes, before - size());
        EXPECT_TRUE(device_.exists("/t"));
        removeTheRest();
    }
}

TEST_P(TreeRemoverFaultTest, AProcessThatEndsMidwayHasTouchedNothingElse) {
    fill();
    for (const std::uint64_t n : {1U, 7U, 20U}) {
        const int status = test::exitStatusOfChild([&] {
            FaultyFileManager files(files_, test::kChangingOperations);
            files.killAt(n);
            (void)removeThrough(files, 1);
        });
        EXPECT_EQ(status, test::kKilled);
        EXPECT_TRUE(device_.exists("/t"));
        EXPECT_EQ(device_.content("/canary"), "alive");
    }
    removeTheRest();
}

FOR_BOTH_CALLS(TreeRemoverFaultTest);

}  // namespace sweepwright::platform
