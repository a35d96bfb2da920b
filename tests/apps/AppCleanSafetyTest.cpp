// What an app clean must never do, whatever an app plants in its folders.
#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/log/Log.h"
#include "support/FaultyFileManager.h"

namespace sweepwright {
namespace {

namespace fs = std::filesystem;
using platform::LogCapture;
using test::AppsDevice;
using test::FaultyFileManager;
using test::kApp;
using test::linesWith;
using test::Operation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kCanary = "/var/mobile/Documents/canary";

/// Notes what a clean decides, and may end it.
class Notes final : public CleanObserver {
  public:
    struct Kept {
        std::string path;
        KeptReason reason;
        std::string by;
        bool operator==(const Kept&) const = default;
    };

    void removed(const std::string& path, std::uint64_t bytes) override {
        removals.emplace_back(path, bytes);
        if (onRemoval) onRemoval();
    }
    void kept(const std::string& path, KeptReason reason, const std::string& by) override {
        keeps.push_back({path, reason, by});
    }

    std::vector<std::pair<std::string, std::uint64_t>> removals;
    std::vector<Kept> keeps;
    std::function<void()> onRemoval;
};

TEST(AppCleanSafety, ALinkInsideGoesAndWhatItLeadsToStays) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(kCanary, 5);
    device.tree.link(data + "/Library/Caches/folder", "/var/mobile/Documents");
    device.tree.link(data + "/Library/Caches/deep/er/folder", "/var/mobile/Documents");
    device.tree.link(data + "/tmp/file", kCanary);
    device.tree.link(data + "/tmp/root", "/");
    device.tree.link(data + "/tmp/up", "../../../../../../../../../../../../../..");
    device.tree.link(data + "/tmp/self", "self");
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_TRUE(device.clean(manager, kApp).success);
    EXPECT_TRUE(device.tree.exists(kCanary));
    EXPECT_THAT(*device.files.contentsOfDirectory(data + "/Library/Caches"), IsEmpty());
    EXPECT_THAT(*device.files.contentsOfDirectory(data + "/tmp"), IsEmpty());
}

TEST(AppCleanSafety, ALinkToAProtectedPlaceGoesToo) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    const std::string maps = PathWhitelistManager::builtInPathsList().at(0);
    device.tree.file(maps + "/x", 5);
    device.tree.link(data + "/tmp/maps", maps);
    ThirdPartyAppCacheManager manager(device.services());
    device.clean(manager, kApp);
    EXPECT_FALSE(device.tree.exists(data + "/tmp/maps"));
    EXPECT_TRUE(device.tree.exists(maps + "/x"));
}

TEST(AppCleanSafety, AFolderThatIsALinkIsNotEntered) {
    for (const char* planted : {"/Library/Caches", "/Library", "/tmp", "/Library/WebKit"}) {
        AppsDevice device;
        const std::string data = device.container("C1", kApp);
        for (const char* folder : {"/canary", "/Caches/canary", "/WebKit/canary"})
            device.tree.file(std::string("/var/mobile/Documents") + folder, 5);
        device.tree.link(data + planted, "/var/mobile/Documents");
        Notes notes;
        ThirdPartyAppCacheManager manager(device.services());
        manager.setObserver(&notes);
        const LogCapture log;
        const auto outcome = device.clean(manager, kApp);
        EXPECT_TRUE(outcome.success);
        EXPECT_EQ(outcome.bytes, 0U);
        EXPECT_THAT(notes.removals, IsEmpty());
        ASSERT_FALSE(notes.keeps.empty());
        for (const auto& kept : notes.keeps)
            EXPECT_EQ(kept.reason, KeptReason::Link) << kept.path;
        EXPECT_FALSE(linesWith(log.lines(), "⚠️ 无法读取目录: " + data + "/").empty());
        EXPECT_TRUE(device.tree.exists(kCanary));
        EXPECT_TRUE(device.tree.exists("/var/mobile/Documents/Caches/canary"));
        EXPECT_TRUE(device.tree.exists(data + planted));
        EXPECT_FALSE(manager.removeContentsOfDirectory("/x", {}, kApp));
        device.tree.link("/x", "/var/mobile/Documents");
        EXPECT_FALSE(manager.removeContentsOfDirectory("/x", {}, kApp));
        EXPECT_TRUE(device.tree.exists(kCanary));
    }
}

TEST(AppCleanSafety, AContainerThatIsALinkIsNotEntered) {
    AppsDevice device;
    device.tree.file("/var/mobile/Documents/tmp/canary", 5);
    device.tree.file("/var/mobile/Documents/Library/Caches/canary", 5);
    device.tree.link(AppsDevice::containerPath(kApp), "/var/mobile/Documents");
    Notes notes;
    ThirdPartyAppCacheManager manager(device.services());
    manager.setObserver(&notes);
    EXPECT_EQ(device.clean(manager, kApp).bytes, 0U);
    EXPECT_TRUE(device.tree.exists("/var/mobile/Documents/tmp/canary"));
    EXPECT_TRUE(device.tree.exists("/var/mobile/Documents/Library/Caches/canary"));
    ASSERT_EQ(notes.keeps.size(), 2U);
    EXPECT_EQ(notes.keeps[0].reason, KeptReason::Link);
}

TEST(AppCleanSafety, AFileInAFoldersPlaceIsNoLink) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp", 5);
    Notes notes;
    ThirdPartyAppCacheManager manager(device.services());
    manager.setObserver(&notes);
    device.clean(manager, kApp);
    ASSERT_EQ(notes.keeps.size(), 1U);
    EXPECT_EQ(notes.keeps[0].reason, KeptReason::Failed);
}

TEST(AppCleanSafety, AHiddenRootThatIsALinkIsNotEntered) {
    AppsDevice device;
    const std::string groups = "/var/mobile/Containers/Shared/AppGroup";
    device.container("C1", kApp);
    const std::vector<std::string> canaries = {"/var/mobile/Library/Caches/canary",
                                               "/var/tmp/canary", "/else/var/tmp/canary"};
    for (const std::string& canary : canaries)
        device.tree.file(canary, 5);
    device.tree.link(groups + "/.jbroot-1", "/");
    device.tree.link(groups + "/.jbroot-2", "/else");
    device.tree.link(groups + "/.jbroot-3/var", "/var");
    device.tree.folder(groups + "/.jbroot-4/var");
    device.tree.link(groups + "/.jbroot-4/var/mobile", "/var/mobile");
    device.tree.link(groups + "/.jbroot-4/var/tmp", "/var/tmp");
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(device.clean(manager, kApp).bytes, 0U);
    for (const std::string& canary : canaries)
        EXPECT_TRUE(device.tree.exists(canary)) << canary;
}

TEST(AppCleanSafety, ProtectedPathsStayAndDoNotCount) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/Library/Caches/keep", 1);
    device.tree.file(data + "/Library/Caches/folder/keep", 10);
    device.tree.file(data + "/Library/Caches/folder/sibling", 20);
    device.tree.file(data + "/Library/Caches/go", 100);
    device.tree.file(data + "/tmp/go", 1000);
    ASSERT_TRUE(device.pathWhitelist.addPathToWhitelist(data + "/Library/Caches/keep").has_value());
    ASSERT_TRUE(
        device.pathWhitelist.addPathToWhitelist(data + "/Library/Caches/folder/keep").has_value());
    Notes notes;
    ThirdPartyAppCacheManager manager(device.services());
    manager.setObserver(&notes);
    const LogCapture log;
    const auto outcome = device.clean(manager, kApp);
    EXPECT_EQ(outcome.bytes, 1100U);
    EXPECT_TRUE(device.tree.exists(data + "/Library/Caches/keep"));
    EXPECT_TRUE(device.tree.exists(data + "/Library/Caches/folder/keep"));
    EXPECT_TRUE(device.tree.exists(data + "/Library/Caches/folder/sibling"));
    EXPECT_FALSE(device.tree.exists(data + "/Library/Caches/go"));
    EXPECT_TRUE(log.contains("🔒 跳过白名单路径: " + data + "/Library/Caches/keep"));
    EXPECT_THAT(notes.keeps,
                ElementsAre(Notes::Kept{data + "/Library/Caches/folder", KeptReason::Protected,
                                        data + "/Library/Caches/folder/keep"},
                            Notes::Kept{data + "/Library/Caches/keep", KeptReason::Protected,
                                        data + "/Library/Caches/keep"}));
    EXPECT_EQ(device.history.getAllCleanHistory().at(0).cleanedBytes, 1100U);
}

TEST(AppCleanSafety, AProtectedContainerKeepsEverything) {
    for (const char* shielded : {"", "/Library", "/Library/Caches"}) {
        AppsDevice device;
        const std::string data = device.container("C1", kApp);
        device.tree.file(data + "/Library/Caches/keep", 10);
        device.tree.file(data + "/Library/Caches/folder/.keep", 10);
        ASSERT_TRUE(device.pathWhitelist.addPathToWhitelist(data + shielded).has_value());
        ThirdPartyAppCacheManager manager(device.services());
        EXPECT_EQ(device.clean(manager, kApp).bytes, 0U);
        EXPECT_TRUE(device.tree.exists(data + "/Library/Caches/keep"));
        EXPECT_TRUE(device.tree.exists(data + "/Library/Caches/folder/.keep"));
        EXPECT_THAT(device.history.getAllCleanHistory(), IsEmpty());
    }
}

// So goes an app that was found while its metadata could not be read.
TEST(AppCleanSafety, AWhitelistedAppIsNotCleanedByItsContainersName) {
    AppsDevice device;
    const std::string file = device.container("C1", kApp) + "/tmp/x";
    device.tree.file(file, 5);
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist(kApp));
    ThirdPartyAppCacheManager manager(device.services());
    const auto refused = device.clean(manager, "C1");
    ASSERT_TRUE(refused.error.has_value());
    EXPECT_EQ(refused.error->description,
              AppsDevice::containerPath("C1") + ": belongs to whitelisted " + kApp);
    EXPECT_EQ(refused.bytes, 0U);
    EXPECT_TRUE(device.tree.exists(file));

    // By its own name it may be cleaned, as a tap on a protected app is asked for.
    EXPECT_TRUE(device.clean(manager, kApp).success);
    EXPECT_FALSE(device.tree.exists(file));
}

TEST(AppCleanSafety, ProtectionHoldsByWhateverNameAPathIsGiven) {
    AppsDevice device;
    device.tree.folder("/private/var");
    fs::remove_all(device.tree.host("/var"));
    device.tree.link("/var", "private/var");
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp/keep", 10);
    device.tree.file(data + "/tmp/also", 10);
    device.tree.file(data + "/tmp/go", 100);
    device.tree.link("/alias", data + "/tmp");
    ASSERT_TRUE(
        device.pathWhitelist.addPathToWhitelist("/private" + data + "/tmp/keep").has_value());
    ASSERT_TRUE(device.pathWhitelist.addPathToWhitelist("/alias/also").has_value());
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(device.clean(manager, kApp).bytes, 100U);
    EXPECT_THAT(*device.files.contentsOfDirectory(data + "/tmp"), ElementsAre("also", "keep"));
}

TEST(AppCleanSafety, APathProtectedByAnotherProcessStays) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp/keep", 10);
    ThirdPartyAppCacheManager manager(device.services());
    platform::UserDefaults ofAnother(device.tree.files(), device.device.userDefaultsFile());
    PathWhitelistManager another(ofAnother);
    ASSERT_TRUE(another.addPathToWhitelist(data + "/tmp/keep").has_value());
    EXPECT_EQ(device.clean(manager, kApp).bytes, 0U);
    EXPECT_TRUE(device.tree.exists(data + "/tmp/keep"));
}

TEST(AppCleanStop, ACleanEndsAfterTheEntryInHandAndCountsWhatWent) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/Library/Caches/1/x", 1);
    device.tree.file(data + "/Library/Caches/2", 10);
    device.tree.file(data + "/Library/Caches/3", 100);
    device.tree.file(data + "/tmp/x", 1000);
    ThirdPartyAppCacheManager manager(device.services());
    Notes notes;
    notes.onRemoval = [&] {
        if (notes.removals.size() == 2) manager.stop();
    };
    manager.setObserver(&notes);
    const auto outcome = device.clean(manager, kApp);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 11U);
    EXPECT_THAT(*device.files.contentsOfDirectory(data + "/Library/Caches"), ElementsAre("3"));
    EXPECT_TRUE(device.tree.exists(data + "/tmp/x"));
    EXPECT_EQ(device.statistics.totals().totalCleanedBytes, 11U);

    notes.onRemoval = {};
    EXPECT_EQ(device.clean(manager, kApp).bytes, 1100U);  // a new clean is not stopped
}

TEST(AppCleanStop, ABatchEndsWithTheAppInHand) {
    AppsDevice device;
    const std::string a = device.container("CA", kApp);
    const std::string b = device.container("CB", "com.example.b");
    device.tree.file(a + "/tmp/x", 10);
    device.tree.file(b + "/tmp/x", 100);
    ThirdPartyAppCacheManager manager(device.services());
    Notes notes;
    notes.onRemoval = [&] { manager.stop(); };
    manager.setObserver(&notes);
    const auto outcome = device.cleanBatch(manager, {kApp, "com.example.b"});
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 10U);
    EXPECT_TRUE(device.tree.exists(b + "/tmp/x"));
    EXPECT_EQ(device.history.getAllCleanHistory().size(), 2U);
}

TEST(AppCleanStop, ACleanOfAllMayBeStoppedWhileItLooksForApps) {
    AppsDevice device;
    device.tree.file(device.container("C1", kApp) + "/tmp/x", 10);
    FaultyFileManager files(device.files, {Operation::OpenDirectory});
    ThirdPartyAppCacheManager manager(device.services(files, device.deviceEraser));
    files.before([&](Operation, const std::string&) { manager.stop(); });
    const auto outcome = device.cleanAll(manager);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 0U);
    EXPECT_TRUE(device.tree.exists(AppsDevice::containerPath("C1") + "/tmp/x"));
}

TEST(AppCleanStop, AStoppedCleanStaysStoppedWhenAnotherIsAskedFor) {
    AppsDevice device;
    const std::string a = device.container("CA", kApp);
    const std::string b = device.container("CB", "com.example.b");
    for (const char* name : {"/tmp/1", "/tmp/2", "/tmp/3"})
        device.tree.file(a + name, 10);
    device.tree.file(b + "/tmp/x", 100);
    ThirdPartyAppCacheManager manager(device.services());
    std::optional<std::uint64_t> freedOfB;
    Notes notes;
    notes.onRemoval = [&] {
        if (notes.removals.size() > 1) return;
        manager.stop();
        manager.cleanCacheForApp(
            "com.example.b", {}, [&](bool, std::uint64_t bytes, const auto&) { freedOfB = bytes; },
            std::make_shared<Notes>());
    };
    manager.setObserver(&notes);
    EXPECT_EQ(device.clean(manager, kApp).bytes, 10U);
    device.mainQueue.runUntil([&] { return freedOfB.has_value(); });
    EXPECT_EQ(freedOfB, 100U);
    EXPECT_THAT(*device.files.contentsOfDirectory(a + "/tmp"), ElementsAre("2", "3"));
}

TEST(AppCleanSafety, AManagerMayGoWhileItsCleanOfAllAppsRuns) {
    AppsDevice device;
    device.tree.file(device.container("C1", kApp) + "/tmp/x", 10);
    std::optional<std::uint64_t> freed;
    {
        ThirdPartyAppCacheManager manager(device.services());
        manager.cleanAllThirdPartyAppCaches(
            {}, [&](bool, std::uint64_t bytes, const auto&) { freed = bytes; });
    }
    device.mainQueue.drain();
    EXPECT_EQ(freed, 10U);
    EXPECT_FALSE(device.tree.exists(AppsDevice::containerPath("C1") + "/tmp/x"));
}

/// Swaps a folder for a link to another and back, as fast as it can, while it lives.
class Swapper {
  public:
    Swapper(const std::string& folder, const std::string& target)
        : thread_([this, folder, target] {
              const std::string aside = folder + ".aside";
              const fs::path leads = fs::relative(target, fs::path(folder).parent_path());
              while (!stopped_) {
                  fs::rename(folder, aside);
                  fs::create_symlink(leads, folder);
                  ++swaps_;
                  fs::remove(folder);
                  fs::rename(aside, folder);
              }
          }) {}
    ~Swapper() {
        stopped_ = true;
        thread_.join();
    }
    Swapper(const Swapper&) = delete;
    Swapper& operator=(const Swapper&) = delete;

    [[nodiscard]] int swaps() const { return swaps_; }

  private:
    std::atomic<bool> stopped_{false};
    std::atomic<int> swaps_{0};
    std::thread thread_;
};

class AppCleanUnderSwaps : public ::testing::TestWithParam<const char*> {};

TEST_P(AppCleanUnderSwaps, TheCanarySurvives) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    const std::string root = "/var/mobile/Containers/Shared/AppGroup/.jbroot-1";
    const std::vector<std::string> folders = {data + "/Library/Caches", data + "/tmp",
                                              root + "/var/tmp",
                                              root + "/var/mobile/Library/Caches"};
    for (const std::string& folder : folders)
        device.tree.folder(folder);
    // Where the clean would come out, whichever of the folders led to the canaries.
    std::vector<std::string> canaries;
    for (const char* place :
         {"/canary", "/tmp/canary", "/Caches/canary", "/Library/Caches/canary",
          "/mobile/Library/Caches/canary", "/var/tmp/canary", "/var/mobile/Library/Caches/canary"})
        canaries.push_back(std::string("/var/mobile/Documents") + place);
    for (const std::string& canary : canaries)
        device.tree.file(canary, 5);
    device.workspace.offer({});
    test::FakeApp app;
    app.identifier = kApp;
    app.dataPath = data;
    device.workspace.offer({app});

    ThirdPartyAppCacheManager manager(device.services());
    const std::string swapped =
        std::string(GetParam()).starts_with("root") ? root + (GetParam() + 4) : data + GetParam();
    const Swapper swapper(device.tree.host(swapped), device.tree.host("/var/mobile/Documents"));
    for (int round = 0; round < 300 || swapper.swaps() < 300; ++round) {
        std::optional<platform::Error> error;
        manager.cleanNow(kApp, {}, error);
        ASSERT_FALSE(error.has_value());
    }
    for (const std::string& canary : canaries)
        EXPECT_TRUE(device.tree.exists(canary)) << canary;
}

INSTANTIATE_TEST_SUITE_P(, AppCleanUnderSwaps,
                         ::testing::Values("/Library/Caches", "/Library", "/tmp", "", "root",
                                           "root/var", "root/var/mobile"));

}  // namespace
}  // namespace sweepwright
