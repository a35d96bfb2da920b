#include <gtest/gtest.h>

#include "apps/AppNames.h"
#include "apps/AppsDevice.h"

namespace sweepwright {
namespace {

using platform::PropertyList;
using test::AppsDevice;
using Dictionary = PropertyList::Dictionary;

class AppNamesTest : public testing::Test {
  protected:
    std::string install(const std::string& container, const std::string& identifier,
                        const std::string& name) {
        d_.bundle(container, "X",
                  Dictionary{{"CFBundleIdentifier", identifier}, {"CFBundleName", name}});
        return d_.container(container, identifier);
    }

    AppsDevice d_;
    AppNames names_{d_.device, d_.files};
};

TEST_F(AppNamesTest, AnAppIsCalledAsItsBundleIsShown) {
    install("A", "com.example.a", "Plain");
    d_.bundle("B", "X",
              Dictionary{{"CFBundleIdentifier", "com.example.b"},
                         {"CFBundleName", "Short"},
                         {"CFBundleDisplayName", "Shown"}});
    EXPECT_EQ(names_.nameOf("com.example.a"), "Plain");
    EXPECT_EQ(names_.nameOf("com.example.b"), "Shown");
    EXPECT_EQ(names_.nameOf("com.example.gone"), "com.example.gone");
}

TEST_F(AppNamesTest, WhatLiesInAContainerBelongsToItsApp) {
    const std::string data = install("A", "com.example.a", "Reader");
    EXPECT_EQ(names_.ownerOf(data), "Reader");
    EXPECT_EQ(names_.ownerOf(data + "/Library/Caches/x"), "Reader");
    EXPECT_EQ(names_.ownerOf("/private" + data + "/tmp"), "Reader");
    EXPECT_EQ(names_.ownerOf("/var/containers/Bundle/Application/A"), "Reader");
    EXPECT_EQ(names_.ownerOf("/var/containers/Bundle/Application/A/X.app/x"), "Reader");
}

TEST_F(AppNamesTest, WhatLiesInNoContainerBelongsToNobody) {
    for (const char* path :
         {"", "/", "/var/mobile/Library/Caches/x", "/var/mobile/Containers/Data/Application",
          "/var/mobile/Containers/Data/Application/", "/var/mobile/Containers/Data/ApplicationX/A"})
        EXPECT_EQ(names_.ownerOf(path), std::nullopt) << path;
}

TEST_F(AppNamesTest, WithoutABundleTheIdentifierStandsForTheName) {
    EXPECT_EQ(names_.ownerOf(d_.container("A", "com.example.gone") + "/tmp"), "com.example.gone");
    d_.tree.folder(AppsDevice::containerPath("UUID"));
    EXPECT_EQ(names_.ownerOf(AppsDevice::containerPath("UUID")), std::nullopt);
}

TEST_F(AppNamesTest, ABundleThatDoesNotTellItsNameIsCalledAsItsFolder) {
    d_.tree.file("/var/containers/Bundle/Application/A/Reader.app/x", 1);
    d_.tree.folder("/var/containers/Bundle/Application/B");
    EXPECT_EQ(names_.ownerOf("/var/containers/Bundle/Application/A"), "Reader");
    EXPECT_EQ(names_.ownerOf("/var/containers/Bundle/Application/B"), std::nullopt);
}

TEST_F(AppNamesTest, GroupsAndPlugInsGoByTheirIdentifiers) {
    const auto container = [this](const std::string& path, const std::string& identifier) {
        d_.tree.fileWith(path + "/.com.apple.mobile_container_manager.metadata.plist",
                         PropertyList(Dictionary{{"MCMMetadataIdentifier", identifier}}).toXml());
        return path;
    };
    EXPECT_EQ(names_.ownerOf(container("/var/mobile/Containers/Shared/AppGroup/G", "group.a")),
              "group.a");
    EXPECT_EQ(
        names_.ownerOf(container("/var/mobile/Containers/Data/PluginKitPlugin/P", "com.a.share")),
        "com.a.share");
}

TEST_F(AppNamesTest, TheCleanersOwnContainerIsKnownWithoutALookAtOtherApps) {
    test::AppsDevice device;
    platform::DeviceOptions options;
    options.rootFolder = device.tree.root();
    options.home = AppsDevice::containerPath("SELF");
    const auto own = platform::Device::open(options);
    ASSERT_TRUE(own.has_value()) << own.error().description;
    AppNames names(*own, device.files);
    EXPECT_EQ(names.ownerOf(AppsDevice::containerPath("SELF") + "/tmp"), "Sweepwright");
}

}  // namespace
}  // namespace sweepwright
