#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <thread>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using test::EngineDevice;
using test::Operation;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

/// Hears what a clean decides.
class Notes final : public CleanObserver {
  public:
    std::vector<std::pair<std::string, std::uint64_t>> gone;
    std::vector<std::string> stays;  ///< "<path> <reason> <by>"

    void removed(const std::string& path, std::uint64_t bytes) override {
        gone.emplace_back(path, bytes);
    }
    void kept(const std::string& path, KeptReason reason, const std::string& by) override {
        stays.push_back(path + " " + std::string(keptReasonName(reason)) + " " + by);
    }
};

/// Whitelists one path alone, and not what lies above it.
class OnePathEngine final : public FileCleanerEngine {
  public:
    OnePathEngine(const EngineServices& services, std::string path)
        : FileCleanerEngine(services), path_(std::move(path)) {}
    bool isPathInWhitelist(const std::string& path) const override { return path == path_; }

  private:
    std::string path_;
};

class ContentsRemovalTest : public EngineTest {
  protected:
    std::uint64_t empty(const std::string& directory) {
        return d_.engine.removeContentsOfDirectory(directory, {});
    }

    struct Call {
        std::string item;
        double fraction = 0;
        bool operator==(const Call&) const = default;
    };
    /// The progress calls of emptying `directory`, when the main queue has run.
    std::vector<Call> progressOf(FileCleanerEngine& engine, const std::string& directory) {
        std::vector<Call> calls;
        engine.removeContentsOfDirectory(directory, [&](const std::string& item, double fraction) {
            calls.push_back({item, fraction});
        });
        EXPECT_THAT(calls, IsEmpty());
        while (d_.mainQueue.drain() > 0) {
        }
        return calls;
    }
};

TEST_F(ContentsRemovalTest, EverythingVisibleGoesButTheDirectoryItself) {
    d_.tree.file("/var/t/a", 10);
    d_.tree.file("/var/t/sub/b", 100);
    d_.tree.file("/var/t/sub/.hidden", 1'000);  // goes with its folder, and is not counted
    d_.tree.folder("/var/t/empty");
    EXPECT_EQ(empty("/var/t"), 110U);
    EXPECT_TRUE(d_.tree.exists("/var/t"));
    EXPECT_THAT(d_.tree.entriesBeneath("/var/t"), IsEmpty());
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(ContentsRemovalTest, OnlyThePlainEntryOfAMixedDirectoryGoes) {
    d_.tree.file("/var/t/.keep", 1);
    d_.tree.file("/var/t/kept/a", 10);
    d_.tree.link("/var/t/link", "/var/t/kept");
    d_.tree.file("/var/t/data.db", 100);
    d_.tree.file("/var/t/x.tmp", 1'000);
    OnePathEngine engine(d_.engineServices(), "/var/t/kept");
    const auto names = d_.tree.files().contentsOfDirectory("/var/t").value();
    const auto place = std::ranges::find(names, "x.tmp") - names.begin() + 1;
    EXPECT_THAT(progressOf(engine, "/var/t"),
                ElementsAre(Call{"x.tmp", static_cast<double>(place) / 5}));
    EXPECT_THAT(d_.tree.entriesBeneath("/var/t"),
                ElementsAre("/var/t/.keep", "/var/t/data.db", "/var/t/kept", "/var/t/kept/a",
                            "/var/t/link"));
    EXPECT_THAT(lines(), UnorderedElementsAre("🔒 跳过白名单路径: /var/t/kept",
                                              "⚠️ 跳过 SQLite 数据库文件: /var/t/data.db"));
}

TEST_F(ContentsRemovalTest, OfTheWholeDeviceProtectedEntriesStay) {
    d_.tree.file("/kept/a", 10);
    d_.tree.file("/x.tmp", 1'000);
    d_.protect("/kept");
    log_.clear();
    EXPECT_EQ(empty("/"), 1'000U);
    EXPECT_TRUE(d_.tree.exists("/kept/a"));
    EXPECT_TRUE(d_.tree.exists("/var"));  // above the built-in paths
    EXPECT_FALSE(d_.tree.exists("/x.tmp"));
    EXPECT_THAT(lines(),
                UnorderedElementsAre("🔒 跳过白名单路径: /kept", "🔒 跳过白名单路径: /var"));
}

TEST_F(ContentsRemovalTest, AWhitelistedDirectoryStaysAsItIs) {
    d_.tree.file("/var/t/a", 10);
    d_.protect("/var/t");
    log_.clear();
    EXPECT_EQ(empty("/var/t"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/t/a"));
    EXPECT_THAT(log_.lines(),
                ElementsAre("🔒 白名单精确匹配: /var/t", "🔒 白名单目录跳过删除: /var/t"));
}

TEST_F(ContentsRemovalTest, ADirectoryThatHoldsAWhitelistedPathStaysAsItIs) {
    d_.tree.file("/var/t/a", 10);
    d_.tree.file("/var/t/sub/kept", 10);
    d_.protect("/var/t/sub/kept");
    EXPECT_EQ(empty("/var/t"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/t/a"));
}

TEST_F(ContentsRemovalTest, ASystemPathIsEmptiedByTheShellWithoutProgress) {
    d_.tree.file("/var/MobileAsset/AssetsV2/a", 10);
    EXPECT_THAT(progressOf(d_.engine, "/var/MobileAsset/AssetsV2"), IsEmpty());
    ASSERT_EQ(d_.commands.commands().size(), 1U);
    ASSERT_FALSE(lines().empty());
    EXPECT_EQ(lines().front(), "🔧 检测到系统路径，使用posix_spawn删除: /var/MobileAsset/AssetsV2");
    EXPECT_FALSE(d_.tree.exists("/var/MobileAsset/AssetsV2/a"));
}

TEST_F(ContentsRemovalTest, AWhitelistedSystemPathIsNotEvenHandedToTheShell) {
    d_.tree.file("/var/MobileAsset/AssetsV2/a", 10);
    d_.protect("/var/MobileAsset/AssetsV2/a");
    EXPECT_EQ(empty("/var/MobileAsset/AssetsV2"), 0U);
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
    EXPECT_TRUE(logged("🔒 白名单目录跳过删除: /var/MobileAsset/AssetsV2"));
}

TEST_F(ContentsRemovalTest, MissingUnreadableEmptyAndPlainFilePathsFreeNothing) {
    d_.tree.folder("/var/empty");
    d_.tree.file("/var/file", 10);
    d_.tree.file("/var/closed/a", 10);
    failAbout("/var/closed", {Operation::ReadEntries}, EIO);
    for (const char* path : {"/var/missing", "/var/empty", "/var/file", "/var/closed"})
        EXPECT_EQ(empty(path), 0U) << path;
    EXPECT_TRUE(d_.tree.exists("/var/file"));
    EXPECT_TRUE(d_.tree.exists("/var/closed/a"));
}

TEST_F(ContentsRemovalTest, LinksAreNeitherFollowedNorRemoved) {
    d_.tree.file("/var/elsewhere/a", 10);
    d_.tree.link("/var/t/folder", "/var/elsewhere");
    d_.tree.link("/var/t/file", "/var/elsewhere/a");
    d_.tree.link("/var/t/broken", "/var/nothing");
    EXPECT_EQ(empty("/var/t"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/t/folder"));
    EXPECT_TRUE(d_.tree.exists("/var/t/file"));
    EXPECT_TRUE(d_.tree.exists("/var/t/broken"));
    EXPECT_TRUE(d_.tree.exists("/var/elsewhere/a"));
}

TEST_F(ContentsRemovalTest, LinksInsideAFolderThatGoesAreRemovedAndNotFollowed) {
    d_.tree.file("/var/elsewhere/a", 10);
    d_.tree.link("/var/t/sub/folder", "/var/elsewhere");
    d_.tree.file("/var/t/sub/b", 1);
    EXPECT_EQ(empty("/var/t"), 1U);
    EXPECT_FALSE(d_.tree.exists("/var/t/sub"));
    EXPECT_TRUE(d_.tree.exists("/var/elsewhere/a"));
}

TEST_F(ContentsRemovalTest, ADirectoryThatIsItselfALinkIsNotEmptied) {
    d_.tree.file("/var/elsewhere/a", 10);
    d_.tree.link("/var/t", "/var/elsewhere");
    Notes notes;
    d_.engine.setObserver(&notes);
    EXPECT_EQ(empty("/var/t"), 0U);
    EXPECT_EQ(empty("/var/t/"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/elsewhere/a"));
    EXPECT_THAT(notes.stays, Contains("/var/t link "));
}

TEST_F(ContentsRemovalTest, ADatabaseInAFolderThatGoesGoesToo) {
    d_.tree.file("/var/t/sub/data.db", 10);
    EXPECT_EQ(empty("/var/t"), 10U);
}

TEST_F(ContentsRemovalTest, AFolderNamedAsADatabaseStays) {
    d_.tree.file("/var/t/x.SQLite/a", 10);
    EXPECT_EQ(empty("/var/t"), 0U);
    EXPECT_THAT(lines(), ElementsAre("⚠️ 跳过 SQLite 数据库文件: /var/t/x.SQLite"));
}

TEST_F(ContentsRemovalTest, TheCachesOfMapsStayWhereverTheyLie) {
    d_.tree.file("/var/t/com.apple.Maps/a", 10);
    d_.tree.file("/var/t/xMappedImageCachex/a", 10);
    EXPECT_EQ(empty("/var/t"), 0U);
    EXPECT_EQ(empty("/var/t/com.apple.Maps"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/t/com.apple.Maps/a"));
    EXPECT_TRUE(d_.tree.exists("/var/t/xMappedImageCachex/a"));
    EXPECT_TRUE(logged("🗺️ 跳过地图应用缓存: /var/t/com.apple.Maps (保护地图图片缓存)"));
}

TEST_F(ContentsRemovalTest, TheUserDefaultsStayByEitherNameOfTheirFolder) {
    d_.protect("/var/kept");  // so that they are there
    d_.tree.link("/alias", "/var");
    d_.tree.file(d_.library("Preferences/other.plist"), 10);
    d_.tree.file(d_.library("other"), 1);
    EXPECT_EQ(empty(d_.device.libraryDirectory()), 1U);
    EXPECT_EQ(empty("/alias/mobile/Containers/Data/Application/SELF"), 0U);
    EXPECT_EQ(empty(d_.library("Preferences")), 10U);
    EXPECT_TRUE(d_.tree.exists(d_.device.userDefaultsFile()));
    EXPECT_TRUE(d_.tree.exists(d_.device.userDefaultsFile() + ".lock"));
}

TEST_F(ContentsRemovalTest, AnEntryWhoseAttributesCannotBeReadIsAnOrdinaryOne) {
    d_.tree.file("/var/t/a", 10);
    failAbout("/var/t/a", {Operation::AttributesAt}, EIO);
    empty("/var/t");
    EXPECT_FALSE(d_.tree.exists("/var/t/a"));
}

TEST_F(ContentsRemovalTest, AnEntryThatCannotBeRemovedIsToldOfAndNotCounted) {
    d_.tree.file("/var/t/a", 10);
    d_.tree.file("/var/t/b", 100);
    failAbout("/var/t/a", {Operation::RemoveFileAt}, EPERM);
    EXPECT_EQ(empty("/var/t"), 100U);
    EXPECT_TRUE(d_.tree.exists("/var/t/a"));
    EXPECT_THAT(lines(), ElementsAre("⚠️ 无法删除文件: /var/t/a, 错误: /var/t/a: Operation not "
                                     "permitted"));
}

TEST_F(ContentsRemovalTest, AFolderThatCannotBeRemovedWholeFreesAndCountsWhatItCan) {
    d_.tree.file("/var/t/sub/a", 10);
    d_.tree.file("/var/t/sub/fixed", 100);
    d_.tree.file("/var/t/sub/deep/b", 1'000);
    failAbout("/var/t/sub/fixed", {Operation::RemoveFileAt}, EPERM);
    Notes notes;
    d_.engine.setObserver(&notes);
    EXPECT_EQ(empty("/var/t"), 1'010U);
    EXPECT_THAT(d_.tree.entriesBeneath("/var/t"), ElementsAre("/var/t/sub", "/var/t/sub/fixed"));
    EXPECT_THAT(lines(), ElementsAre("⚠️ 无法删除文件: /var/t/sub, 错误: /var/t/sub/fixed: "
                                     "Operation not permitted",
                                     "⚠️ 无法删除文件: /var/t/sub/fixed, 错误: /var/t/sub/fixed: "
                                     "Operation not permitted"));
    EXPECT_THAT(notes.stays,
                Contains("/var/t/sub failed /var/t/sub/fixed: Operation not permitted"));
}

TEST_F(ContentsRemovalTest, TheSecondTryAtAFolderFreesWhatOnlyTheFirstCouldNot) {
    d_.tree.file("/var/t/sub/a", 10);
    d_.tree.file("/var/t/sub/b", 100);
    d_.eraser.remover = [&](const platform::Directory& parent, const std::string& name) {
        d_.eraser.remover = {};
        return platform::Removal{0, platform::errorFromErrno(EBUSY, parent.pathOf(name))};
    };
    EXPECT_THAT(progressOf(d_.engine, "/var/t"), ElementsAre(Call{"sub", 1.0}));
    EXPECT_THAT(d_.tree.entriesBeneath("/var/t"), ElementsAre("/var/t/sub"));
    EXPECT_THAT(lines(), ElementsAre("⚠️ 无法删除文件: /var/t/sub, 错误: /var/t/sub: Device or "
                                     "resource busy"));
}

TEST_F(ContentsRemovalTest, TheSecondTryAtASystemPathIsTheShells) {
    d_.tree.file("/var/MobileAsset/AssetsV2/a", 10);
    d_.eraser.remover = [&](const platform::Directory& parent, const std::string& name) {
        return platform::Removal{0, platform::errorFromErrno(EBUSY, parent.pathOf(name))};
    };
    EXPECT_EQ(empty("/var/MobileAsset"), 10U);
    EXPECT_EQ(d_.commands.commands().size(), 1U);
}

TEST_F(ContentsRemovalTest, AFileThatCannotBeRemovedIsTriedOnce) {
    d_.tree.file("/var/t/a", 10);
    d_.eraser.remover = [&](const platform::Directory& parent, const std::string& name) {
        return platform::Removal{0, platform::errorFromErrno(EBUSY, parent.pathOf(name))};
    };
    EXPECT_EQ(empty("/var/t"), 0U);
    EXPECT_THAT(d_.eraser.removed, ElementsAre("/var/t/a"));
}

TEST_F(ContentsRemovalTest, ProgressNamesTheEntryAndCountsThoseThatStayed) {
    d_.tree.file("/var/t/.a", 1);
    d_.tree.file("/var/t/.b", 1);
    d_.tree.file("/var/t/c", 1);
    const auto names = d_.tree.files().contentsOfDirectory("/var/t").value();
    const auto place = std::ranges::find(names, "c") - names.begin() + 1;
    EXPECT_THAT(progressOf(d_.engine, "/var/t"),
                ElementsAre(Call{"c", static_cast<double>(place) / 3}));
}

TEST_F(ContentsRemovalTest, AFloodOfProgressEndsWithTheLastCall) {
    for (int i = 0; i < 2'000; ++i)
        d_.tree.file("/var/t/" + std::to_string(i), 1);
    const auto calls = progressOf(d_.engine, "/var/t");
    ASSERT_FALSE(calls.empty());
    EXPECT_LT(calls.size(), 2'000U);
    EXPECT_EQ(calls.back().fraction, 1.0);
}

TEST_F(ContentsRemovalTest, AnObserverHearsWhatGoesAndWhyTheRestStays) {
    d_.tree.file("/.hidden", 1);
    d_.tree.file("/kept/a", 1);
    d_.tree.link("/link", "/kept");
    d_.tree.file("/x.db", 1);
    d_.tree.file("/com.apple.Maps/a", 1);
    d_.tree.file("/goes", 10);
    d_.protect("/kept/a");
    Notes notes;
    d_.engine.setObserver(&notes);
    empty("/");
    ASSERT_EQ(notes.gone.size(), 1U);
    EXPECT_EQ(notes.gone[0].first, "/goes");
    EXPECT_EQ(notes.gone[0].second, 10U);
    EXPECT_THAT(notes.stays,
                UnorderedElementsAre("/.hidden hidden ", "/kept protected /kept/a", "/link link ",
                                     "/x.db database ", "/com.apple.Maps Maps ",
                                     "/var protected /var/mobile/Library/Caches/com.apple.Maps"));
}

TEST_F(ContentsRemovalTest, NamesOfAnyBytesGo) {
    for (const char* name : {"-rf", "a\nb", "\xFF\xFE", "'quote", "a b", "*", "$(id)"})
        d_.tree.file(std::string("/var/t/") + name, 1);
    EXPECT_EQ(empty("/var/t"), 7U);
    EXPECT_THAT(d_.tree.entriesBeneath("/var/t"), IsEmpty());
}

// --- While others move things ---

/// Swaps a folder for a link to a canary and back, as fast as it can, while it lives.
class Swapper {
  public:
    Swapper(std::string folder, std::string canary)
        : folder_(std::move(folder)), canary_(std::move(canary)), thread_([this] { run(); }) {}
    ~Swapper() {
        stop_ = true;
        thread_.join();
    }

    [[nodiscard]] int rounds() const { return rounds_; }

  private:
    void run() {
        namespace fs = std::filesystem;
        const std::string aside = folder_ + ".aside";
        while (!stop_) {
            std::error_code ignored;
            fs::rename(folder_, aside, ignored);
            fs::create_symlink(canary_, folder_, ignored);
            fs::remove(folder_, ignored);
            fs::rename(aside, folder_, ignored);
            ++rounds_;
        }
    }

    std::string folder_;
    std::string canary_;
    std::atomic<bool> stop_{false};
    std::atomic<int> rounds_{0};
    std::thread thread_;
};

TEST_F(ContentsRemovalTest, NothingBehindALinkGoesThatTakesTheFoldersPlaceMeanwhile) {
    d_.tree.file("/var/canary/a", kMega);
    d_.tree.file("/var/canary/sub/b", kMega);
    d_.tree.folder("/var/t");
    const Swapper swapper(d_.tree.host("/var/t"), "canary");
    for (int round = 0; round < 400 || swapper.rounds() < 400; ++round) {
        for (const char* name : {"/x", "/sub/y"})
            static_cast<void>(d_.tree.files().createFile(std::string("/var/t") + name, "1"));
        empty("/var/t");
        ASSERT_TRUE(d_.tree.exists("/var/canary/a"));
        ASSERT_TRUE(d_.tree.exists("/var/canary/sub/b"));
    }
}

TEST_F(ContentsRemovalTest, NothingBehindALinkGoesThatTakesAnEntrysPlaceMeanwhile) {
    d_.tree.file("/var/canary/a", kMega);
    d_.tree.file("/var/canary/sub/b", kMega);
    d_.tree.folder("/var/t/entry/deep");
    const Swapper swapper(d_.tree.host("/var/t/entry"), "../canary");
    for (int round = 0; round < 400 || swapper.rounds() < 400; ++round) {
        static_cast<void>(d_.tree.files().createDirectories("/var/t/entry/deep"));
        static_cast<void>(d_.tree.files().createFile("/var/t/entry/deep/x", "1"));
        empty("/var/t");
        ASSERT_TRUE(d_.tree.exists("/var/canary/a"));
        ASSERT_TRUE(d_.tree.exists("/var/canary/sub/b"));
    }
}

TEST_F(ContentsRemovalTest, NothingProtectedGoesWhenAFolderOnTheWayIsSwappedForALinkToIt) {
    d_.tree.file("/var/canary/t/a", kMega);
    d_.protect("/var/canary");
    d_.tree.folder("/var/way/t");
    const Swapper swapper(d_.tree.host("/var/way"), "/var/canary");
    for (int round = 0; round < 2'000 || swapper.rounds() < 2'000; ++round) {
        empty("/var/way/t");
        ASSERT_TRUE(d_.tree.exists("/var/canary/t/a"));
    }
}

}  // namespace
}  // namespace sweepwright
