// Something precious is mounted inside what cleans empty.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppCleanPreview.h"
#include "engine/CleanPreview.h"
#include "hardening/SmallDevice.h"
#include "support/ChildProcess.h"
#include "support/Process.h"

namespace sweepwright {
namespace {

namespace fs = std::filesystem;

using platform::HostFileManager;
using test::SmallDevice;
using test::Worker;
using testing::HasSubstr;

constexpr const char* kApp = "/var/mobile/Containers/Data/Application/UUID-com.example.one";
constexpr const char* kShared = "/var/mobile/Library/Caches";

std::string app(const std::string& relative) {
    return platform::joinPath(kApp, relative);
}
std::string shared(const std::string& relative) {
    return platform::joinPath(kShared, relative);
}

class Notes final : public CleanObserver {
  public:
    void removed(const std::string& path, std::uint64_t /*bytes*/) override { gone.insert(path); }
    void kept(const std::string& path, KeptReason reason, const std::string& /*by*/) override {
        if (reason == KeptReason::MountPoint) mountPoints.insert(path);
        if (reason == KeptReason::Failed) failed.insert(path);
    }
    std::set<std::string> gone;
    std::set<std::string> mountPoints;
    std::set<std::string> failed;
};

/// Where something is mounted, and the cleans that come by.
struct Place {
    std::string path;
    std::set<int> cleans;
};

std::vector<Place> places() {
    return {
        {SmallDevice::home("Library/Caches/folder/deep/bound"), {0, test::kAll}},
        {SmallDevice::home("Library/Caches/folder/.secret/bound"), {0, test::kAll}},
        {SmallDevice::home("Library/Caches/bound"), {0, test::kAll}},
        {SmallDevice::home("Library/Caches/Kingfisher"), {0, 5, test::kAll}},
        {SmallDevice::home("Library/Application Support/AppCache"), {0, test::kAll}},
        {SmallDevice::home("Library/Application Support/OfflineMaps"), {8, test::kAll}},
        {SmallDevice::home("Library/Application Support/LocalStorage/x/bound"), {2, test::kAll}},
        {SmallDevice::home("Library/Safari/LocalStorage"), {2, test::kAll}},
        {SmallDevice::home("Library/Logs/CrashReporter/bound"), {3, 7, test::kAll}},
        {SmallDevice::home("Documents/Downloads/x/bound"), {4, test::kAll}},
        {SmallDevice::home("tmp/a/bound"), {1, test::kAll}},
        {"/var/mobile/Media/Custom/bound", {0, test::kAll}},
        {"/var/mobile/Library/Safari/WebKitCache/x/bound", {0, 2, test::kAll, test::kDeep}},
        {"/var/MobileAsset/AssetsV2/folder/bound", {0, test::kAll, test::kDeep}},
        {"/var/db/diagnostics/Persist/x/bound", {3, test::kAll}},
        {shared("com.apple.springboard/bound"), {0, test::kAll, test::kDeep}},
        {shared("com.apple.mounted"), {0, test::kAll, test::kDeep}},
        {shared("SomeCache/x/bound"), {0, test::kAll, test::kDeep}},
        {app("Library/Caches/a/bound"), {test::kOneApp, test::kAppBatch, test::kAllApps}},
        {app("Library/WebKit"), {test::kOneApp, test::kAppBatch, test::kAllApps}},
        {app("tmp/bound"), {test::kOneApp, test::kAppBatch, test::kAllApps}}};
}

class MountPoints : public testing::TestWithParam<int> {
  protected:
    void SetUp() override {
        if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
        precious_ = device_.outside() + "/precious";
        fs::create_directories(precious_ + "/sub");
        for (const char* name : {"/cache", "/sub/photo"})
            std::ofstream(precious_ + name) << "worth more than all the rest";
        device_.tree().file(SmallDevice::home("tmp/a/mountedFile"), 0);
        for (const Place& place : places())
            device_.tree().folder(place.path);
    }

    /// Runs `body` with everything mounted, over a manager that sees it.
    void withMounts(const std::function<void(platform::FileManager&)>& body) {
        test::withOwnMounts([&] {
            for (const Place& place : places())
                test::mountAt(precious_, device_.tree().host(place.path));
            test::mountAt(precious_ + "/cache",
                          device_.tree().host(SmallDevice::home("tmp/a/mountedFile")));
            HostFileManager files(platform::DeviceRoot::open(device_.tree().root()).value());
            body(files);
        });
    }

    static void useRealShell(Worker& worker) {
        worker.commands.answer([](const test::FakeCommandRunner::Command& command) {
            return platform::SpawnCommandRunner().run(command.text, command.folder);
        });
    }

    static std::set<std::string> expectedFor(int clean) {
        std::set<std::string> expected;
        for (const Place& place : places())
            if (place.cleans.contains(clean)) expected.insert(place.path);
        if (clean == 1 || clean == test::kAll)
            expected.insert(SmallDevice::home("tmp/a/mountedFile"));
        return expected;
    }

    platform::Result<CleanPreview> previewOf(Worker& worker) {
        switch (GetParam()) {
            case test::kDeep:
                return previewDeepClean(worker.engineServices());
            case test::kOneApp:
                return previewAppsClean(worker.appServices(worker.resources), {"com.example.one"});
            case test::kAppBatch:
            case test::kAllApps:
                return previewAppsClean(worker.appServices(worker.resources),
                                        {"com.example.one", "com.example.two"});
            default:
                return previewClean(worker.engineServices(), static_cast<CleanType>(GetParam()));
        }
    }

    void expectThePreciousIsWhole() const {
        for (const char* name : {"/cache", "/sub/photo"}) {
            std::ifstream in(precious_ + name);
            const std::string content{std::istreambuf_iterator<char>(in), {}};
            EXPECT_EQ(content, "worth more than all the rest") << name;
        }
    }

    SmallDevice device_;
    std::string precious_;
};

TEST_P(MountPoints, AreKeptWithWhatIsBehindThemAndTellTheirReason) {
    if (test::ranInFreshProcess()) return;
    withMounts([&](platform::FileManager& files) {
        Worker worker(device_.tree().root(), files);
        useRealShell(worker);
        Notes notes;
        worker.engine.setObserver(&notes);
        worker.apps.setObserver(&notes);
        const std::uint64_t covered = device_.bytesGone();  // mounts lie over it
        const auto outcome = worker.clean(GetParam());
        EXPECT_TRUE(outcome.success);
        EXPECT_EQ(notes.mountPoints, expectedFor(GetParam()));
        EXPECT_EQ(notes.failed, std::set<std::string>());
        expectThePreciousIsWhole();
        EXPECT_EQ(device_.damage(), "");
        // A deep clean counts what the shared folders held, the mounted folder's bytes included.
        if (GetParam() != test::kDeep) {
            EXPECT_EQ(outcome.bytes, device_.bytesGone() - covered);
        }
    });
    expectThePreciousIsWhole();
}

TEST_P(MountPoints, APreviewTellsThemAndTheSameFigure) {
    if (test::ranInFreshProcess()) return;
    withMounts([&](platform::FileManager& files) {
        Worker worker(device_.tree().root(), files);
        useRealShell(worker);
        const auto preview = previewOf(worker);
        ASSERT_TRUE(preview.has_value());
        std::set<std::string> told;
        for (const auto& kept : preview->kept)
            if (kept.reason == KeptReason::MountPoint) told.insert(kept.path);
        EXPECT_EQ(told, expectedFor(GetParam()));
        EXPECT_EQ(preview->wouldFree, worker.clean(GetParam()).bytes);
        for (const auto& entry : preview->entries)
            EXPECT_FALSE(device_.tree().exists(entry.path)) << entry.path;
        for (const auto& kept : preview->kept)
            EXPECT_TRUE(device_.tree().exists(kept.path)) << kept.path;
    });
}

INSTANTIATE_TEST_SUITE_P(, MountPoints, testing::Range(0, int{test::kCleans}),
                         [](const auto& each) { return test::cleanName(each.param); });

using MountPointsOnTheCommandLine = MountPoints;

TEST_P(MountPointsOnTheCommandLine, AreNamedByADryRunAndNoFailureOfAClean) {
    withMounts([&](platform::FileManager&) {
        const auto run = [&](std::vector<std::string> words) {
            test::ProcessOptions options;
            options.arguments = {SWEEPCTL, "--device-root", device_.tree().root(), "--home",
                                 SmallDevice::kHome};
            std::ranges::move(words, std::back_inserter(options.arguments));
            options.environment = {{"HOME", device_.outside()}, {"PATH", "/usr/bin:/bin"}};
            return test::Process::run(options);
        };
        const auto preview = run({"--json", "clean", "temp", "--dry-run"});
        EXPECT_THAT(preview.output, HasSubstr("\"reason\": \"mount point\""));
        const auto clean = run({"clean", "temp", "--yes"});
        EXPECT_EQ(clean.status, 0);
        EXPECT_EQ(clean.error, "");
    });
    expectThePreciousIsWhole();
}

INSTANTIATE_TEST_SUITE_P(, MountPointsOnTheCommandLine, testing::Values(1),
                         [](const auto& each) { return test::cleanName(each.param); });

}  // namespace
}  // namespace sweepwright
