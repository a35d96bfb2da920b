#include <QCoreApplication>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/CleanPreview.h"
#include "platform/files/HostFileManager.h"
#include "sample/SampleDevice.h"
#include "support/engine/DeviceServices.h"
#include "ui/endtoend/RunningApp.h"

namespace sweepwright::test {
namespace {

namespace fs = std::filesystem;

// A sample device's folder, read from the outside.
class SampleOnDisk {
  public:
    SampleOnDisk() : root_(folder_.path() + "/device") {
        const auto made = sample::makeSampleDevice(root_, 1);
        EXPECT_TRUE(made.has_value());
    }
    [[nodiscard]] const std::string& root() const { return root_; }

    /// Paths of all that is there but the user defaults; links are not followed.
    [[nodiscard]] std::set<std::string> everything() const {
        std::set<std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(root_)) {
            const std::string path = entry.path().string().substr(root_.size());
            if (path.find("/Library/Preferences") == std::string::npos) found.insert(path);
        }
        return found;
    }

    /// What a clean of everything would do now.
    [[nodiscard]] CleanPreview preview() {
        Opened device(root_);
        const auto found = previewClean(device.engineServices(), CleanType::All);
        EXPECT_TRUE(found.has_value());
        return found.value_or(CleanPreview{});
    }
    [[nodiscard]] std::vector<CleanHistoryItem> history() {
        return Opened(root_).history.getAllCleanHistory();
    }
    [[nodiscard]] std::uint64_t totalCleanedBytes() {
        return Opened(root_).statistics.totals().totalCleanedBytes;
    }

  private:
    static platform::Device open(const std::string& root) {
        platform::DeviceOptions options;
        options.rootFolder = root;
        return platform::Device::open(options).value();
    }
    struct Calls {
        platform::HostFileManager files;
    };
    struct Opened : Calls, DeviceServices {
        explicit Opened(const std::string& root) : Opened(open(root)) {}
        explicit Opened(const platform::Device& of)
            : Calls{platform::HostFileManager(of.root())}, DeviceServices(of, files, files) {}
    };

    TemporaryFolder folder_;
    std::string root_;
};

// A device path as the folder has it: its /var is a link.
std::string onDisk(const std::string& path) {
    return path.starts_with("/var/") ? "/private" + path : path;
}

// What is left of a tree when the entries have gone with all that is in them.
std::set<std::string> without(const std::set<std::string>& tree, const CleanPreview& preview) {
    std::set<std::string> left = tree;
    for (const auto& entry : preview.entries) {
        const std::string gone = onDisk(entry.path);
        EXPECT_EQ(tree.count(gone), 1U) << gone;
        left.erase(gone);
        left.erase(left.lower_bound(gone + "/"), left.lower_bound(gone + "0"));
    }
    return left;
}

TEST(TheRunningApp, CleansEverythingByClicksAndLeavesAllElseAsItWas) {
    SampleOnDisk device;
    VirtualDisplay display;
    ASSERT_FALSE(display.name().isEmpty());
    RunningApp app(display, device.root());

    // A first start: the welcome, then a scan, then a look into a card.
    app.click("closeButton");
    app.click("scanButton");
    EXPECT_FALSE(app.find("Scan Completed").isEmpty());
    app.click("OK");
    app.click("Cache Files");
    EXPECT_FALSE(app.find("fileRow0").isEmpty());
    app.click("Cache Files");

    const std::set<std::string> before = device.everything();
    const CleanPreview preview = device.preview();
    ASSERT_GT(preview.entries.size(), 100U);
    ASSERT_GT(preview.kept.size(), 0U);

    const double barTop = app.find("tabBar").top();
    app.scrollTo("cleanAllButton", barTop);
    app.click("cleanAllButton");
    EXPECT_FALSE(app.find("Clean Everything?").isEmpty());
    app.click("Clean");
    ASSERT_FALSE(app.find("Clean Completed").isEmpty());

    const auto history = device.history();
    ASSERT_EQ(history.size(), 1U);
    EXPECT_EQ(history[0].cleanType, CleanType::All);
    EXPECT_EQ(history[0].cleanTypeName, "一键清理全部");
    EXPECT_EQ(history[0].cleanedBytes, preview.wouldFree);
    EXPECT_EQ(device.totalCleanedBytes(), preview.wouldFree);
    const std::string message = StorageAnalyzer::formatBytes(preview.wouldFree) + " freed.";
    EXPECT_FALSE(app.find(message.c_str()).isEmpty());
    app.click("OK");
    // The cards have been measured anew.
    EXPECT_FALSE(app.find("0 B").isEmpty());
    EXPECT_EQ(app.close(), 0);

    EXPECT_EQ(device.everything(), without(before, preview));
}

}  // namespace
}  // namespace sweepwright::test

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
