#include <algorithm>
#include <cerrno>

#include <fmt/format.h>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using test::Operation;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class StorageAnalysisTest : public EngineTest {
  protected:
    static std::vector<std::string> pathsOf(const auto& entries) {
        std::vector<std::string> paths;
        for (const auto& entry : entries)
            paths.push_back(entry.path);
        return paths;
    }
    static std::string deep(std::string root, int levels) {
        for (int i = 0; i < levels; ++i)
            root += "/d";
        return root;
    }
};

// --- Installed apps ---

TEST_F(StorageAnalysisTest, EveryBundleContainerIsAnAppWithItsMeasuredSize) {
    const std::string bundles = "/var/containers/Bundle/Application/";
    d_.tree.file(bundles + "AAA/App.app/binary", 100);
    d_.tree.file(bundles + "AAA/.hidden", 5);
    d_.tree.file(bundles + "BBB/kept/a", 10);
    d_.tree.folder(bundles + "CCC");
    d_.protect(bundles + "BBB");
    auto apps = d_.engine.getInstalledAppsWithStorage();
    const auto order = d_.tree.files().contentsOfDirectory(bundles).value();
    std::vector<std::string> names;
    for (const AppEntry& app : apps)
        names.push_back(app.name);
    EXPECT_EQ(names, order);
    std::ranges::sort(apps, {}, &AppEntry::name);
    ASSERT_THAT(apps, SizeIs(3));
    EXPECT_EQ(apps[0].path, "/var/containers/Bundle/Application/AAA");
    EXPECT_EQ(apps[0].size, 100U);
    EXPECT_EQ(apps[1].size, 0U);  // whitelisted
    EXPECT_EQ(apps[2].size, 0U);
}

TEST_F(StorageAnalysisTest, WithoutBundlesThereAreNoApps) {
    EXPECT_THAT(d_.engine.getInstalledAppsWithStorage(), IsEmpty());
}

// --- Large files ---

TEST_F(StorageAnalysisTest, LargeFilesOfDocumentsAndCachesComeLargestFirst) {
    d_.tree.file(d_.documents("b"), 200);
    d_.tree.file(d_.documents(".hidden/c"), 400);
    d_.tree.file(d_.documents("small"), 99);
    d_.tree.file(d_.documents("exact"), 100);
    d_.tree.file(d_.caches("sub/a"), 300);
    d_.tree.file(d_.library("other"), 500);
    d_.protect(d_.documents("b"));
    const auto found = d_.engine.findLargeFilesWithMinSize(100);
    EXPECT_THAT(pathsOf(found), ElementsAre(d_.documents(".hidden/c"), d_.caches("sub/a"),
                                            d_.documents("b"), d_.documents("exact")));
    EXPECT_EQ(found[0].name, "c");
    EXPECT_EQ(found[0].size, 400U);
}

TEST_F(StorageAnalysisTest, ALargeFileTellsWhenItWasChanged) {
    d_.tree.file(d_.documents("a"), 100);
    ASSERT_TRUE(
        d_.tree.files().setModificationDate(d_.documents("a"), d_.time - std::chrono::hours(5)));
    const auto found = d_.engine.findLargeFilesWithMinSize(1);
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].modifiedDate, d_.time - std::chrono::hours(5));
}

TEST_F(StorageAnalysisTest, AHundredLargeDocumentsLeaveNoRoomForTheCaches) {
    for (int i = 0; i < 150; ++i)
        d_.tree.file(d_.documents(fmt::format("{}", i)), 100);
    d_.tree.file(d_.caches("a"), 1'000);
    const auto found = d_.engine.findLargeFilesWithMinSize(100);
    EXPECT_THAT(found, SizeIs(100));
    EXPECT_TRUE(std::ranges::all_of(found, [](const auto& file) { return file.size == 100; }));
}

TEST_F(StorageAnalysisTest, TheCachesFillTheRoomThatIsLeft) {
    for (int i = 0; i < 60; ++i) {
        d_.tree.file(d_.documents(fmt::format("{}", i)), 100);
        d_.tree.file(d_.caches(fmt::format("{}", i)), 200);
    }
    const auto found = d_.engine.findLargeFilesWithMinSize(100);
    EXPECT_THAT(found, SizeIs(100));
    EXPECT_EQ(std::ranges::count(found, 200U, &LargeFileEntry::size), 40);
}

TEST_F(StorageAnalysisTest, TheSearchAppendsToWhatIsThereAndEndsAtItsDepthWithoutALine) {
    d_.tree.file("/var/t/a", 100);
    d_.tree.file("/var/t/sub/b", 100);
    std::vector<LargeFileEntry> results(2);
    d_.engine.findLargeFilesInDirectory("/var/t", 1, results, 50, 1);
    ASSERT_THAT(results, SizeIs(3));
    EXPECT_EQ(results[2].path, "/var/t/a");
    d_.engine.findLargeFilesInDirectory("/var/t", 1, results, 3);
    EXPECT_THAT(results, SizeIs(3));
    d_.engine.findLargeFilesInDirectory("/var/t", 1, results, 50, 0);
    EXPECT_THAT(results, SizeIs(3));
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(StorageAnalysisTest, LinkedFoldersAreSearchedAndUnreadableFilesAreNot) {
    d_.tree.file("/var/elsewhere/a", 100);
    d_.tree.link(d_.documents("link"), "/var/elsewhere");
    d_.tree.link(d_.documents("up"), d_.device.documentsDirectory());
    d_.tree.file(d_.documents("b"), 100);
    failAbout(d_.documents("b"), {Operation::Attributes}, EIO);
    EXPECT_THAT(pathsOf(d_.engine.findLargeFilesWithMinSize(50)),
                ElementsAre(d_.documents("link/a")));
}

// --- Duplicates ---

TEST_F(StorageAnalysisTest, FilesOfOneSizeAreAGroupWhateverTheyHold) {
    d_.tree.fileWith(d_.documents("a"), std::string(4096, 'a'));
    d_.tree.fileWith(d_.caches("sub/b"), std::string(4096, 'b'));
    d_.tree.file(d_.documents("alone"), 5);
    const auto groups = d_.engine.findDuplicateFiles();
    ASSERT_THAT(groups, SizeIs(1));
    ASSERT_THAT(groups[0], SizeIs(2));
    EXPECT_EQ(groups[0][0].path, d_.documents("a"));
    EXPECT_EQ(groups[0][0].name, "a");
    EXPECT_EQ(groups[0][0].size, 4096U);
    EXPECT_EQ(groups[0][1].path, d_.caches("sub/b"));
}

TEST_F(StorageAnalysisTest, EmptyAndUnreadableFilesAreInNoGroup) {
    d_.tree.file(d_.documents("a"), 0);
    d_.tree.file(d_.documents("b"), 0);
    d_.tree.file(d_.documents("c"), 7);
    d_.tree.file(d_.documents("d"), 7);
    failAbout(d_.documents("d"), {Operation::Attributes}, EIO);
    EXPECT_THAT(d_.engine.findDuplicateFiles(), IsEmpty());
}

TEST_F(StorageAnalysisTest, TheDuplicateCheckTellsOfItsDepth) {
    d_.tree.folder("/var/t/sub");
    std::map<std::uint64_t, std::vector<DuplicateEntry>> bySize;
    d_.engine.collectFilesForDuplicateCheck("/var/t", bySize, 0);
    d_.engine.collectFilesForDuplicateCheck("/var/t", bySize, 1);
    EXPECT_THAT(bySize, IsEmpty());
    EXPECT_THAT(lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: /var/t",
                                     "⚠️ 达到最大递归深度，跳过路径: /var/t/sub"));
}

TEST_F(StorageAnalysisTest, AFolderAHundredLevelsBelowTheDocumentsIsTooDeepForBothAnalyses) {
    const std::string documents = d_.device.documentsDirectory();
    d_.tree.file(deep(documents, 99) + "/a.txt", 7);
    d_.tree.file(deep(documents, 100) + "/b.txt", 7);
    const std::string line = "⚠️ 达到最大递归深度，跳过路径: " + deep(documents, 100);
    EXPECT_THAT(d_.engine.findDuplicateFiles(), IsEmpty());
    EXPECT_THAT(lines(), ElementsAre(line));
    EXPECT_EQ(d_.engine.analyzeStorageByCategory().totalAnalyzed, 7U);
    EXPECT_THAT(lines(), ElementsAre(line, line));
}

// --- Extensions ---

TEST_F(StorageAnalysisTest, BytesAddUpByLowerCasedExtension) {
    d_.tree.file(d_.documents("A.JPG"), 1);
    d_.tree.file(d_.documents("sub/b.jpg"), 10);
    d_.tree.file(d_.documents("README"), 100);
    d_.tree.file(d_.caches(".profile"), 1'000);
    d_.tree.file(d_.caches("c.tar.gz"), 10'000);
    d_.tree.file(d_.library("d.txt"), 5);
    const auto analysis = d_.engine.analyzeStorageByCategory();
    EXPECT_THAT(analysis.byExtension, UnorderedElementsAre(Pair("jpg", 11), Pair("gz", 10'000),
                                                           Pair("(no extension)", 1'100)));
    EXPECT_EQ(analysis.totalAnalyzed, 11'111U);
}

TEST_F(StorageAnalysisTest, AnExtensionAnalysisAddsToWhatIsThereAndTellsOfItsDepth) {
    d_.tree.file("/var/t/a.txt", 1);
    d_.tree.file("/var/t/sub/b.txt", 10);
    ExtensionSizes sizes = {{"txt", 5}};
    d_.engine.analyzeDirectory("/var/t", sizes, 1);
    EXPECT_THAT(sizes, ElementsAre(Pair("txt", 6)));
    d_.engine.analyzeDirectory("/var/t", sizes, 0);
    EXPECT_THAT(sizes, ElementsAre(Pair("txt", 6)));
    EXPECT_THAT(lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: /var/t/sub",
                                     "⚠️ 达到最大递归深度，跳过路径: /var/t"));
    d_.engine.analyzeDirectory("/var/t", sizes);
    EXPECT_THAT(sizes, ElementsAre(Pair("txt", 17)));
}

TEST_F(StorageAnalysisTest, WhatCannotBeReadIsInNoAnalysis) {
    d_.tree.file(d_.documents("a.txt"), 1);
    d_.tree.file(d_.documents("closed/b.txt"), 1);
    d_.files.failWhere(
        [&](Operation operation, const std::string& path) {
            return (operation == Operation::Attributes && path == d_.documents("a.txt")) ||
                   (operation == Operation::OpenDirectory && path == d_.documents("closed"));
        },
        EACCES);
    EXPECT_THAT(d_.engine.analyzeStorageByCategory().byExtension, IsEmpty());
}

TEST_F(StorageAnalysisTest, ATotalIsTheSumOfAllExtensions) {
    EXPECT_EQ(FileCleanerEngine::calculateTotalSize({}), 0U);
    EXPECT_EQ(FileCleanerEngine::calculateTotalSize({{"a", 1}, {"b", 10}}), 11U);
}

}  // namespace
}  // namespace sweepwright
