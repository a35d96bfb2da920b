// Metadata and Info.plist are files of others: whatever they hold, a scan must live and go on.
#include <filesystem>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <sys/stat.h>

#include "apps/AppsDevice.h"
#include "apps/BundleIndex.h"

namespace sweepwright {
namespace {

using platform::PropertyList;
using test::AppsDevice;
using Dictionary = PropertyList::Dictionary;

constexpr auto kMetadata = "/.com.apple.mobile_container_manager.metadata.plist";
constexpr auto kInfo = "/var/containers/Bundle/Application/B1/A.app/Info.plist";

/// Puts `bytes` in the place of both files and scans, with a sound app beside them.
void scanWith(AppsDevice& device, const std::string& bytes) {
    device.tree.fileWith(AppsDevice::containerPath("bad") + kMetadata, bytes);
    device.tree.fileWith(kInfo, bytes);
    device.container("good", "com.example.good");
    device.bundle("B2", "Good",
                  Dictionary{{"CFBundleIdentifier", "com.example.good"}, {"CFBundleName", "Good"}});
    ThirdPartyAppCacheManager manager(device.services());
    const auto apps = device.scanAll(manager);
    bool found = false;
    for (const AppCacheInfo& app : apps) {
        EXPECT_FALSE(app.bundleIdentifier.value_or("").empty());
        EXPECT_FALSE(app.appName.value_or("").empty());
        if (app.bundleIdentifier == "com.example.good") found = app.appName == "Good";
    }
    EXPECT_TRUE(found);
}

/// A value of any type.
PropertyList anyValue(int depth) {
    switch (*rc::gen::inRange(0, depth > 0 ? 11 : 9)) {
        case 0:
            return *rc::gen::arbitrary<bool>();
        case 1:
            return *rc::gen::arbitrary<std::int64_t>();
        case 2:
            return *rc::gen::arbitrary<std::uint64_t>();
        case 3:
            return *rc::gen::arbitrary<double>();
        case 4:
            return *rc::gen::element<std::string>("", "com.example.good", "..", "../../../x", "a/b",
                                                  "%@%n%s", "{}", "显示名");
        case 5:
            return PropertyList::Data{*rc::gen::arbitrary<std::string>()};
        case 6:
            return PropertyList::Date{};
        case 7:
            return PropertyList::Uid{*rc::gen::arbitrary<std::uint32_t>()};
        case 8:
            return std::string(static_cast<std::size_t>(*rc::gen::inRange(0, 5000)), 'x');
        case 9: {
            PropertyList::Array array;
            const auto count = *rc::gen::inRange(0, 4);
            for (int i = 0; i < count; ++i)
                array.push_back(anyValue(depth - 1));
            return array;
        }
        default: {
            Dictionary dictionary;
            for (const char* key : {"CFBundlePrimaryIcon", "CFBundleIconFiles", "other"})
                if (*rc::gen::arbitrary<bool>()) dictionary.set(key, anyValue(depth - 1));
            return dictionary;
        }
    }
}

RC_GTEST_PROP(HostileApp, WrongTypesEverywhereAreSurvived, ()) {
    Dictionary list;
    for (const char* key :
         {"MCMMetadataIdentifier", "CFBundleIdentifier", "CFBundleDisplayName", "CFBundleName",
          "CFBundleIcons", "CFBundleIconFiles", "CFBundleIconFile"})
        if (*rc::gen::inRange(0, 4) != 0) list.set(key, anyValue(3));
    const bool asText = *rc::gen::arbitrary<bool>();
    AppsDevice device;
    // The sound app's identifier may be claimed by the other container, which is listed first.
    const PropertyList* claimed = list.find("MCMMetadataIdentifier");
    if (claimed != nullptr && claimed->string() != nullptr &&
        *claimed->string() == "com.example.good")
        list.remove("MCMMetadataIdentifier");
    claimed = list.find("CFBundleIdentifier");
    if (claimed != nullptr && claimed->string() != nullptr &&
        *claimed->string() == "com.example.good")
        list.remove("CFBundleIdentifier");
    scanWith(device, asText ? PropertyList(list).toXml() : PropertyList(list).toBinary());
}

RC_GTEST_PROP(HostileApp, DamagedFilesAreSurvived, ()) {
    const Dictionary primary{{"CFBundleIconFiles", PropertyList::Array{"A", "B"}}};
    const PropertyList sound =
        Dictionary{{"MCMMetadataIdentifier", "com.example.bad"},
                   {"CFBundleIdentifier", "com.example.bad"},
                   {"CFBundleIcons", Dictionary{{"CFBundlePrimaryIcon", primary}}}};
    std::string bytes = *rc::gen::arbitrary<bool>() ? sound.toBinary() : sound.toXml();
    const auto changes = *rc::gen::inRange(1, 6);
    for (int i = 0; i < changes; ++i)
        bytes[*rc::gen::inRange<std::size_t>(0, bytes.size())] = *rc::gen::arbitrary<char>();
    if (*rc::gen::arbitrary<bool>()) bytes.resize(*rc::gen::inRange<std::size_t>(0, bytes.size()));
    AppsDevice device;
    scanWith(device, bytes);
}

TEST(HostileApp, AListThatHoldsItselfIsSurvived) {
    using namespace std::string_literals;
    const auto trailer = [](char objects, char tableAt) {
        return "\0\0\0\0\0\0\1\1"s + "\0\0\0\0\0\0\0"s + objects + "\0\0\0\0\0\0\0\0"s +
               "\0\0\0\0\0\0\0"s + tableAt;
    };
    AppsDevice array;
    scanWith(array, "bplist00\xA1\0"s + "\x08"s + trailer(1, 10));
    AppsDevice dictionary;
    scanWith(dictionary, "bplist00\xD1\1\0"s + "\x51x"s + "\x08\x0B"s + trailer(2, 13));
}

TEST(HostileApp, DeepNestingIsSurvived) {
    std::string xml = "<plist>";
    for (int i = 0; i < 100'000; ++i)
        xml += "<array>";
    AppsDevice device;
    scanWith(device, xml);
}

TEST(HostileApp, HugeFilesAreSurvived) {
    AppsDevice device;
    device.tree.file(AppsDevice::containerPath("huge") + kMetadata, std::uint64_t{1} << 40U);
    device.tree.file("/var/containers/Bundle/Application/B0/Huge.app/Info.plist",
                     std::uint64_t{1} << 40U);
    device.tree.file("/var/containers/Bundle/Application/B1/A.app/icon.png",
                     std::uint64_t{1} << 40U);
    Dictionary info{{"CFBundleIdentifier", "bad"},
                    {"CFBundleName", std::string(std::size_t{1} << 20U, 'n')}};
    scanWith(device, PropertyList(info).toBinary());
}

TEST(HostileApp, WhatIsNoFileIsSurvived) {
    AppsDevice device;
    const std::string pipe = AppsDevice::containerPath("pipe");
    device.tree.folder(pipe);
    ASSERT_EQ(mkfifo(device.tree.host(pipe + kMetadata).c_str(), 0600), 0);
    device.tree.folder(AppsDevice::containerPath("folder") + kMetadata);
    device.tree.link(AppsDevice::containerPath("cycle") + kMetadata, "cycle");
    device.tree.folder("/var/containers/Bundle/Application/B0/A.app/Info.plist");
    device.tree.link("/var/containers/Bundle/Application/B0/B.app", "..");
    device.tree.link("/var/containers/Bundle/Application/B0/C.app", "C.app");
    scanWith(device, "x");
}

TEST(HostileApp, AnIconNameThatLeadsOutOfTheBundleHarmsNothing) {
    AppsDevice device;
    for (const std::string& name :
         {std::string("../../../../../../etc/passwd"), std::string(5000, 'n'), std::string("a/b"),
          std::string(".."), std::string("/")}) {
        device.container("bad", "com.example.bad");
        device.bundle("B1", "A",
                      Dictionary{{"CFBundleIdentifier", "com.example.bad"},
                                 {"CFBundleIconFiles", PropertyList::Array{name}}});
        ThirdPartyAppCacheManager manager(device.services());
        EXPECT_FALSE(device.scanAll(manager).at(0).appIcon.has_value());
    }
}

TEST(HostileApp, NamesThatAreNoTextAreSurvived) {
    AppsDevice device;
    device.tree.file(AppsDevice::containerPath("\xFF\xFE\n-rf") + "/tmp/\x80", 3);
    ThirdPartyAppCacheManager manager(device.services());
    const auto apps = device.scanAll(manager);
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].totalSize, 3U);
    EXPECT_EQ(device.clean(manager, *apps[0].bundleIdentifier).bytes, 3U);
}

}  // namespace
}  // namespace sweepwright
