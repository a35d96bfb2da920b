#include <algorithm>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "localization/LanguageManager.h"
#include "localization/LocalizationKeys.h"
#include "platform/image/Image.h"
#include "platform/system/ResourceBundle.h"
#include "platform/system/StringsTable.h"

namespace sweepwright::localization {
namespace {

using platform::ResourceBundle;
using platform::StringsTable;
using test::kLocalizationKeys;
using test::LocalizationKey;

/// The specifiers in a text, in their order, divided by one blank.
std::string specifiersOf(std::string_view text) {
    std::string out;
    for (std::size_t at = text.find('%'); at < text.size(); at = text.find('%', at)) {
        const std::size_t end = text.find_first_of("@%dufsxegc", at + 1);
        if (!out.empty()) out += ' ';
        out += text.substr(at, end == std::string_view::npos ? end : end + 1 - at);
        at = end == std::string_view::npos ? text.size() : end + 1;
    }
    return out;
}

class LocalizedTables : public testing::TestWithParam<std::string> {
  protected:
    /// The product's own table of the language under test.
    static StringsTable table() {
        const std::string file = GetParam() + ".lproj/Localizable.strings";
        const auto bytes = ResourceBundle::main().readFile(file);
        if (!bytes) {
            ADD_FAILURE() << bytes.error().description;
            return {};
        }
        return StringsTable::parse(*bytes).value();
    }
};

TEST_P(LocalizedTables, HoldEveryKeyOfTheInterfaceAndNoOther) {
    std::set<std::string, std::less<>> expected;
    for (const LocalizationKey& key : kLocalizationKeys)
        expected.emplace(key.key);
    std::set<std::string, std::less<>> found;
    const StringsTable texts = table();
    for (const auto& [key, text] : texts.entries())
        found.insert(key);
    EXPECT_EQ(found, expected);
}

TEST_P(LocalizedTables, AreWithoutABrokenLineOrAKeyTwice) {
    const StringsTable texts = table();
    for (const auto& problem : texts.problems()) {
        ADD_FAILURE() << "line " << problem.line << ": " << problem.why;
    }
    EXPECT_FALSE(texts.entries().empty());
}

TEST_P(LocalizedTables, KeepTheSpecifiersThatTheScreensFillIn) {
    const StringsTable texts = table();
    for (const LocalizationKey& key : kLocalizationKeys) {
        const std::string* const text = texts.find(key.key);
        ASSERT_NE(text, nullptr) << key.key;
        EXPECT_EQ(specifiersOf(*text), key.specifiers) << key.key;
    }
}

TEST_P(LocalizedTables, LeaveNoTextEmpty) {
    const StringsTable texts = table();
    for (const auto& [key, text] : texts.entries()) {
        EXPECT_NE(text.find_first_not_of(" \n"), std::string::npos) << key;
    }
}

TEST_P(LocalizedTables, EndTheWarningInABlankLineBecauseTheMessageFollowsAtOnce) {
    const StringsTable texts = table();
    const std::string* const warning = texts.find("Clean App Cache Warning");
    ASSERT_NE(warning, nullptr);
    EXPECT_TRUE(warning->ends_with("\n\n"));
}

INSTANTIATE_TEST_SUITE_P(BothLanguages, LocalizedTables, testing::Values("en", "zh-Hans"),
                         [](const auto& language) {
                             return language.param == "en" ? "English" : "Chinese";
                         });

TEST(LocalizationKeys, StandOnce) {
    std::set<std::string_view> keys;
    for (const LocalizationKey& key : kLocalizationKeys) {
        EXPECT_TRUE(keys.insert(key.key).second) << key.key;
    }
}

TEST(SpecifiersOfTheTest, AreFoundInTheirOrder) {
    EXPECT_EQ(specifiersOf("nothing"), "");
    EXPECT_EQ(specifiersOf("a %@, %lu and %.0f%%\n%2$@"), "%@ %lu %.0f %% %2$@");
    EXPECT_EQ(specifiersOf("100%"), "%");
}

TEST(Resources, HoldAFolderForEverySupportedLanguage) {
    for (const SupportedLanguage& language : LanguageManager::supportedLanguages()) {
        EXPECT_TRUE(ResourceBundle::main().folderResource(language.code, "lproj").has_value())
            << language.code;
    }
}

TEST(Resources, HoldTheOwnIconAsAPictureThatWeCanRead) {
    ASSERT_TRUE(ResourceBundle::main().pathForResource("icon1", "png", "icon").has_value());
    const auto bytes = ResourceBundle::main().readFile("icon/icon1.png");
    ASSERT_TRUE(bytes.has_value()) << bytes.error().description;
    const auto icon = platform::decode(*bytes);
    ASSERT_TRUE(icon.has_value()) << icon.error().description;
    EXPECT_EQ(icon->width, icon->height);
    EXPECT_GE(icon->width, 180U);  // 50 points, drawn on the densest screens, need 150
    EXPECT_TRUE(ResourceBundle::main().pathForResource("icon1", "svg", "icon").has_value());
}

}  // namespace
}  // namespace sweepwright::localization
