// What many apps cost, counted in calls of the file manager.
#include <gtest/gtest.h>

#include "apps/AppCleanPreview.h"
#include "apps/AppsDevice.h"
#include "support/FaultyFileManager.h"

namespace sweepwright {
namespace {

using platform::PropertyList;
using test::AppsDevice;
using test::FaultyFileManager;
using Dictionary = PropertyList::Dictionary;

/// So many apps with bundle, cache and temporary file; every third without metadata.
std::vector<std::string> install(AppsDevice& device, int count) {
    std::vector<std::string> identifiers;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(1000 + i);
        const std::string name = "C" + number;
        const std::string identifier = i % 3 == 0 ? name : "com.example.n" + number;
        if (i % 3 != 0) device.container(name, identifier);
        device.tree.file(AppsDevice::containerPath(name) + "/Library/Caches/x", 1);
        device.tree.file(AppsDevice::containerPath(name) + "/tmp/x", 1);
        device.bundle("B" + number, "A", Dictionary{{"CFBundleIdentifier", identifier}});
        identifiers.push_back(identifier);
    }
    device.tree.file("/var/mobile/Containers/Shared/AppGroup/.jbroot-1/var/tmp/x", 1);
    return identifiers;
}

using Run = std::function<void(AppsDevice&, ThirdPartyAppCacheManager&, FaultyFileManager&,
                               const std::vector<std::string>&)>;

std::uint64_t callsFor(int apps, const Run& run) {
    AppsDevice device;
    const auto identifiers = install(device, apps);
    FaultyFileManager counting(device.files, test::everyOperation());
    DeviceEraser eraser(counting, test::noCommands(), platform::WebStorage::ofHost());
    ThirdPartyAppCacheManager manager(device.services(counting, eraser));
    run(device, manager, counting, identifiers);
    return counting.calls();
}

/// Whether each further app costs what the one before it cost: what doubling adds, doubles.
void expectLinear(const Run& run) {
    const auto few = callsFor(10, run);
    const auto more = callsFor(20, run);
    const auto many = callsFor(40, run);
    ASSERT_GT(more, few);
    EXPECT_LE(many - more, 2 * (more - few) + 4) << few << ", " << more << ", " << many;
}

TEST(AppGrowth, AWalkGrowsLinearly) {
    expectLinear([](AppsDevice& device, ThirdPartyAppCacheManager& manager, FaultyFileManager&,
                    const auto& identifiers) {
        EXPECT_EQ(device.scanAll(manager).size(), identifiers.size());
    });
}

TEST(AppGrowth, ABatchGrowsLinearly) {
    expectLinear([](AppsDevice& device, ThirdPartyAppCacheManager& manager, FaultyFileManager&,
                    const auto& identifiers) {
        EXPECT_EQ(device.cleanBatch(manager, identifiers).bytes, 2 * identifiers.size() + 1);
    });
}

TEST(AppGrowth, ACleanOfAllGrowsLinearly) {
    expectLinear([](AppsDevice& device, ThirdPartyAppCacheManager& manager, FaultyFileManager&,
                    const auto& identifiers) {
        EXPECT_EQ(device.cleanAll(manager).bytes, 2 * identifiers.size() + 1);
    });
}

TEST(AppGrowth, APreviewGrowsLinearly) {
    expectLinear([](AppsDevice& device, ThirdPartyAppCacheManager&, FaultyFileManager& counting,
                    const auto& identifiers) {
        const auto preview =
            previewAppsClean(device.services(counting, device.deviceEraser), identifiers);
        ASSERT_TRUE(preview.has_value());
        EXPECT_EQ(preview->wouldFree, 2 * identifiers.size() + 1);
    });
}

}  // namespace
}  // namespace sweepwright
