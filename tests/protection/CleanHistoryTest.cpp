#include <chrono>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/text/DateText.h"
#include "protection/CleanHistoryManager.h"
#include "protection/CleanStatistics.h"
#include "protection/StoredDefaults.h"

namespace sweepwright {
namespace {

using namespace std::chrono_literals;
using platform::PropertyList;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using Dictionary = PropertyList::Dictionary;

constexpr std::string_view kHistoryKey = "CleanHistoryRecords";
constexpr const char* kUuid = "[0-9A-F]+-[0-9A-F]+-4[0-9A-F]+-[89AB][0-9A-F]+-[0-9A-F]+";

CleanHistoryItem::Date at(std::string_view text) {
    return platform::dateFromText(text).value();
}

class CleanHistory : public testing::Test {
  protected:
    test::StoredDefaults stored_;
    CleanHistoryItem::Date now_ = at("2026-03-04 05:06:07");
    CleanHistoryManager manager_{stored_.defaults, [this] { return now_; }};

    void save(CleanType type, std::uint64_t bytes, std::string_view name = {}) {
        EXPECT_TRUE(manager_.saveCleanHistoryWithType(type, bytes, name));
    }
    [[nodiscard]] PropertyList::Array entries() const {
        const auto value = stored_.defaults.object(kHistoryKey);
        return value && value->array() != nullptr ? *value->array() : PropertyList::Array();
    }
    void storeEntries(PropertyList::Array entries) {
        EXPECT_TRUE(stored_.defaults.set(kHistoryKey, std::move(entries)));
    }
    [[nodiscard]] std::vector<std::uint64_t> bytesListed() const {
        std::vector<std::uint64_t> bytes;
        for (const auto& item : manager_.getAllCleanHistory())
            bytes.push_back(item.cleanedBytes);
        return bytes;
    }
};

TEST_F(CleanHistory, AnEntryIsStoredUnderExactlyFiveKeys) {
    now_ += 789ms;
    save(CleanType::SystemLogs, 18'000'000'000'000'000'000U, "日志");
    const auto kept = entries();
    ASSERT_EQ(kept.size(), 1U);
    const Dictionary* entry = kept[0].dictionary();
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->size(), 5U);
    EXPECT_THAT(*entry->find("identifier")->string(), MatchesRegex(kUuid));
    EXPECT_EQ(entry->find("cleanType")->integer(), 3);
    EXPECT_EQ(*entry->find("cleanTypeName")->string(), "日志");
    EXPECT_EQ(entry->find("cleanedBytes")->unsignedInteger(), 18'000'000'000'000'000'000U);
    EXPECT_EQ(*entry->find("cleanDate")->string(), "2026-03-04 05:06:07");
}

TEST_F(CleanHistory, AnEntryReadsBackToTheWholeSecond) {
    now_ += 789ms;
    save(CleanType::ThirdPartyApps, 5, "某应用");
    const auto items = manager_.getAllCleanHistory();
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].cleanDate, at("2026-03-04 05:06:07"));
    EXPECT_EQ(items[0].cleanType, CleanType::ThirdPartyApps);
    EXPECT_EQ(items[0].cleanTypeName, "某应用");
    EXPECT_EQ(items[0].cleanedBytes, 5U);
}

TEST_F(CleanHistory, ZeroBytesAreNotRecorded) {
    save(CleanType::Cache, 0);
    EXPECT_FALSE(stored_.defaults.object(kHistoryKey));
    save(CleanType::Cache, 1);
    save(CleanType::Cache, 0);
    EXPECT_EQ(entries().size(), 1U);
}

TEST_F(CleanHistory, AnEmptyNameBecomesTheTypes) {
    save(CleanType::ThirdPartyApps, 1);
    save(static_cast<CleanType>(12), 1);
    save(static_cast<CleanType>(-1), 1);
    std::vector<std::string> names;
    for (const auto& item : manager_.getAllCleanHistory())
        names.push_back(item.cleanTypeName);
    EXPECT_THAT(names, ElementsAre("未知类型", "未知类型", "第三方应用缓存"));
}

TEST_F(CleanHistory, EveryTypeHasItsName) {
    const std::vector<std::string_view> names{"缓存文件",     "临时文件",       "Cookie & 网页数据",
                                              "系统日志",     "下载文件",       "图片缓存",
                                              "数据库文件",   "崩溃报告",       "离线数据",
                                              "一键清理全部", "第三方应用缓存", "未知类型"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(CleanHistoryManager::cleanTypeNameForType(static_cast<CleanType>(i)), names[i]);
    }
}

TEST_F(CleanHistory, TheHundredAndFirstEntryPushesTheFirstOut) {
    for (std::uint64_t i = 1; i <= 101; ++i)
        save(CleanType::Cache, i);
    const auto bytes = bytesListed();
    EXPECT_EQ(bytes.size(), 100U);
    EXPECT_EQ(bytes.front(), 101U);
    EXPECT_EQ(bytes.back(), 2U);
}

TEST_F(CleanHistory, AnOverlongStoredListIsCutAtTheNextEntry) {
    PropertyList::Array entries;
    for (int i = 1; i <= 150; ++i)
        entries.emplace_back(Dictionary{{"cleanedBytes", i}});
    storeEntries(std::move(entries));
    EXPECT_EQ(manager_.getAllCleanHistory().size(), 150U);
    save(CleanType::Cache, 1000);
    const auto kept = this->entries();
    ASSERT_EQ(kept.size(), 100U);
    EXPECT_EQ(kept.front().dictionary()->find("cleanedBytes")->integer(), 52);
    EXPECT_EQ(kept.back().dictionary()->find("cleanedBytes")->integer(), 1000);
}

TEST_F(CleanHistory, IsListedNewestFirstAndWithinASecondLastAddedFirst) {
    now_ = at("2026-05-01 00:00:00");
    save(CleanType::Cache, 1);
    now_ = at("2026-05-03 00:00:00");
    save(CleanType::Cache, 2);
    save(CleanType::Cache, 3);
    now_ = at("2026-05-02 00:00:00");  // the clock was set back
    save(CleanType::Cache, 4);
    EXPECT_THAT(bytesListed(), ElementsAre(3U, 2U, 4U, 1U));
    EXPECT_EQ(entries().front().dictionary()->find("cleanedBytes")->integer(), 1)
        << "stored oldest first";
}

TEST_F(CleanHistory, RecentIsTheNewestUpToTheLimit) {
    EXPECT_THAT(manager_.getRecentCleanHistory(5), IsEmpty());
    for (std::uint64_t i = 1; i <= 3; ++i)
        save(CleanType::Cache, i);
    EXPECT_THAT(manager_.getRecentCleanHistory(0), IsEmpty());
    EXPECT_EQ(manager_.getRecentCleanHistory(2).size(), 2U);
    EXPECT_EQ(manager_.getRecentCleanHistory(2)[0].cleanedBytes, 3U);
    EXPECT_EQ(manager_.getRecentCleanHistory(3).size(), 3U);
    EXPECT_EQ(manager_.getRecentCleanHistory(99).size(), 3U);
}

TEST_F(CleanHistory, ADateThatDoesNotParseReadsAsNowAndSortsFirst) {
    now_ = at("2026-01-01 00:00:00");
    save(CleanType::Cache, 1);
    auto kept = entries();
    kept.insert(kept.begin(),
                Dictionary{{"identifier", "odd"}, {"cleanedBytes", 2}, {"cleanDate", "yesterday"}});
    storeEntries(std::move(kept));
    now_ = at("2026-02-02 02:02:02");
    const auto items = manager_.getAllCleanHistory();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].identifier, "odd");
    EXPECT_EQ(items[0].cleanDate, now_);
}

TEST_F(CleanHistory, ADamagedEntryIsRepairedOnReadingAndNotDropped) {
    storeEntries({Dictionary(), Dictionary{{"identifier", 7},
                                           {"cleanType", "three"},
                                           {"cleanTypeName", PropertyList::Data{"x"}},
                                           {"cleanedBytes", -5},
                                           {"cleanDate", 12}}});
    const auto items = manager_.getAllCleanHistory();
    ASSERT_EQ(items.size(), 2U);
    for (const auto& item : items) {
        EXPECT_THAT(item.identifier, MatchesRegex(kUuid));
        EXPECT_EQ(item.cleanType, CleanType::Cache);
        EXPECT_EQ(item.cleanTypeName, "未知类型");
        EXPECT_EQ(item.cleanedBytes, 0U);
        EXPECT_EQ(item.cleanDate, now_);
    }
    EXPECT_NE(items[0].identifier, items[1].identifier);
}

TEST_F(CleanHistory, AnElementThatIsNoEntryIsSkippedButKept) {
    storeEntries({"stray", Dictionary{{"identifier", "a"}}});
    EXPECT_EQ(manager_.getAllCleanHistory().size(), 1U);
    EXPECT_EQ(manager_.getStatistics().totalCleanCount, 1);
    save(CleanType::Cache, 1);
    EXPECT_TRUE(manager_.deleteHistoryItem({.identifier = "a"}));
    ASSERT_EQ(entries().size(), 2U);
    EXPECT_EQ(entries()[0], PropertyList("stray"));
}

TEST_F(CleanHistory, DeletingRemovesEveryEntryOfTheIdentifierAndNoOther) {
    storeEntries({Dictionary{{"identifier", "twice"}, {"cleanedBytes", 1}},
                  Dictionary{{"identifier", "once"}, {"cleanedBytes", 2}},
                  Dictionary{{"identifier", "twice"}, {"cleanedBytes", 3}}, Dictionary()});
    EXPECT_TRUE(manager_.deleteHistoryItem({.identifier = "twice"}));
    ASSERT_EQ(entries().size(), 2U);
    EXPECT_EQ(entries()[0].dictionary()->find("cleanedBytes")->integer(), 2);
    EXPECT_TRUE(manager_.deleteHistoryItem({.identifier = "none"}));
    EXPECT_EQ(entries().size(), 2U);
}

TEST_F(CleanHistory, DeletingFromAnEmptyHistoryStoresNothing) {
    EXPECT_TRUE(manager_.deleteHistoryItem({.identifier = "a"}));
    EXPECT_FALSE(stored_.defaults.object(kHistoryKey));
}

TEST_F(CleanHistory, ClearingRemovesTheKey) {
    save(CleanType::Cache, 1);
    EXPECT_TRUE(manager_.clearAllHistory());
    EXPECT_FALSE(stored_.defaults.object(kHistoryKey));
    EXPECT_THAT(manager_.getAllCleanHistory(), IsEmpty());
}

TEST_F(CleanHistory, StatisticsOfAnEmptyHistoryAreNothing) {
    const auto statistics = manager_.getStatistics();
    EXPECT_EQ(statistics.totalCleanedBytes, 0U);
    EXPECT_EQ(statistics.totalCleanCount, 0);
    EXPECT_FALSE(statistics.firstCleanDate);
    EXPECT_FALSE(statistics.lastCleanDate);
}

TEST_F(CleanHistory, StatisticsDescribeTheEntriesKept) {
    now_ = at("2026-05-01 00:00:00");
    save(CleanType::Cache, 100);
    now_ = at("2026-05-03 00:00:00");
    save(CleanType::Cache, 50);
    const auto statistics = manager_.getStatistics();
    EXPECT_EQ(statistics.totalCleanedBytes, 150U);
    EXPECT_EQ(statistics.totalCleanCount, 2);
    EXPECT_EQ(statistics.firstCleanDate, at("2026-05-01 00:00:00"));
    EXPECT_EQ(statistics.lastCleanDate, at("2026-05-03 00:00:00"));
}

TEST_F(CleanHistory, TwoManagersOfOneFileLoseNothing) {
    CleanHistoryManager other(stored_.defaults, [this] { return now_; });
    save(CleanType::Cache, 1);
    EXPECT_TRUE(other.saveCleanHistoryWithType(CleanType::Cache, 2));
    EXPECT_THAT(bytesListed(), ElementsAre(2U, 1U));
}

TEST_F(CleanHistory, AnEntryThatCanNotBeStoredIsAnError) {
    stored_.files.full = true;
    EXPECT_FALSE(manager_.saveCleanHistoryWithType(CleanType::Cache, 1));
}

TEST(CleanHistoryItem, NoDictionaryYieldsNoItem) {
    EXPECT_FALSE(CleanHistoryItem::initWithDictionary(nullptr, {}));
}

TEST(CleanHistoryItem, TheStoredFormFillsWhatIsMissing) {
    const Dictionary stored = CleanHistoryItem{}.toDictionary();
    EXPECT_THAT(*stored.find("identifier")->string(), MatchesRegex(kUuid));
    EXPECT_EQ(*stored.find("cleanTypeName")->string(), "未知类型");
}

class RunningTotals : public testing::Test {
  protected:
    test::StoredDefaults stored_;
    CleanHistoryItem::Date now_ = at("2026-03-04 05:06:07");
    CleanStatistics statistics_{stored_.defaults, [this] { return now_; }};
};

TEST_F(RunningTotals, AreNothingAtFirst) {
    const auto totals = statistics_.totals();
    EXPECT_EQ(totals.totalCleanedBytes, 0U);
    EXPECT_EQ(totals.cleanCount, 0);
    EXPECT_FALSE(totals.lastCleanDate);
}

TEST_F(RunningTotals, AddUpAndHoldTheTimeOfTheLast) {
    EXPECT_TRUE(statistics_.recordClean(100));
    now_ += 1h;
    EXPECT_TRUE(statistics_.recordClean(50));
    const auto totals = statistics_.totals();
    EXPECT_EQ(totals.totalCleanedBytes, 150U);
    EXPECT_EQ(totals.cleanCount, 2);
    EXPECT_EQ(totals.lastCleanDate, "2026-03-04 06:06:07");
    EXPECT_EQ(stored_.defaults.unsignedInteger("totalCleanedBytes"), 150U);
    EXPECT_EQ(stored_.defaults.integer("cleanCount"), 2);
    EXPECT_EQ(stored_.defaults.string("lastCleanDate"), "2026-03-04 06:06:07");
}

TEST_F(RunningTotals, HoldMoreThanASignedNumberCan) {
    constexpr std::uint64_t kHuge = std::uint64_t{1} << 63U;
    EXPECT_TRUE(statistics_.recordClean(kHuge));
    EXPECT_TRUE(statistics_.recordClean(5));
    EXPECT_EQ(statistics_.totals().totalCleanedBytes, kHuge + 5);
}

TEST_F(RunningTotals, StoredNonsenseCountsAsNothing) {
    ASSERT_TRUE(stored_.defaults.set("totalCleanedBytes", "many"));
    ASSERT_TRUE(stored_.defaults.set("cleanCount", PropertyList::Array()));
    EXPECT_TRUE(statistics_.recordClean(7));
    EXPECT_EQ(statistics_.totals().totalCleanedBytes, 7U);
    EXPECT_EQ(statistics_.totals().cleanCount, 1);
}

TEST_F(RunningTotals, ACountThatIsFullStays) {
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    ASSERT_TRUE(stored_.defaults.set("cleanCount", kMost));
    EXPECT_TRUE(statistics_.recordClean(7));
    EXPECT_EQ(statistics_.totals().cleanCount, kMost);
}

TEST_F(RunningTotals, AreApartFromTheHistory) {
    CleanHistoryManager history(stored_.defaults);
    EXPECT_TRUE(statistics_.recordClean(7));
    EXPECT_TRUE(history.saveCleanHistoryWithType(CleanType::Cache, 7));
    EXPECT_TRUE(history.clearAllHistory());
    EXPECT_EQ(statistics_.totals().totalCleanedBytes, 7U);
}

TEST_F(RunningTotals, AFailedWriteIsAnErrorAndChangesNothing) {
    EXPECT_TRUE(statistics_.recordClean(7));
    stored_.files.full = true;
    EXPECT_FALSE(statistics_.recordClean(7));
    EXPECT_EQ(statistics_.totals().totalCleanedBytes, 7U);
}

}  // namespace
}  // namespace sweepwright
