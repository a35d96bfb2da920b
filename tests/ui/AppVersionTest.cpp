#include <fstream>

#include <gtest/gtest.h>

#include "platform/log/Log.h"
#include "platform/system/ResourceBundle.h"
#include "support/TemporaryDevice.h"
#include "ui/settings/AppVersion.h"

namespace sweepwright::ui {
namespace {

AppVersion versionIn(const char* info) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.path() + "/Info.plist") << info;
    return appVersion(platform::ResourceBundle(folder.path()));
}

TEST(AppVersion, IsWhatTheBundleSays) {
    const AppVersion version = versionIn(
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
        "<key>CFBundleShortVersionString</key><string>2.4</string>"
        "<key>CFBundleVersion</key><string>318</string></dict></plist>");
    EXPECT_EQ(version, (AppVersion{"2.4", "318"}));
}

TEST(AppVersion, IsTheFirstOneWhereTheBundleDoesNotTell) {
    const platform::LogCapture log;
    EXPECT_EQ(versionIn("<plist version=\"1.0\"><dict/></plist>"), (AppVersion{"1.0.0", "1"}));
    EXPECT_EQ(versionIn("<plist version=\"1.0\"><dict><key>CFBundleVersion</key><integer>7"
                        "</integer></dict></plist>"),
              (AppVersion{"1.0.0", "1"}));
    EXPECT_EQ(versionIn("<plist version=\"1.0\"><array/></plist>"), (AppVersion{"1.0.0", "1"}));
    EXPECT_TRUE(log.lines().empty());
}

TEST(AppVersion, IsTheFirstOneWhereTheBundleCannotBeRead) {
    const platform::LogCapture log;
    EXPECT_EQ(versionIn("no property list"), (AppVersion{"1.0.0", "1"}));
    EXPECT_EQ(appVersion(platform::ResourceBundle("/no/such/folder")), (AppVersion{"1.0.0", "1"}));
    ASSERT_EQ(log.lines().size(), 2U);
    EXPECT_TRUE(log.lines()[0].starts_with("⚠️ 无法读取应用版本: "));
}

TEST(AppVersion, OfTheResourcesIsThatOfTheProgram) {
    EXPECT_EQ(appVersion(platform::ResourceBundle(SWEEPWRIGHT_RESOURCE_FOLDER)).shortVersion,
              SWEEPWRIGHT_VERSION);
}

}  // namespace
}  // namespace sweepwright::ui
