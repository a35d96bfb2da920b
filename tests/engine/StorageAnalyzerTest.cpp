#include <cerrno>
#include <limits>
#include <map>

#include "EngineTest.h"
#include "engine/StorageAnalyzer.h"

namespace sweepwright {
namespace {

using platform::FileSystemAttributes;
using test::Operation;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kGiga = std::uint64_t{1} << 30U;

/// A device whose volumes tell what the test says.
class Volumes final : public platform::ForwardingFileManager {
  public:
    using ForwardingFileManager::ForwardingFileManager;
    using Answer = platform::Result<std::optional<FileSystemAttributes>>;

    std::map<std::string, Answer> answers;

    Answer fileSystemAttributes(const std::string& path) override { return answers.at(path); }
};

class StorageAnalyzerTest : public EngineTest {
  protected:
    std::optional<DeviceStorageInfo> infoOf(Volumes::Answer home, Volumes::Answer root) {
        Volumes volumes(d_.tree.files());
        volumes.answers.emplace(test::EngineDevice::kHome, std::move(home));
        volumes.answers.emplace("/", std::move(root));
        return StorageAnalyzer(d_.device, volumes).getDeviceStorageInfo();
    }
    std::optional<DeviceStorageInfo> infoOf(std::uint64_t size, std::uint64_t free) {
        return infoOf(FileSystemAttributes{size, free}, std::nullopt);
    }
    static Volumes::Answer failed() {
        return std::unexpected(platform::Error{"Test", 5, "the volume is gone"});
    }
};

// --- Byte texts ---

TEST(FormatBytes, HasUnitsOf1024) {
    const std::map<std::uint64_t, const char*> texts = {
        {0, "0 B"},
        {1, "1 B"},
        {1023, "1023 B"},
        {1024, "1.0 KB"},
        {1536, "1.5 KB"},
        {1'048'575, "1024.0 KB"},
        {1'048'576, "1.00 MB"},
        {1'572'864, "1.50 MB"},
        {1'073'741'823, "1024.00 MB"},
        {1'073'741'824, "1.00 GB"},
        {2 * kGiga, "2.00 GB"},
        {100 * kGiga - 1, "100.00 GB"},
        {100 * kGiga, "100.0 GB"},
        {128 * kGiga, "128.0 GB"},
        {5'000 * kGiga, "5000.0 GB"},
        {std::numeric_limits<std::uint64_t>::max(), "17179869184.0 GB"},
    };
    for (const auto& [bytes, text] : texts)
        EXPECT_EQ(StorageAnalyzer::formatBytes(bytes), text) << bytes;
}

TEST(FormatBytesDecimal, HasUnitsOf1000) {
    const std::map<std::uint64_t, const char*> texts = {
        {0, "0 B"},
        {999, "999 B"},
        {1'000, "1.0 KB"},
        {1'500, "1.5 KB"},
        {999'999, "1000.0 KB"},
        {1'000'000, "1.00 MB"},
        {999'999'999, "1000.00 MB"},
        {1'000'000'000, "1.00 GB"},
        {99'999'999'999, "100.00 GB"},
        {100'000'000'000, "100.0 GB"},
    };
    for (const auto& [bytes, text] : texts)
        EXPECT_EQ(StorageAnalyzer::formatBytesDecimal(bytes), text) << bytes;
}

// --- The volume ---

TEST_F(StorageAnalyzerTest, AReserveOfFivePercentIsKeptBack) {
    const auto info = infoOf(100 * kGiga, 20 * kGiga);
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->totalSpace, 100 * kGiga);
    EXPECT_EQ(info->freeSpace, 20 * kGiga);
    EXPECT_EQ(info->availableSpace, 15 * kGiga);
    EXPECT_EQ(info->usedSpace, 80 * kGiga);
    EXPECT_EQ(info->userUsedSpace, 85 * kGiga);
    EXPECT_EQ(info->purgeableSpace, 5 * kGiga);
    EXPECT_DOUBLE_EQ(info->usagePercentage, 80);
    EXPECT_DOUBLE_EQ(info->userUsagePercentage, 85);
    EXPECT_EQ(info->totalSpaceFormatted, "100.0 GB");
    EXPECT_EQ(info->freeSpaceFormatted, "20.00 GB");
    EXPECT_EQ(info->availableSpaceFormatted, "15.00 GB");
    EXPECT_EQ(info->usedSpaceFormatted, "80.00 GB");
    EXPECT_EQ(info->userUsedSpaceFormatted, "85.00 GB");
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(StorageAnalyzerTest, WithLessFreeThanTheReserveNineTenthsOfItAreAvailable) {
    constexpr std::uint64_t kGB = 1'000'000'000;
    const auto info = infoOf(100 * kGB, 3 * kGB);
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->availableSpace, 2'700'000'000U);
    EXPECT_EQ(info->userUsedSpace, 97'300'000'000U);
    EXPECT_EQ(info->purgeableSpace, 5 * kGB);
    EXPECT_EQ(info->usedSpace, 97 * kGB);
    EXPECT_DOUBLE_EQ(info->userUsagePercentage, 97.3);
}

TEST_F(StorageAnalyzerTest, WithExactlyTheReserveFreeNineTenthsOfItAreAvailable) {
    const auto info = infoOf(1'000, 50);
    EXPECT_EQ(info->availableSpace, 45U);
    EXPECT_EQ(infoOf(1'000, 51)->availableSpace, 1U);
}

TEST_F(StorageAnalyzerTest, SharesAreCutToWholeBytes) {
    EXPECT_EQ(infoOf(39, 20)->purgeableSpace, 1U);      // 1.95
    EXPECT_EQ(infoOf(1'000, 19)->availableSpace, 17U);  // 17.1
}

TEST_F(StorageAnalyzerTest, AVolumeOfNothingIsUsedByNothing) {
    const auto info = infoOf(0, 0);
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->usagePercentage, 0);
    EXPECT_EQ(info->userUsagePercentage, 0);
    EXPECT_EQ(info->totalSpaceFormatted, "0 B");
}

TEST_F(StorageAnalyzerTest, WhereTheHomesVolumeFailsTheRootsPlainFiguresStand) {
    const auto info = infoOf(failed(), FileSystemAttributes{100 * kGiga, 20 * kGiga});
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->totalSpace, 100 * kGiga);
    EXPECT_EQ(info->freeSpace, 20 * kGiga);
    EXPECT_EQ(info->availableSpace, 20 * kGiga);
    EXPECT_EQ(info->usedSpace, 80 * kGiga);
    EXPECT_EQ(info->userUsedSpace, 80 * kGiga);
    EXPECT_EQ(info->purgeableSpace, 0U);
    EXPECT_DOUBLE_EQ(info->usagePercentage, 80);
    EXPECT_DOUBLE_EQ(info->userUsagePercentage, 80);
    EXPECT_EQ(info->totalSpaceFormatted, "100.0 GB");
    EXPECT_EQ(info->availableSpaceFormatted, info->freeSpaceFormatted);
    EXPECT_EQ(info->userUsedSpaceFormatted, info->usedSpaceFormatted);
    EXPECT_EQ(info->usedSpaceFormatted, "80.00 GB");
    EXPECT_THAT(lines(), ElementsAre("⚠️ 存储信息获取失败: the volume is gone"));
}

TEST_F(StorageAnalyzerTest, WhereTheRootFailsTooThereAreNoFigures) {
    EXPECT_FALSE(infoOf(failed(), failed()).has_value());
    EXPECT_FALSE(infoOf(failed(), std::nullopt).has_value());
    EXPECT_FALSE(infoOf(failed(), FileSystemAttributes{0, 0})->usagePercentage > 0);
}

TEST_F(StorageAnalyzerTest, AVolumeThatDoesNotTellHasNoFiguresAndTheRootIsNotAsked) {
    EXPECT_FALSE(infoOf(std::nullopt, FileSystemAttributes{100, 20}).has_value());
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(StorageAnalyzerTest, TheRealVolumeHasFigures) {
    const auto info = d_.storage.getDeviceStorageInfo();
    ASSERT_TRUE(info.has_value());
    EXPECT_GT(info->totalSpace, 0U);
    EXPECT_LE(info->freeSpace, info->totalSpace);
    EXPECT_LE(info->availableSpace, info->freeSpace);
}

// --- The home directory ---

TEST_F(StorageAnalyzerTest, ThreeTopFoldersOfTheHomeAreMeasured) {
    d_.tree.file(d_.documents("a"), 1'536);
    d_.tree.file(d_.library("b"), 10);
    d_.tree.file(d_.temporary("c"), 100);
    d_.tree.file(d_.home("SystemData/d"), 1'000);
    const auto usage = d_.storage.analyzeDirectoryUsage();
    ASSERT_EQ(usage.size(), 3U);
    EXPECT_EQ(usage[0].first, "Documents");
    EXPECT_EQ(usage[0].second.size, 1'536U);
    EXPECT_EQ(usage[0].second.formatted, "1.5 KB");
    EXPECT_EQ(usage[1].first, "Library");
    EXPECT_EQ(usage[1].second.size, 10U);
    EXPECT_EQ(usage[1].second.formatted, "10 B");
    EXPECT_EQ(usage[2].first, "tmp");
    EXPECT_EQ(usage[2].second.size, 100U);
}

TEST_F(StorageAnalyzerTest, ASizeLeavesOutHiddenEntriesAndLinksAndAsksNoWhitelist) {
    d_.tree.file("/var/t/a", 1);
    d_.tree.file("/var/t/kept/b", 10);
    d_.tree.file("/var/t/.hidden", 100);
    d_.tree.link("/var/t/link", "/var/t/kept");
    d_.tree.file("/var/t/unreadable", 1'000);
    d_.protect("/var/t/kept");
    log_.clear();
    failAbout("/var/t/unreadable", {Operation::AttributesAt}, EIO);
    EXPECT_EQ(d_.storage.sizeOfDirectoryAtPath("/var/t"), 11U);
    EXPECT_EQ(d_.storage.sizeOfDirectoryAtPath("/var/missing"), 0U);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(StorageAnalyzerTest, ASizeTellsOfItsDepth) {
    d_.tree.file("/var/t/a", 1);
    d_.tree.file("/var/t/sub/b", 10);
    EXPECT_EQ(d_.storage.sizeOfDirectoryAtPath("/var/t", 0), 0U);
    EXPECT_EQ(d_.storage.sizeOfDirectoryAtPath("/var/t", 1), 1U);
    EXPECT_THAT(lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: /var/t",
                                     "⚠️ 达到最大递归深度，跳过路径: /var/t/sub"));
}

TEST_F(StorageAnalyzerTest, LargeFilesOfTheHomeComeLargestFirst) {
    d_.tree.file(d_.documents("a"), 1'536);
    d_.tree.file(d_.library("sub/b"), 4'096);
    d_.tree.file(d_.home("exact"), 1'000);
    d_.tree.file(d_.home("small"), 999);
    d_.tree.file(d_.home(".hidden/c"), 9'000);
    d_.tree.file(d_.home(".d"), 9'000);
    d_.tree.file("/var/elsewhere/e", 9'000);
    d_.tree.link(d_.home("link"), "/var/elsewhere");
    const auto found = d_.storage.getLargeFiles(1'000);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].path, d_.library("sub/b"));
    EXPECT_EQ(found[0].name, "b");
    EXPECT_EQ(found[0].size, 4'096U);
    EXPECT_EQ(found[0].formatted, "4.0 KB");
    EXPECT_EQ(found[1].path, d_.documents("a"));
    EXPECT_EQ(found[2].path, d_.home("exact"));
}

TEST_F(StorageAnalyzerTest, ASearchOfDepthOneFindsTheFilesOfTheTopFolderOnly) {
    d_.tree.file("/var/t/a", 10);
    d_.tree.file("/var/t/sub/b", 10);
    std::vector<SizedFile> results;
    d_.storage.findLargeFilesInDirectory("/var/t", 1, results, 1);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].path, "/var/t/a");
    d_.storage.findLargeFilesInDirectory("/var/t", 1, results, 0);
    EXPECT_EQ(results.size(), 1U);
    EXPECT_THAT(lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: /var/t/sub",
                                     "⚠️ 达到最大递归深度，跳过路径: /var/t"));
    d_.storage.findLargeFilesInDirectory("/var/t", 1, results);
    EXPECT_EQ(results.size(), 3U);
}

TEST_F(StorageAnalyzerTest, WhatCannotBeReadIsNoLargeFile) {
    d_.tree.file("/var/t/a", 10);
    d_.tree.file("/var/t/closed/b", 10);
    d_.files.failWhere(
        [](Operation operation, const std::string& path) {
            return (operation == Operation::Attributes && path == "/var/t/a") ||
                   (operation == Operation::OpenDirectory && path == "/var/t/closed");
        },
        EACCES);
    std::vector<SizedFile> results;
    d_.storage.findLargeFilesInDirectory("/var/t", 1, results);
    EXPECT_TRUE(results.empty());
}

}  // namespace
}  // namespace sweepwright
