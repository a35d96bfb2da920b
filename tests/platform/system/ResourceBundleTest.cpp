#include <cerrno>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "platform/log/Log.h"
#include "platform/system/ResourceBundle.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {
namespace {

class ResourceBundleTest : public testing::Test {
  protected:
    void file(const std::string& path, std::string_view content) {
        const std::filesystem::path at = std::filesystem::path(folder_.path()) / path;
        std::filesystem::create_directories(at.parent_path());
        std::ofstream(at, std::ios::binary) << content;
    }

    test::TemporaryFolder folder_;
    ResourceBundle bundle_{folder_.path()};
};

TEST_F(ResourceBundleTest, FilesAreFoundByNameTypeAndFolder) {
    file("icon/icon1.png", "picture");
    EXPECT_EQ(bundle_.pathForResource("icon1", "png", "icon"), folder_.path() + "/icon/icon1.png");
    EXPECT_EQ(bundle_.pathForResource("icon1", "svg", "icon"), std::nullopt);
    EXPECT_EQ(bundle_.pathForResource("icon1", "png", ""), std::nullopt);
    EXPECT_EQ(bundle_.pathForResource("icon", "", ""), std::nullopt) << "a folder is no file";
}

TEST_F(ResourceBundleTest, FoldersAreFoundAsBundles) {
    file("en.lproj/Localizable.strings", "a = 1;");
    const auto english = bundle_.folderResource("en", "lproj");
    ASSERT_TRUE(english.has_value());
    EXPECT_EQ(english->folder(), folder_.path() + "/en.lproj");
    EXPECT_EQ(english->localizedString("a", "", "Localizable"), "1");
    EXPECT_FALSE(bundle_.folderResource("fr", "lproj").has_value());
    file("de.lproj", "a file");
    EXPECT_FALSE(bundle_.folderResource("de", "lproj").has_value());
}

TEST_F(ResourceBundleTest, FilesAreReadWhole) {
    const std::string content("bytes\0\xFF\r\n", 9);
    file("icon/a", content);
    file("empty", "");
    EXPECT_EQ(bundle_.readFile("icon/a").value(), content);
    EXPECT_EQ(bundle_.readFile("empty").value(), "");
}

TEST_F(ResourceBundleTest, WhatCannotBeReadIsAnError) {
    file("icon/a", "x");
    EXPECT_EQ(bundle_.readFile("none").error().code, ENOENT);
    EXPECT_FALSE(bundle_.readFile("icon").has_value());
    file("large", "");
    std::filesystem::resize_file(folder_.path() + "/large", ResourceBundle::kMaxFileBytes + 1);
    EXPECT_EQ(bundle_.readFile("large").error().code, EFBIG);
}

TEST_F(ResourceBundleTest, APathThatLeadsOutOfTheFolderIsRefused) {
    file("icon/a", "x");
    for (const std::string path : {"", "../a", "icon/../../a", "/etc/hostname", "icon/.."}) {
        EXPECT_EQ(bundle_.readFile(path).error().code, EINVAL) << path;
    }
}

TEST_F(ResourceBundleTest, AMissingTextIsTheValueGivenOrTheKey) {
    file("Table.strings", "a = 1;");
    EXPECT_EQ(bundle_.localizedString("a", "value", "Table"), "1");
    EXPECT_EQ(bundle_.localizedString("b", "value", "Table"), "value");
    EXPECT_EQ(bundle_.localizedString("b", "", "Table"), "b");
    EXPECT_EQ(bundle_.localizedString("a", "", "Other"), "a");
}

TEST_F(ResourceBundleTest, ATableIsReadOnceAndItsBrokenLinesAreLogged) {
    file("Table.strings", "a = 1;\nb 2;\n");
    const LogCapture capture;
    const ResourceBundle copy = bundle_;
    EXPECT_EQ(bundle_.localizedString("a", "", "Table"), "1");
    std::filesystem::remove(folder_.path() + "/Table.strings");
    EXPECT_EQ(bundle_.localizedString("a", "", "Table"), "1");
    EXPECT_EQ(copy.localizedString("a", "", "Table"), "1");
    EXPECT_EQ(capture.lines(), std::vector<std::string>{"⚠️ 文本表有误: " + folder_.path() +
                                                        "/Table.strings 第2行: no \"=\" after the "
                                                        "key"});
}

TEST_F(ResourceBundleTest, AFolderThatDoesNotExistHoldsNothing) {
    const ResourceBundle none(folder_.path() + "/none");
    EXPECT_FALSE(none.readFile("a").has_value());
    EXPECT_EQ(none.localizedString("a", "", "Table"), "a");
    EXPECT_FALSE(none.folderResource("en", "lproj").has_value());
}

}  // namespace
}  // namespace sweepwright::platform
