#include "platform/log/Log.h"
#include "protection/CustomPathManager.h"
#include "protection/PathWhitelistManager.h"
#include "ui/SettingsTest.h"

namespace sweepwright::ui {
namespace {

using Strings = std::vector<std::string>;

class SettingsPathsTest : public test::SettingsTest {
  protected:
    CustomPathManager& custom() { return app_.services().customPaths; }
    PathWhitelistManager& whitelist() { return app_.services().pathWhitelist; }
    void type(const char* path) { alert().setText(QString::fromUtf8(path)); }
    void addCustom(const char* path) {
        settings().addCustomPath();
        type(path);
        choose("Add");
    }
    void protect(const char* path) {
        settings().addPathToWhitelist();
        type(path);
        choose("Add");
    }
};

TEST_F(SettingsPathsTest, LeadsToAddingAndToViewingCustomPaths) {
    settings().showCustomPathsManager();
    EXPECT_EQ(alert().title(), text("Custom Paths"));
    EXPECT_EQ(alert().message(), text("Custom Paths Description"));
    const Strings expected = {"Add a Path", "View Paths", "Cancel"};
    EXPECT_EQ(titles(), expected);
    choose("Add Path");
    EXPECT_EQ(alert().style(), AlertController::Alert);
    EXPECT_EQ(alert().title(), text("Add Custom Path"));
    EXPECT_EQ(alert().message(), text("Enter the path to clean"));
    EXPECT_TRUE(alert().hasTextField());
    EXPECT_EQ(alert().placeholder(), text("Path (e.g., /var/mobile/Library/Caches/MyApp)"));
    const Strings buttons = {"Add", "Cancel"};
    EXPECT_EQ(titles(), buttons);
    choose("Cancel");
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsPathsTest, AddsACustomPathAsItStands) {
    addCustom("/var/mobile/Media/Old/");
    addCustom(" /with blanks ");
    addCustom("/var/mobile/“我的文件”/it's \"old\"");
    addCustom("no/slash/first");
    const Strings expected = {"/var/mobile/Media/Old/", " /with blanks ",
                              "/var/mobile/“我的文件”/it's \"old\"", "no/slash/first"};
    EXPECT_EQ(custom().getAllCustomPaths(), expected);
    EXPECT_EQ(row(1, 2).subtitle, QLatin1String("Paths added: 4"));
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsPathsTest, AddsNothingForAnEmptyText) {
    const std::string before = storedBytes();
    addCustom("");
    protect("");
    EXPECT_EQ(storedBytes(), before);
    EXPECT_EQ(custom().getCustomPathCount(), 0U);
    EXPECT_EQ(whitelist().getWhitelistCount(), 3U);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsPathsTest, SaysThatThereAreNoCustomPaths) {
    settings().showCustomPathsManager();
    choose("View Paths");
    EXPECT_EQ(alert().style(), AlertController::Alert);
    EXPECT_EQ(alert().title(), text("Custom Paths"));
    EXPECT_EQ(alert().message(), text("No custom paths added"));
    EXPECT_EQ(titles(), Strings{"OK"});
}

TEST_F(SettingsPathsTest, ListsTheCustomPathsAndRemovesTheChosenOne) {
    addCustom("/a/");
    addCustom("/中文/b");
    settings().viewCustomPaths();
    EXPECT_EQ(alert().style(), AlertController::ActionSheet);
    EXPECT_EQ(alert().title(), text("Custom Paths"));
    const Strings expected = {"/a/", "/中文/b", "Cancel"};
    EXPECT_EQ(titles(), expected);
    choose(QStringLiteral("/中文/b"));
    EXPECT_EQ(alert().title(), QStringLiteral("/中文/b"));
    const Strings options = {"Remove", "Cancel"};
    EXPECT_EQ(titles(), options);
    EXPECT_EQ(alert().actions()[0]->style(), AlertAction::Destructive);
    choose("Cancel");
    EXPECT_EQ(custom().getCustomPathCount(), 2U);
    settings().showCustomPathOptions("/中文/b");
    choose("Remove");
    EXPECT_EQ(custom().getAllCustomPaths(), Strings{"/a/"});
    EXPECT_EQ(row(1, 2).subtitle, QLatin1String("Paths added: 1"));
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsPathsTest, RemovesAPathWhoseNameIsNoText) {
    const std::string odd = "/var/\xff\xfe/odd";
    ASSERT_TRUE(custom().addCustomPath(odd));
    settings().viewCustomPaths();
    alert().choose(alert().actions()[0]);
    choose("Remove");
    EXPECT_EQ(custom().getCustomPathCount(), 0U);
}

TEST_F(SettingsPathsTest, LeadsToProtectingAndToViewingProtectedPaths) {
    settings().showPathWhitelistManager();
    EXPECT_EQ(alert().title(), text("Path Whitelist"));
    EXPECT_EQ(alert().message(), text("Path Whitelist Description"));
    const Strings expected = {"Add a Path", "View Paths", "Cancel"};
    EXPECT_EQ(titles(), expected);
    choose("Add Path");
    EXPECT_EQ(alert().title(), text("Add Path to Whitelist"));
    EXPECT_EQ(alert().message(), text("Enter the path to protect"));
    EXPECT_EQ(alert().placeholder(), text("Path (e.g., /var/mobile/Library/Caches/Important)"));
    choose("Cancel");
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsPathsTest, ListsTheBuiltInPathsUnderALock) {
    EXPECT_EQ(row(3, 1).subtitle, QLatin1String("Paths protected: 3"));
    settings().showPathWhitelistManager();
    choose("View Paths");
    const Strings expected = {"🔒 /var/mobile/Library/Caches/com.apple.Maps",
                              "🔒 /var/mobile/Library/Caches/MappedImageCache",
                              "🔒 /var/mobile/Library/Caches/GeoServices", "Cancel"};
    EXPECT_EQ(titles(), expected);
}

TEST_F(SettingsPathsTest, NeverOffersToRemoveABuiltInPath) {
    settings().viewPathWhitelist();
    choose(QStringLiteral("🔒 /var/mobile/Library/Caches/MappedImageCache"));
    EXPECT_EQ(alert().title(), QLatin1String("/var/mobile/Library/Caches/MappedImageCache"));
    EXPECT_EQ(alert().message(), text("Built-in path, cannot be removed"));
    EXPECT_EQ(titles(), Strings{"Cancel"});
}

TEST_F(SettingsPathsTest, ListsAProtectedPathWithoutItsTrailingSlash) {
    protect("/var/mobile/Media/DCIM///");
    protect("/照片/\"原件\"");
    EXPECT_EQ(row(3, 1).subtitle, QLatin1String("Paths protected: 5"));
    settings().viewPathWhitelist();
    ASSERT_EQ(titles().size(), 6U);
    EXPECT_EQ(titles()[3], "/var/mobile/Media/DCIM");
    EXPECT_EQ(titles()[4], "/照片/\"原件\"");
    choose(QStringLiteral("/var/mobile/Media/DCIM"));
    EXPECT_EQ(alert().title(), QLatin1String("/var/mobile/Media/DCIM"));
    choose("Remove");
    EXPECT_EQ(whitelist().getUserDefinedPaths(), Strings{"/照片/\"原件\""});
    EXPECT_EQ(row(3, 1).subtitle, QLatin1String("Paths protected: 4"));
}

TEST_F(SettingsPathsTest, LetsWhoeverMistypesAPathSeeIt) {
    app_.device.folder("/var/mobile/Media/Downloads");
    app_.device.file("/var/mobile/Media/one.txt", 1);
    settings().addCustomPath();
    EXPECT_TRUE(alert().tip().isEmpty());
    type("/var/mobile/Media/Downloads");
    EXPECT_EQ(alert().tip(), text("Path Is a Folder"));
    type("/var/mobile/Media/Donwloads");
    EXPECT_EQ(alert().tip(), text("Path Holds Nothing"));
    type("/var/mobile/Media/one.txt");
    EXPECT_EQ(alert().tip(), text("Path Is a File"));
    type("var/mobile/Media");
    EXPECT_EQ(alert().tip(), text("Path Is Not Absolute"));
    type("");
    EXPECT_TRUE(alert().tip().isEmpty());
    choose("Cancel");
    settings().showCustomPathOptions("/var/mobile/Media/Donwloads");
    EXPECT_EQ(alert().message(), text("Path Holds Nothing"));
    choose("Cancel");
    settings().showPathWhitelistOptions("/var/mobile/Media/one.txt", false);
    EXPECT_EQ(alert().message(), text("Path Is a File"));
}

TEST_F(SettingsPathsTest, SaysWhenAPathCannotBeStored) {
    addCustom("/kept");
    protect("/kept too");
    blockChanges();
    addCustom("/lost");
    expectSaveFailure();
    protect("/lost");
    expectSaveFailure();
    settings().showCustomPathOptions("/kept");
    choose("Remove");
    expectSaveFailure();
    settings().showPathWhitelistOptions("/kept too", false);
    choose("Remove");
    expectSaveFailure();
    EXPECT_EQ(custom().getAllCustomPaths(), Strings{"/kept"});
    EXPECT_EQ(whitelist().getUserDefinedPaths(), Strings{"/kept too"});
    EXPECT_EQ(row(1, 2).subtitle, QLatin1String("Paths added: 1"));
}

// What a person set is not to be lost to a default, nor to a change that comes after the damage.
TEST_F(SettingsPathsTest, LeavesADamagedFileAlone) {
    damageDefaults();
    settings().loadSettingsData();
    EXPECT_EQ(row(1, 1).value, QLatin1String("50.00 MB"));
    EXPECT_FALSE(app_.presenter().active());
    settings().switchValueChanged(1000, true);
    EXPECT_FALSE(row(1, 0).on);
    expectSaveFailure();
    settings().showLargeFileThresholdSelector();
    choose(QStringLiteral("1 GB"));
    expectSaveFailure();
    addCustom("/lost");
    expectSaveFailure();
    protect("/lost");
    expectSaveFailure();
    EXPECT_EQ(storedBytes(), kDamaged);
}

TEST_F(SettingsPathsTest, LogsDefaultsThatCannotBeStored) {
    ASSERT_TRUE(defaults().remove("scanDepth"));
    blockChanges();
    const platform::LogCapture log;
    settings().loadSettingsData();
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(log.lines()[0].starts_with("❌ 保存 默认设置 失败: ")) << log.lines()[0];
    EXPECT_FALSE(app_.presenter().active());
}

}  // namespace
}  // namespace sweepwright::ui
