#include <cerrno>

#include <fmt/format.h>

#include "EngineTest.h"
#include "engine/FolderAnalysis.h"
#include "support/UntypedFileManager.h"

namespace sweepwright {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class FolderAnalysisTest : public EngineTest {
  protected:
    FolderAnalysis of(const std::string& folder) { return FolderAnalysis(d_.services(), folder); }

    static std::vector<std::string> pathsOf(const auto& entries) {
        std::vector<std::string> paths;
        for (const auto& entry : entries)
            paths.push_back(entry.path);
        return paths;
    }
};

TEST_F(FolderAnalysisTest, TheWholeDeviceIsReadOnceThoughLinksLeadBackIntoIt) {
    d_.tree.file("/data/a", 10);
    d_.tree.file("/data/.hidden", 20);
    d_.tree.link("/data/up", "..");
    d_.tree.link("/again", "data");
    d_.tree.link("/b", "data/a");
    EXPECT_THAT(pathsOf(of("/").largeFiles(10)), ElementsAre("/data/.hidden", "/data/a"));
    EXPECT_THAT(of("/").duplicates(), SizeIs(0));
    EXPECT_EQ(of("/").extensions().totalAnalyzed, 30U);
}

TEST_F(FolderAnalysisTest, LinksAreLeftOutWhereTheListingDoesNotTellThem) {
    d_.tree.file("/data/a", 10);
    d_.tree.link("/data/b", "a");
    d_.tree.link("/data/up", "..");
    test::UntypedFileManager untyped(d_.files);
    FolderAnalysis analysis(d_.services().over(untyped, d_.eraser), "/data");
    EXPECT_THAT(pathsOf(analysis.largeFiles(1)), ElementsAre("/data/a"));
}

TEST_F(FolderAnalysisTest, AFolderThatIsNamedByALinkIsTheOneItLeadsTo) {
    d_.tree.file("/data/a", 10);
    d_.tree.link("/link", "data");
    EXPECT_THAT(pathsOf(of("/link").largeFiles(1)), ElementsAre("/link/a"));
}

TEST_F(FolderAnalysisTest, OfManyLargeFilesTheLargestAreGiven) {
    for (int i = 1; i <= 120; ++i)
        d_.tree.file(fmt::format("/data/{}", i), static_cast<std::uint64_t>(i));
    const auto files = of("/data").largeFiles(1);
    ASSERT_THAT(files, SizeIs(FileCleanerEngine::kMaxLargeFiles));
    EXPECT_EQ(files.front().size, 120U);
    EXPECT_EQ(files.back().size, 21U);
}

TEST_F(FolderAnalysisTest, FilesOfEqualSizeFormAGroup) {
    d_.tree.file("/data/a", 7);
    d_.tree.file("/data/sub/b", 7);
    d_.tree.file("/data/c", 8);
    const auto groups = of("/data").duplicates();
    ASSERT_THAT(groups, SizeIs(1));
    EXPECT_THAT(pathsOf(groups[0]), testing::UnorderedElementsAre("/data/a", "/data/sub/b"));
}

TEST_F(FolderAnalysisTest, UsageIsWhatTheFolderHoldsLargestFirst) {
    d_.tree.file("/data/small/a", 10);
    d_.tree.file("/data/small/.hidden", 500);
    d_.tree.file("/data/large/a/b", 100);
    d_.tree.file("/data/file", 50);
    d_.tree.file("/data/.hidden/a", 1000);
    d_.tree.link("/data/link", "large");
    std::vector<std::pair<std::string, std::uint64_t>> sizes;
    for (const auto& [name, usage] : of("/data").usage()) {
        sizes.emplace_back(name, usage.size);
        EXPECT_EQ(usage.formatted, StorageAnalyzer::formatBytes(usage.size));
    }
    EXPECT_THAT(sizes, ElementsAre(std::pair("large", 100U), std::pair("file", 50U),
                                   std::pair("small", 10U)));
}

TEST_F(FolderAnalysisTest, WhatIsNoFolderThatCanBeReadIsAnError) {
    d_.tree.file("/data/file", 1);
    EXPECT_TRUE(of("/data").readiness().has_value());
    EXPECT_EQ(of("/data/file").readiness().error().code, ENOTDIR);
    const auto missing = of("/data/none").readiness();
    ASSERT_FALSE(missing.has_value());
    EXPECT_EQ(missing.error().code, ENOENT);
    EXPECT_THAT(missing.error().description, testing::HasSubstr("/data/none"));
}

}  // namespace
}  // namespace sweepwright
