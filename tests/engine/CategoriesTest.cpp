#include <set>
#include <string_view>

#include <gtest/gtest.h>

#include "engine/Categories.h"

namespace sweepwright {
namespace {

TEST(Categories, EachStandsAtItsValueAndIsFoundByIt) {
    ASSERT_EQ(categories().size(), 9U);
    for (std::size_t value = 0; value < categories().size(); ++value) {
        const Category& category = categories()[value];
        EXPECT_EQ(category.type, static_cast<CleanType>(value));
        EXPECT_EQ(categoryOf(category.type), &category);
    }
    EXPECT_EQ(categoryOf(CleanType::All), nullptr);
    EXPECT_EQ(categoryOf(CleanType::ThirdPartyApps), nullptr);
}

TEST(Categories, NoTwoShareAWordAKeyAFigureOrAName) {
    std::set<std::string_view> words;
    std::set<std::string_view> keys;
    std::set<std::string_view> names;
    ScanResult figures;
    for (const Category& category : categories()) {
        EXPECT_TRUE(words.insert(category.word).second) << category.word;
        EXPECT_TRUE(keys.insert(category.key).second) << category.key;
        EXPECT_TRUE(names.insert(nameOf(category.type).value()).second) << category.word;
        EXPECT_EQ(figures.*category.figure, 0U) << category.word;
        figures.*category.figure = 1;
    }
}

TEST(Categories, AScanTellsItsFiguresByTheirKeys) {
    ScanResult figures;
    std::uint64_t next = 0;
    for (const Category& category : categories())
        figures.*category.figure = ++next;
    figures.totalSize = 99;
    const auto entries = figures.entries();
    ASSERT_EQ(entries.size(), categories().size() + 1);
    for (std::size_t at = 0; at < categories().size(); ++at) {
        EXPECT_EQ(entries[at].first, categories()[at].key);
        EXPECT_EQ(entries[at].second, at + 1);
    }
    EXPECT_EQ(entries.back(), (std::pair<std::string, std::uint64_t>("totalSize", 99)));
}

}  // namespace
}  // namespace sweepwright
