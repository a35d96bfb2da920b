// Others swap folders for links, rename, add, delete and mount while cleans run.
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "hardening/SmallDevice.h"
#include "platform/base/UniqueDescriptor.h"
#include "support/ChildProcess.h"

namespace sweepwright {
namespace {

namespace fs = std::filesystem;

using platform::UniqueDescriptor;
using test::SmallDevice;
using test::Worker;

/// How many changes the others make while one kind of clean runs again and again.
int wantedRounds() {
    const char* given = std::getenv("SWEEPWRIGHT_RACE_ROUNDS");
    return given == nullptr ? 400 : std::max(std::atoi(given), 1);
}

constexpr int kFewestCleans = 20;

/// A folder that cleans go into, above or beneath what they empty.
struct Target {
    std::string path;
    /// Emptied under its own name, it is so even with something mounted on it (a temporary folder
    /// may be a volume of its own): there mounts come and go inside.
    bool named = false;
};

std::vector<Target> targets() {
    const std::string app = "/var/mobile/Containers/Data/Application/UUID-com.example.one";
    return {{SmallDevice::home("Library/Caches/folder")},
            {SmallDevice::home("Library/Caches/folder/deep")},
            {SmallDevice::home("Library/Caches/Kingfisher")},
            {SmallDevice::home("Library/Application Support/AppCache")},
            {SmallDevice::home("Library/Application Support/OfflineMaps")},
            {SmallDevice::home("Library/Cookies"), true},
            {SmallDevice::home("Library/WebKit"), true},
            {SmallDevice::home("Library/Safari/LocalStorage")},
            {SmallDevice::home("Library/Logs"), true},
            {SmallDevice::home("Library/Logs/CrashReporter"), true},
            {SmallDevice::home("Documents/Downloads"), true},
            {SmallDevice::home("tmp"), true},
            {SmallDevice::home("tmp/a")},
            {"/var/mobile/Library/Caches/com.apple.springboard"},
            {"/var/mobile/Library/Caches/SomeCache"},
            {"/var/mobile/Library/Safari/WebKitCache", true},
            {"/var/MobileAsset/AssetsV2"},
            {"/var/MobileAsset/AssetsV2/folder"},
            {"/var/db/uuidtext"},
            {app + "/Library/Caches/a"},
            {app + "/tmp"},
            {app + "/Library/WebKit"}};
}

/// Changes the tree in random ways, from its own thread, until destroyed; then puts back what it
/// had swapped.
class Meddler {
  public:
    Meddler(SmallDevice& device, unsigned seed, std::atomic<int>& rounds, bool mounts)
        : device_(device), mounts_(mounts), random_(seed), rounds_(rounds) {
        stash_ = device.tree().host("/stash");
        fs::create_directories(stash_);
        for (const auto& [path, named] : targets()) {
            targets_.push_back(device.tree().host(path));
            mountPlaces_.push_back(targets_.back() + (named ? "/inner" : ""));
        }
        thread_ = std::thread([this] { run(); });
    }
    ~Meddler() {
        done_ = true;
        thread_.join();
        putBack();
    }
    Meddler(const Meddler&) = delete;
    Meddler& operator=(const Meddler&) = delete;

  private:
    void run() {
        while (!done_) {
            if (change(random_() % targets_.size())) ++rounds_;
        }
    }

    /// Whether it took effect.
    bool change(std::size_t which) {
        const std::string& target = targets_[which];
        switch (random_() % (mounts_ ? 6 : 5)) {
            case 0:
            case 1:
                return swapForLink(which);
            case 2: {
                const std::string aside = target + ".aside";
                return rename(target.c_str(), aside.c_str()) == 0 &&
                       rename(aside.c_str(), target.c_str()) == 0;
            }
            case 3: {
                const int file = open((target + "/added" + std::to_string(random_() % 50)).c_str(),
                                      O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0644);
                return file >= 0 && close(file) == 0;
            }
            case 4: {
                const std::string folder = target + "/made";
                return mkdir(folder.c_str(), 0755) == 0 && rmdir(folder.c_str()) == 0;
            }
            default:
                return mountOver(mountPlaces_[which]);
        }
    }

    /// Where a shell's command works nothing is mounted: what is mounted while it runs it may
    /// enter.
    bool mountOver(const std::string& target) {
        if (FileCleanerEngine::isSystemPath(target.substr(device_.tree().root().size())))
            return false;
        // A link in its place is not followed, and what was found is what is mounted on and freed:
        // by its path one would mount on what a link leads to, and leave it so when the link is
        // cleaned.
        const fs::path path(target);
        const UniqueDescriptor above(
            open(path.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        const std::string name = path.filename();
        static_cast<void>(mkdirat(above.get(), name.c_str(), 0755));
        const UniqueDescriptor place(
            openat(above.get(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!place.valid()) return false;
        const std::string opened = "/proc/self/fd/";
        const std::string on = opened + std::to_string(place.get());
        const std::string off = opened + std::to_string(above.get()) + "/" + name;
        return mount(device_.outside().c_str(), on.c_str(), nullptr, MS_BIND, nullptr) == 0 &&
               umount2(off.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW) == 0;
    }

    /// The folder, or the link that stands in its place, and what is in the stash change places.
    bool swapForLink(std::size_t which) {
        const std::string aside = stash_ + "/" + std::to_string(which);
        // Out of the device, to the canary; and within it, to what is protected.
        const std::string to = random_() % 2 == 0
                                   ? device_.outside()
                                   : device_.tree().host(SmallDevice::home("Documents/secret"));
        static_cast<void>(symlink(to.c_str(), aside.c_str()));
        return renameat2(AT_FDCWD, targets_[which].c_str(), AT_FDCWD, aside.c_str(),
                         RENAME_EXCHANGE) == 0;
    }

    void putBack() {
        // From above: what is beneath a swapped folder is found where it was only then.
        for (std::size_t which = 0; which < targets_.size(); ++which) {
            const std::string aside = stash_ + "/" + std::to_string(which);
            std::error_code none;
            if (fs::is_symlink(targets_[which]) && fs::exists(fs::symlink_status(aside)))
                renameat2(AT_FDCWD, targets_[which].c_str(), AT_FDCWD, aside.c_str(),
                          RENAME_EXCHANGE);
            if (fs::is_symlink(targets_[which])) fs::remove(targets_[which], none);
        }
        fs::remove_all(stash_);
    }

    SmallDevice& device_;
    bool mounts_;
    std::mt19937 random_;
    std::atomic<int>& rounds_;
    std::atomic<bool> done_{false};
    std::string stash_;
    std::vector<std::string> targets_;
    std::vector<std::string> mountPlaces_;  ///< of each target, in their order
    std::thread thread_;
};

class Races : public testing::TestWithParam<int> {
  protected:
    /// The shell of the host, so that what it could be led to is at stake.
    static void useRealShell(Worker& worker) {
        worker.commands.answer([](const test::FakeCommandRunner::Command& command) {
            return platform::SpawnCommandRunner().run(command.text, command.folder);
        });
    }

    void meddle(platform::FileManager& files, bool mounts) {
        std::atomic<int> rounds{0};
        int cleans = 0;
        while (rounds < wantedRounds() || cleans < kFewestCleans) {
            device_.restore();
            Worker worker(device_.tree().root(), files);
            useRealShell(worker);
            {
                const int before = rounds;
                const Meddler meddler(device_, static_cast<unsigned>(cleans), rounds, mounts);
                while (rounds == before)
                    std::this_thread::yield();
                EXPECT_TRUE(worker.clean(GetParam()).success);
            }
            ++cleans;
            ASSERT_EQ(device_.damage(), "") << "clean " << cleans;
        }
        std::printf("%d changes during %d cleans\n", rounds.load(), cleans);
    }

    SmallDevice device_;
};

TEST_P(Races, TheCanaryOutsideAndAllThatIsProtectedSurvive) {
    meddle(device_.tree().files(), false);
}

TEST_P(Races, TheySurviveMountPointsThatComeAndGo) {
    if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    if (test::ranInFreshProcess()) return;
    test::withOwnMounts([&] {
        platform::HostFileManager files(platform::DeviceRoot::open(device_.tree().root()).value());
        meddle(files, true);
    });
    EXPECT_EQ(device_.damage(), "");
}

INSTANTIATE_TEST_SUITE_P(, Races, testing::Range(0, int{test::kCleans}),
                         [](const auto& each) { return test::cleanName(each.param); });

TEST(LateEntries, WhatAppearsAfterTheListingIsKept) {
    SmallDevice device;
    Worker worker(device.tree());
    bool planted = false;
    worker.eraser.onRemove = [&](const std::string& path) {
        if (!path.starts_with(SmallDevice::home("tmp/")) || planted) return;
        planted = true;
        device.tree().file(SmallDevice::home("tmp/late"), 5);
    };
    const auto outcome = worker.clean(static_cast<int>(CleanType::TempFiles));
    EXPECT_EQ(outcome.bytes, device.bytesGone());
    EXPECT_TRUE(planted);
    EXPECT_TRUE(device.tree().exists(SmallDevice::home("tmp/late")));
}

TEST(LateEntries, InAnAppsFolderTheyAreKeptToo) {
    SmallDevice device;
    Worker worker(device.tree());
    const std::string tmp = "/var/mobile/Containers/Data/Application/UUID-com.example.one/tmp/";
    bool planted = false;
    worker.eraser.onRemove = [&](const std::string& path) {
        if (!path.starts_with(tmp) || planted) return;
        planted = true;
        device.tree().file(tmp + "late", 5);
    };
    const auto outcome = worker.clean(test::kOneApp);
    EXPECT_EQ(outcome.bytes, device.bytesGone());
    EXPECT_TRUE(planted);
    EXPECT_TRUE(device.tree().exists(tmp + "late"));
}

}  // namespace
}  // namespace sweepwright
