#include "ui/support/SampleContent.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/plist/PropertyList.h"
#include "sample/SampleDevice.h"

namespace sweepwright::test {

namespace {

namespace fs = std::filesystem;
using platform::PropertyList;

std::string plist(std::initializer_list<std::pair<const char*, std::string>> entries) {
    PropertyList::Dictionary dictionary;
    for (const auto& [key, value] : entries)
        dictionary.set(key, value);
    return PropertyList(dictionary).toBinary();
}

}  // namespace

void fillWithSampleDevice(TemporaryDevice& device) {
    const TemporaryFolder folder;
    const fs::path sample = fs::path(folder.path()) / "sample";
    const auto made = sample::makeSampleDevice(sample.string(), 1);
    ASSERT_TRUE(made.has_value()) << made.error().description;
    for (const auto& old : fs::directory_iterator(device.root()))
        fs::remove_all(old.path());
    for (const auto& entry : fs::directory_iterator(sample))
        fs::rename(entry.path(), fs::path(device.root()) / entry.path().filename());
}

std::string addApp(TemporaryDevice& device, const std::string& bundleIdentifier,
                   const std::string& name, std::uint64_t bytes) {
    const std::string data = "/var/mobile/Containers/Data/Application/" + bundleIdentifier;
    const std::string bundle = "/var/containers/Bundle/Application/" + bundleIdentifier;
    constexpr const char* kMetadata = "/.com.apple.mobile_container_manager.metadata.plist";
    for (const std::string& container : {data, bundle}) {
        device.fileWith(container + kMetadata,
                        plist({{"MCMMetadataIdentifier", bundleIdentifier}}));
    }
    device.fileWith(bundle + "/App.app/Info.plist",
                    name.empty() ? plist({{"CFBundleIdentifier", bundleIdentifier}})
                                 : plist({{"CFBundleIdentifier", bundleIdentifier},
                                          {"CFBundleDisplayName", name}}));
    if (bytes > 0) device.file(data + "/Library/Caches/cache.bin", bytes);
    return data;
}

ui::ScreenServices withStorage(const ui::ScreenServices& services, StorageAnalyzer& storage) {
    return {services.device,
            services.files,
            services.defaults,
            services.notifications,
            services.mainQueue,
            services.engine,
            storage,
            services.apps,
            services.pathWhitelist,
            services.appWhitelist,
            services.customPaths,
            services.history,
            services.language,
            services.texts,
            services.opener,
            services.resources,
            services.icons};
}

}  // namespace sweepwright::test
