#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

#include "localization/LanguageManager.h"
#include "platform/device/UserDefaults.h"
#include "platform/queue/NotificationCenter.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::localization {
namespace {

using platform::NotificationCenter;
using platform::PropertyList;
using platform::ResourceBundle;
using platform::UserDefaults;

constexpr const char* kDefaultsFile = "/var/mobile/Library/Preferences/com.sweepwright.app.plist";

class LanguageManagerTest : public testing::Test {
  protected:
    void SetUp() override {
        resource("zh-Hans.lproj/Localizable.strings",
                 "\"Tab Home\" = \"首页\";\n\"Empty\" = \"\";");
        resource("en.lproj/Localizable.strings", "\"Tab Home\" = \"Home\";\n\"OK\" = \"OK\";");
        resource("Localizable.strings", "\"Tab Home\" = \"the main bundle's\";");
    }

    void resource(const std::string& path, std::string_view content) {
        const std::filesystem::path at = std::filesystem::path(resources_.path()) / path;
        std::filesystem::create_directories(at.parent_path());
        std::ofstream(at, std::ios::binary) << content;
    }

    void removeResource(const std::string& path) {
        std::filesystem::remove_all(std::filesystem::path(resources_.path()) / path);
    }

    LanguageManager started(const std::vector<std::string>& preferred = {"en-US"}) {
        return {defaults_, notifications_, ResourceBundle(resources_.path()), preferred};
    }

    std::string storedLanguage() { return defaults_.string("AppLanguage").value_or("(none)"); }

    test::TemporaryDevice device_;
    test::TemporaryFolder resources_;
    UserDefaults defaults_{device_.files(), kDefaultsFile};
    NotificationCenter notifications_;
};

// --- The first start ---

TEST_F(LanguageManagerTest, AnyChineseAsFirstPreferredLanguageGivesSimplifiedChinese) {
    for (const char* const preferred : {"zh-Hant-TW", "zh-Hans-CN", "zh-HK", "zh"}) {
        ASSERT_TRUE(defaults_.remove("AppLanguage").has_value());
        EXPECT_EQ(started({preferred, "en"}).currentLanguage(), "zh-Hans") << preferred;
        EXPECT_EQ(storedLanguage(), "zh-Hans") << preferred;
    }
}

TEST_F(LanguageManagerTest, AnyOtherFirstPreferredLanguageGivesEnglish) {
    for (const char* const preferred : {"en-GB", "fr-FR", "ja", "", "ZH-hans"}) {
        ASSERT_TRUE(defaults_.remove("AppLanguage").has_value());
        EXPECT_EQ(started({preferred, "zh-Hans"}).currentLanguage(), "en") << preferred;
    }
    ASSERT_TRUE(defaults_.remove("AppLanguage").has_value());
    EXPECT_EQ(started({}).currentLanguage(), "en");
}

TEST_F(LanguageManagerTest, TheFirstStartStoresTheLanguageAndAnnouncesIt) {
    int announced = 0;
    const auto observation =
        notifications_.observe("LanguageChangedNotification", [&](const auto& info) {
            EXPECT_TRUE(info.empty());
            EXPECT_EQ(storedLanguage(), "en");
            ++announced;
        });
    const LanguageManager manager = started();
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(defaults_.object("AppleLanguages"), PropertyList(PropertyList::Array{"en"}));
    EXPECT_EQ(manager.localizedStringForKey("Tab Home"), "Home");
}

// --- Later starts ---

TEST_F(LanguageManagerTest, TheStoredLanguageOutlivesTheProcessAndThePreferredLanguages) {
    ASSERT_TRUE(started({"en"}).setLanguage("zh-Hans").has_value());
    const LanguageManager again = started({"en"});
    EXPECT_EQ(again.currentLanguage(), "zh-Hans");
    EXPECT_EQ(again.localizedStringForKey("Tab Home"), "首页");
}

TEST_F(LanguageManagerTest, AStoredLanguageThatIsNotSupportedReadsAsChinese) {
    for (const char* const stored : {"fr", ""}) {
        ASSERT_TRUE(defaults_.set("AppLanguage", stored).has_value());
        EXPECT_EQ(started({"en"}).currentLanguage(), "zh-Hans") << stored;
        EXPECT_EQ(storedLanguage(), "zh-Hans") << stored;
    }
}

TEST_F(LanguageManagerTest, AStoredValueThatIsNoTextCountsAsNone) {
    ASSERT_TRUE(defaults_.set("AppLanguage", 5).has_value());
    EXPECT_EQ(started({"en"}).currentLanguage(), "en");
}

// --- Changes ---

TEST_F(LanguageManagerTest, AChangeIsStoredAppliedAndAnnouncedOnTheCallingThread) {
    LanguageManager manager = started();
    std::optional<std::thread::id> thread;
    std::string heard;
    const auto observation =
        notifications_.observe("LanguageChangedNotification", [&](const auto& info) {
            EXPECT_TRUE(info.empty());
            thread = std::this_thread::get_id();
            heard = manager.localizedStringForKey("Tab Home");
        });
    ASSERT_TRUE(manager.setLanguage("zh-Hans").has_value());
    EXPECT_EQ(thread, std::this_thread::get_id());
    EXPECT_EQ(heard, "首页");
    EXPECT_EQ(manager.currentLanguage(), "zh-Hans");
    EXPECT_EQ(manager.currentBundle().folder(), resources_.path() + "/zh-Hans.lproj");
    EXPECT_EQ(storedLanguage(), "zh-Hans");
    EXPECT_EQ(defaults_.object("AppleLanguages"), PropertyList(PropertyList::Array{"zh-Hans"}));
}

TEST_F(LanguageManagerTest, TheCurrentLanguageAndNoneChangeNothing) {
    LanguageManager manager = started();
    ASSERT_TRUE(defaults_.set("AppLanguage", "untouched").has_value());
    const auto observation = notifications_.observe(
        "LanguageChangedNotification", [](const auto&) { ADD_FAILURE() << "announced"; });
    EXPECT_TRUE(manager.setLanguage("en").has_value());
    EXPECT_TRUE(manager.setLanguage(std::nullopt).has_value());
    EXPECT_EQ(manager.currentLanguage(), "en");
    EXPECT_EQ(storedLanguage(), "untouched");
}

TEST_F(LanguageManagerTest, AnUnknownLanguageMeansChinese) {
    LanguageManager manager = started();
    ASSERT_TRUE(manager.setLanguage("fr").has_value());
    EXPECT_EQ(manager.currentLanguage(), "zh-Hans");
    EXPECT_EQ(storedLanguage(), "zh-Hans");
}

TEST_F(LanguageManagerTest, AnUnknownLanguageIsAChangeEvenWhenChineseIsCurrent) {
    LanguageManager manager = started({"zh"});
    int announced = 0;
    const auto observation =
        notifications_.observe("LanguageChangedNotification", [&](const auto&) { ++announced; });
    ASSERT_TRUE(manager.setLanguage("zh-Hant").has_value());
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(manager.currentLanguage(), "zh-Hans");
}

TEST_F(LanguageManagerTest, OtherUserDefaultsStayAsTheyAre) {
    ASSERT_TRUE(defaults_.set("cleanCount", 7).has_value());
    ASSERT_TRUE(started().setLanguage("zh-Hans").has_value());
    EXPECT_EQ(defaults_.integer("cleanCount"), 7);
}

TEST_F(LanguageManagerTest, ALanguageThatCannotBeStoredHoldsForThisRun) {
    device_.fileWith("/var/mobile/Library/Preferences", "no folder");
    LanguageManager manager = started({"en"});
    EXPECT_EQ(manager.currentLanguage(), "en");
    const auto stored = manager.setLanguage("zh-Hans");
    EXPECT_FALSE(stored.has_value());
    EXPECT_EQ(manager.localizedStringForKey("Tab Home"), "首页");
}

TEST_F(LanguageManagerTest, DamagedUserDefaultsAreLeftAlone) {
    const std::string folder = "/var/mobile/Library/Preferences";
    device_.fileWith(defaults_.file(), "damaged");
    LanguageManager manager = started({"en"});
    const auto stored = manager.setLanguage("zh-Hans");
    ASSERT_FALSE(stored.has_value());
    EXPECT_NE(stored.error().description.find(defaults_.file()), std::string::npos);
    EXPECT_EQ(manager.currentLanguage(), "zh-Hans");
    EXPECT_EQ(device_.content(defaults_.file()), "damaged");
    EXPECT_EQ(device_.files().contentsOfDirectory(folder)->size(), 1U) << "set aside";
}

// --- Names and texts ---

TEST_F(LanguageManagerTest, TheSupportedLanguagesAreChineseAndEnglish) {
    const auto& languages = LanguageManager::supportedLanguages();
    EXPECT_EQ(languages[0].code, "zh-Hans");
    EXPECT_EQ(languages[0].name, "中文简体");
    EXPECT_EQ(languages[0].nativeName, "中文简体");
    EXPECT_EQ(languages[1].code, "en");
    EXPECT_EQ(languages[1].name, "English");
    EXPECT_EQ(languages[1].nativeName, "English");
}

TEST_F(LanguageManagerTest, TheCurrentLanguageHasACodeAndAName) {
    LanguageManager manager = started();
    EXPECT_EQ(manager.currentLanguageCode(), "en");
    EXPECT_EQ(manager.currentLanguageName(), "English");
    ASSERT_TRUE(manager.setLanguage("zh-Hans").has_value());
    EXPECT_EQ(manager.currentLanguageCode(), "zh-Hans");
    EXPECT_EQ(manager.currentLanguageName(), "中文简体");
}

TEST_F(LanguageManagerTest, AMissingKeyIsItsOwnText) {
    const LanguageManager manager = started();
    EXPECT_EQ(manager.localizedStringForKey("Clean App Cache"), "Clean App Cache");
    EXPECT_EQ(manager.localizedStringForKey("OK"), "OK");
    EXPECT_EQ(manager.localizedStringForKey(""), "");
}

TEST_F(LanguageManagerTest, AnEmptyTextStaysEmpty) {
    EXPECT_EQ(started({"zh"}).localizedStringForKey("Empty"), "");
}

TEST_F(LanguageManagerTest, WithoutTheLanguagesFolderTheMainBundlesTableHolds) {
    removeResource("en.lproj");
    LanguageManager manager = started();
    EXPECT_EQ(manager.currentLanguage(), "en");
    EXPECT_EQ(manager.currentBundle().folder(), resources_.path());
    EXPECT_EQ(manager.localizedStringForKey("Tab Home"), "the main bundle's");
    ASSERT_TRUE(manager.setLanguage("zh-Hans").has_value());
    EXPECT_EQ(manager.localizedStringForKey("Tab Home"), "首页");
}

TEST_F(LanguageManagerTest, WithoutAnyTableEveryKeyIsItsOwnText) {
    for (const char* const path : {"en.lproj", "zh-Hans.lproj", "Localizable.strings"}) {
        removeResource(path);
    }
    EXPECT_EQ(started().localizedStringForKey("Tab Home"), "Tab Home");
}

}  // namespace
}  // namespace sweepwright::localization
