#include <algorithm>
#include <array>
#include <sstream>

#include <fmt/ranges.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "EngineTest.h"
#include "RandomDevice.h"
#include "engine/CleanPreview.h"
#include "engine/LinkProtection.h"

namespace sweepwright {
namespace {

using platform::SpawnCalls;
using platform::SpawnCommandRunner;
using test::EngineDevice;
using test::Operation;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

constexpr int kDeepClean = 100;  ///< beside the clean types

platform::Result<CleanPreview> previewOf(EngineDevice& device, int type) {
    return type == kDeepClean ? previewDeepClean(device.services())
                              : previewClean(device.services(), static_cast<CleanType>(type));
}

EngineDevice::Outcome cleanOf(EngineDevice& device, int type) {
    return type == kDeepClean ? device.deepClean() : device.clean(static_cast<CleanType>(type));
}

std::vector<std::string> without(const std::vector<std::string>& all,
                                 const std::vector<std::string>& taken) {
    std::vector<std::string> left;
    std::ranges::set_difference(all, taken, std::back_inserter(left));
    return left;
}

/// `path` with the links on the way to it resolved, and not what it may lead to itself.
std::string placeOf(EngineDevice& device, const std::string& path) {
    const std::string parent = path.substr(0, path.rfind('/'));
    return platform::joinPath(device.tree.files().resolvedPath(parent).value_or(parent),
                              platform::lastPathComponent(path));
}

/// What of `everything` would go.
std::vector<std::string> wouldGo(EngineDevice& device, const CleanPreview& preview,
                                 const std::vector<std::string>& everything) {
    std::vector<std::string> roots;
    for (const auto& entry : preview.entries)
        roots.push_back(placeOf(device, entry.path));
    std::vector<std::string> gone;
    for (const std::string& path : everything)
        if (std::ranges::any_of(roots, [&](const std::string& root) {
                return path == root || path.starts_with(root + "/");
            }))
            gone.push_back(path);
    return gone;
}

/// Collects what does not hold.
class Doubts {
  public:
    void check(bool holds, const std::string& what) {
        if (!holds) text_ += what + "\n";
    }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_;
};

/// Takes the preview; whatever it changes, records or announces is a doubt.
platform::Result<CleanPreview> watchedPreview(EngineDevice& device, int type, Doubts& doubts) {
    int announced = 0;
    const auto watch =
        device.notifications.observe("CleanHistoryUpdated", [&](const auto&) { ++announced; });
    device.files.before([&](Operation operation, const std::string& path) {
        doubts.check(std::ranges::find(test::kChangingOperations, operation) ==
                         test::kChangingOperations.end(),
                     "the preview changed " + path);
    });
    const auto before = device.everything();
    auto preview = previewOf(device, type);
    device.files.before({});
    doubts.check(device.everything() == before, "the preview changed the tree");
    doubts.check(device.statistics.totals().cleanCount == 0, "the preview was counted");
    doubts.check(device.history.getAllCleanHistory().empty(), "the preview entered the history");
    doubts.check(device.commands.commands().empty(), "the preview ran a command");
    doubts.check(device.eraser.removed.empty(), "the preview used the device's eraser");
    doubts.check(device.eraser.settled == 0, "the preview waited");
    doubts.check(device.webStorage.responsesRemoved + device.webStorage.cookiesDeleted == 0,
                 "the preview emptied the web storage");
    doubts.check(announced == 0, "the preview was announced");
    doubts.check(device.mainQueue.drain() == 0, "the preview posted");
    return preview;
}

/// What keeps the preview of `type` on one device from being what the clean does on another of the
/// same content; empty when nothing does.
std::string mismatch(EngineDevice& seen, EngineDevice& cleaned, int type) {
    Doubts doubts;
    const auto before = seen.everything();
    doubts.check(before == cleaned.everything(), "the devices differ");
    const auto preview = watchedPreview(seen, type, doubts);
    if (!preview) return "the preview failed: " + preview.error().description;

    const auto outcome = cleanOf(cleaned, type);
    doubts.check(outcome.success, "the clean failed");
    doubts.check(preview->wouldFree == outcome.bytes,
                 fmt::format("{} bytes would go, {} went", preview->wouldFree, outcome.bytes));
    const auto expected = wouldGo(seen, *preview, before);
    const auto gone = without(before, cleaned.everything());
    doubts.check(expected == gone, fmt::format("would go and did not: {}; went unforeseen: {}",
                                               without(expected, gone), without(gone, expected)));
    for (const auto& kept : preview->kept)
        doubts.check(cleaned.tree.exists(kept.path), "was to be kept: " + kept.path);
    std::uint64_t sum = 0;
    for (const auto& entry : preview->entries)
        sum += entry.size;
    std::uint64_t ofParts = 0;
    std::size_t entriesOfParts = 0;
    for (const auto& part : preview->parts) {
        ofParts += part.wouldFree;
        entriesOfParts += part.entries;
    }
    doubts.check(preview->parts.empty() ||
                     (ofParts == preview->wouldFree && entriesOfParts == preview->entries.size()),
                 "the parts do not add up to the whole");
    // A deep clean counts what folders held and not what went.
    doubts.check(type == kDeepClean || sum == preview->wouldFree,
                 fmt::format("the entries' {} bytes are not {}", sum, preview->wouldFree));
    return doubts.text();
}

void useRealShell(EngineDevice& device) {
    device.commands.answer([](const test::FakeCommandRunner::Command& command) {
        return SpawnCommandRunner().run(command.text, command.folder);
    });
}

// --- The property ---

RC_GTEST_PROP(CleanPreviewProperty, APreviewIsWhatTheCleanThenDoes, ()) {
    const RandomDevice device = RandomDevice::generate();
    const int type = *rc::gen::element(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 9, 0, kDeepClean, kDeepClean);
    RC_TAG(type);
    const auto seen = device.build();
    const auto cleaned = device.build();
    std::ostringstream out;
    showValue(device, out);
    RC_LOG() << out.str();
    RC_ASSERT(mismatch(*seen, *cleaned, type) == "");
}

RC_GTEST_PROP(CleanPreviewProperty, ACleanFreesWhatTheScanThenMisses, ()) {
    using Getter = std::uint64_t (FileCleanerEngine::*)();
    // The categories that neither count something twice nor count what they don't clean.
    static const std::vector<std::pair<CleanType, Getter>> categories = {
        {CleanType::TempFiles, &FileCleanerEngine::getTempFilesSize},
        {CleanType::SystemLogs, &FileCleanerEngine::getSystemLogsSize},
        {CleanType::Downloads, &FileCleanerEngine::getDownloadsSize},
        {CleanType::ImageCache, &FileCleanerEngine::getImageCacheSize},
        {CleanType::CrashReports, &FileCleanerEngine::getCrashReportsSize},
        {CleanType::OfflineData, &FileCleanerEngine::getOfflineDataSize}};
    const RandomDevice description = RandomDevice::generate();
    const auto& [type, getter] = *rc::gen::elementOf(categories);
    const auto device = description.build();
    const std::uint64_t before = (device->engine.*getter)();
    const std::uint64_t freed = device->clean(type).bytes;
    RC_ASSERT(before - (device->engine.*getter)() == freed);
}

RC_GTEST_PROP(CleanPreviewProperty, NothingProtectedEverGoes, ()) {
    const RandomDevice description = RandomDevice::generate();
    const auto device = description.build();
    const auto places = ProtectedPlaces::find(device->tree.files(), device->whitelist);
    const auto isProtected = [&](const std::string& path) {
        return device->whitelist.isPathInWhitelist(path) || places.whitelisted.touches(path);
    };
    std::vector<std::string> shielded;
    for (const std::string& path : device->everything())
        if (isProtected(path)) shielded.push_back(path);
    std::ostringstream out;
    showValue(description, out);
    RC_LOG() << out.str();
    device->clean(CleanType::All);
    for (const std::string& path : shielded)
        RC_ASSERT((device->tree.exists(path) ? "" : path) == "");
}

// --- With the real shell ---

class EveryClean : public testing::TestWithParam<int> {
  protected:
    static void fill(EngineDevice& d) {
        for (const std::string& folder :
             {d.caches("sub"), d.caches("Kingfisher"), d.support("Cache"), d.support("Offline"),
              d.library("Cookies"), d.library("Safari/Cache"), d.library("Logs/CrashReporter"),
              d.documents("Downloads"), d.temporary("sub"),
              EngineDevice::shared("com.apple.springboard"),
              EngineDevice::shared("com.apple.mobilesafari"), EngineDevice::shared("SomeCache"),
              EngineDevice::shared("com.apple.o'brien"), EngineDevice::shared("com.apple.x'y'z"),
              std::string("/var/mobile/Library/Safari/WebKitCache"),
              std::string("/var/MobileAsset/AssetsV2"), std::string("/var/db/uuidtext"),
              std::string("/var/db/diagnostics/Special"), std::string("/var/mine")}) {
            d.tree.file(folder + "/a", 10);
            d.tree.file(folder + "/sub/b", 100);
            d.tree.file(folder + "/.hidden", 1'000);
            d.tree.file(folder + "/sub/.hidden", 1'000);
            d.tree.file(folder + "/x.db", 10'000);
            d.tree.link(folder + "/link", "/var/elsewhere");
        }
        d.tree.file("/var/elsewhere/a", 1);
        d.tree.file(d.library("x.db-wal"), 10);
        d.addCustomPath("/var/mine");
        d.protect("/var/db/uuidtext/sub");
        d.protect(d.caches("Kingfisher/a"));
        useRealShell(d);
    }
};

TEST_P(EveryClean, DoesWhatItsPreviewTold) {
    EngineDevice seen;
    EngineDevice cleaned;
    fill(seen);
    fill(cleaned);
    cleaned.time = seen.time;
    EXPECT_EQ(mismatch(seen, cleaned, GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(CleanPreview, EveryClean,
                         testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 42, kDeepClean));

// --- By example ---

using CleanPreviewTest = EngineTest;

TEST_F(CleanPreviewTest, EntriesComeInTheirOrderWithTheirSizes) {
    d_.tree.file(d_.library("Logs/CrashReporter/a"), 10);
    d_.tree.file(d_.library("Logs/DiagnosticReports/sub/b"), 100);
    const auto preview = previewClean(d_.services(), CleanType::CrashReports);
    ASSERT_TRUE(preview.has_value());
    EXPECT_EQ(preview->wouldFree, 110U);
    EXPECT_THAT(preview->entries,
                ElementsAre(CleanPreview::Entry{d_.library("Logs/CrashReporter/a"), 10},
                            CleanPreview::Entry{d_.library("Logs/DiagnosticReports/sub"), 100}));
}

TEST_F(CleanPreviewTest, OfEverythingItIsDividedByCategory) {
    d_.tree.file(d_.temporary("a"), 10);
    d_.tree.file(d_.temporary("b"), 20);
    d_.tree.file(d_.documents("Downloads/c"), 100);
    const auto preview = previewClean(d_.services(), CleanType::All);
    ASSERT_TRUE(preview.has_value());
    ASSERT_THAT(preview->parts, testing::SizeIs(9));
    for (std::size_t value = 0; value < preview->parts.size(); ++value)
        EXPECT_EQ(preview->parts[value].part.type, static_cast<CleanType>(value));
    using Part = CleanPreview::Part;
    EXPECT_EQ(preview->parts[1], (Part{{CleanType::TempFiles, ""}, 30, 2}));
    EXPECT_EQ(preview->parts[4], (Part{{CleanType::Downloads, ""}, 100, 1}));
    EXPECT_THAT(previewClean(d_.services(), CleanType::TempFiles)->parts,
                ElementsAre(Part{{CleanType::TempFiles, ""}, 30, 2}));
    EXPECT_THAT(previewDeepClean(d_.services())->parts, IsEmpty());
}

TEST_F(CleanPreviewTest, WhatStaysIsToldOnceWithItsReason) {
    d_.tree.file(d_.caches(".hidden"), 1);
    d_.tree.file(d_.caches("x.db"), 1);
    d_.tree.link(d_.caches("link"), "/var");
    d_.tree.file(d_.caches("com.apple.Maps/a"), 1);
    d_.tree.file(EngineDevice::shared("GeoServices-cache/a"), 1);
    d_.tree.file(EngineDevice::shared("com.Sweepwright.cache/a"), 1);
    d_.tree.file(d_.library("y.db"), 1);
    d_.tree.file(d_.library("y.db-wal"), 1);
    ASSERT_TRUE(d_.tree.files().setModificationDate(d_.library("y.db-wal"), d_.time).has_value());
    d_.protect(EngineDevice::shared("GeoServices-cache/a"));
    const auto preview = previewClean(d_.services(), CleanType::All);
    ASSERT_TRUE(preview.has_value());
    std::vector<std::string> told;
    for (const auto& kept : preview->kept)
        told.push_back(kept.path + " " + std::string(keptReasonName(kept.reason)) + " " + kept.by);
    EXPECT_THAT(told, testing::UnorderedElementsAre(
                          d_.caches(".hidden") + " hidden ", d_.caches("x.db") + " database ",
                          d_.caches("link") + " link ", d_.caches("com.apple.Maps") + " Maps ",
                          EngineDevice::shared("GeoServices-cache") + " protected " +
                              EngineDevice::shared("GeoServices-cache/a"),
                          EngineDevice::shared("com.Sweepwright.cache") + " own folder ",
                          d_.library("y.db-wal") + " recent side file "));
}

TEST_F(CleanPreviewTest, ReasonsHaveTheNamesThatScriptsRead) {
    const std::vector<std::pair<KeptReason, std::string_view>> names = {
        {KeptReason::Protected, "protected"},
        {KeptReason::Hidden, "hidden"},
        {KeptReason::Link, "link"},
        {KeptReason::Database, "database"},
        {KeptReason::RecentSideFile, "recent side file"},
        {KeptReason::Maps, "Maps"},
        {KeptReason::OwnFolder, "own folder"},
        {KeptReason::Failed, "failed"}};
    for (const auto& [reason, name] : names)
        EXPECT_EQ(keptReasonName(reason), name);
}

TEST_F(CleanPreviewTest, WhatAnEarlierStepWouldTakeCountsOnce) {
    d_.tree.file(d_.caches("Kingfisher/a"), 10);  // of two categories
    d_.tree.file("/var/mine/sub/a", 100);
    d_.addCustomPath("/var/mine");
    d_.addCustomPath("/var/mine/sub");
    d_.addCustomPath("/var/mine/");
    const auto preview = previewClean(d_.services(), CleanType::All);
    EXPECT_EQ(preview->wouldFree, 110U);
}

TEST_F(CleanPreviewTest, WhatOneStepKeepsAndAnotherTakesIsNotToldToStay) {
    d_.tree.file(d_.temporary("sub/x.db"), 10);
    d_.tree.file(d_.temporary("sub/a"), 1);
    d_.addCustomPath(d_.temporary("sub"));
    EXPECT_THAT(previewClean(d_.services(), CleanType::Cache)->kept, testing::SizeIs(1));
    const auto preview = previewClean(d_.services(), CleanType::All);
    EXPECT_EQ(preview->wouldFree, 11U);
    EXPECT_THAT(preview->kept, IsEmpty());
}

TEST_F(CleanPreviewTest, ALinkWhoseTargetWouldGoIsStillALink) {
    d_.tree.file(d_.temporary("a/x"), 10);
    d_.tree.link(d_.temporary("b"), d_.temporary("a"));
    const auto preview = previewClean(d_.services(), CleanType::TempFiles);
    EXPECT_THAT(preview->entries, ElementsAre(CleanPreview::Entry{d_.temporary("a"), 10}));
    ASSERT_EQ(preview->kept.size(), 1U);
    EXPECT_EQ(preview->kept[0].path, d_.temporary("b"));
    EXPECT_EQ(preview->kept[0].reason, KeptReason::Link);
}

TEST_F(CleanPreviewTest, ItFailsAsTheCleanWouldWhenAProtectionListCannotBeRead) {
    d_.tree.file(d_.temporary("a"), 10);
    ASSERT_TRUE(d_.defaults.set("PathWhitelistPaths", std::string("not a list")).has_value());
    const auto preview = previewClean(d_.services(), CleanType::TempFiles);
    ASSERT_FALSE(preview.has_value());
    EXPECT_EQ(preview.error(), d_.clean(CleanType::TempFiles).error);
    EXPECT_FALSE(previewDeepClean(d_.services()).has_value());
}

}  // namespace
}  // namespace sweepwright
