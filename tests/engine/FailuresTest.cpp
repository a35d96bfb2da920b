// What could not be read, removed or recorded, and who hears of it.
#include <cerrno>
#include <filesystem>

#include <fmt/format.h>

#include "EngineTest.h"
#include "engine/CleanPreview.h"
#include "engine/Failures.h"

namespace sweepwright {
namespace {

using test::EngineDevice;
using test::Operation;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::StartsWith;

using FailedEntry = FailureList::Entry;

platform::Error denied(const std::string& path) {
    return platform::errorFromErrno(EACCES, path);
}

std::vector<std::string> pathsOf(const FailureList& list) {
    EXPECT_EQ(list.count, list.entries.size());
    std::vector<std::string> paths;
    for (const FailedEntry& entry : list.entries)
        paths.push_back(entry.path);
    return paths;
}

// --- The collection ---

TEST(Failures, APathCountsOnceAndWhatLiesInItNotAtAll) {
    Failures failures;
    for (const char* path : {"/a/b/c", "/a/b", "/a/b", "/a/b/d/e", "/a/bc", "/a/b0"})
        failures.kept(path, KeptReason::Failed, std::string(path) + ": why");
    EXPECT_EQ(failures.failedEntries().count, 3U);
    EXPECT_THAT(failures.failedEntries().entries,
                ElementsAre(FailedEntry{"/a/b", "/a/b: why"}, FailedEntry{"/a/b0", "/a/b0: why"},
                            FailedEntry{"/a/bc", "/a/bc: why"}));
    EXPECT_EQ(failures.unreadableFolders().count, 0U);
}

TEST(Failures, WhatStaysByARuleIsNone) {
    Failures failures;
    for (const KeptReason reason :
         {KeptReason::Protected, KeptReason::Hidden, KeptReason::Link, KeptReason::Database,
          KeptReason::RecentSideFile, KeptReason::Maps, KeptReason::OwnFolder,
          KeptReason::MountPoint})
        failures.kept("/a", reason, "");
    failures.removed("/b", 1);
    EXPECT_EQ(failures.failedEntries().count, 0U);
}

TEST(Failures, BeyondItsLimitItOnlyCounts) {
    Failures failures;
    for (std::size_t i = 0; i < Failures::kMaxKept + 7; ++i)
        failures.unreadable(fmt::format("/{}", i), denied("/x"));
    failures.unreadable("/0", denied("/x"));
    EXPECT_EQ(failures.unreadableFolders().entries.size(), Failures::kMaxKept);
    EXPECT_EQ(failures.unreadableFolders().count, Failures::kMaxKept + 7);
}

TEST(Failures, TheFirstReasonWhyThereIsNoRecordStands) {
    Failures failures;
    EXPECT_EQ(failures.recordError(), std::nullopt);
    failures.notRecorded(denied("/a"));
    failures.notRecorded(denied("/b"));
    EXPECT_EQ(failures.recordError(), denied("/a"));
}

// --- Measuring and listing ---

class FailuresOf : public EngineTest {
  protected:
    FailuresOf() { d_.engine.setObserver(&failures_); }

    /// From now on nothing may be opened in, or be said of what lies in, a folder.
    void close(const std::string& folder) { closed_.push_back(folder); }
    void closeAll() {
        d_.files.failWhere(
            [this](Operation operation, const std::string& path) {
                return std::ranges::any_of(closed_, [&](const std::string& folder) {
                    const bool opens = operation == Operation::OpenDirectory ||
                                       operation == Operation::OpenBeneath;
                    return path.starts_with(folder + "/") || (opens && path == folder);
                });
            },
            EACCES);
    }
    [[nodiscard]] std::vector<std::string> unreadable() const {
        return pathsOf(failures_.unreadableFolders());
    }
    [[nodiscard]] std::vector<std::string> failed() const {
        return pathsOf(failures_.failedEntries());
    }

    Failures failures_;

  private:
    std::vector<std::string> closed_;
};

TEST_F(FailuresOf, AScanNamesEachFolderThatItCouldNotReadOnce) {
    const std::vector<std::string> folders = {d_.caches("x/closed"), d_.support("MyCache"),
                                              d_.library("Safari"), d_.documents("Downloads"),
                                              EngineDevice::shared("com.apple.springboard")};
    for (const std::string& folder : folders) {
        d_.tree.file(folder + "/sub/file", 100);
        close(folder);
    }
    d_.tree.file(d_.caches("x/open"), 1);
    closeAll();
    EXPECT_EQ(d_.engine.scan().totalSize, 1U);
    EXPECT_THAT(unreadable(), testing::UnorderedElementsAreArray(folders));
    for (const FailedEntry& entry : failures_.unreadableFolders().entries)
        EXPECT_EQ(entry.reason, entry.path + ": Permission denied");
    EXPECT_THAT(failed(), IsEmpty());
}

TEST_F(FailuresOf, AFolderThatHidesManyPlacesIsNamedOnceAndByItself) {
    d_.tree.file(d_.library("Cookies/a"), 1);
    close(d_.device.libraryDirectory());
    closeAll();
    d_.engine.scan();
    EXPECT_THAT(unreadable(), ElementsAre(d_.device.libraryDirectory()));
}

TEST_F(FailuresOf, AFolderThatTellsNamesAndNoSizesIsNamed) {
    d_.tree.file(d_.temporary("sub/a"), 1);
    d_.tree.file(d_.temporary("sub/b"), 1);
    d_.tree.file(d_.temporary("c"), 10);
    d_.files.failWhere(
        [&](Operation operation, const std::string& path) {
            return (operation == Operation::AttributesAt || operation == Operation::Attributes) &&
                   path.starts_with(d_.temporary("sub/"));
        },
        EACCES);
    EXPECT_EQ(d_.engine.getTempFilesSize(), 10U);
    EXPECT_THAT(unreadable(), ElementsAre(d_.temporary("sub")));
}

TEST_F(FailuresOf, AListingThatEndsEarlyIsNamed) {
    d_.tree.file(d_.temporary("sub/a"), 1);
    failAbout(d_.temporary("sub"), {Operation::ReadEntries}, EIO);
    EXPECT_EQ(d_.engine.getTempFilesSize(), 0U);
    EXPECT_THAT(
        failures_.unreadableFolders().entries,
        ElementsAre(FailedEntry{d_.temporary("sub"), d_.temporary("sub: Input/output error")}));
}

TEST_F(FailuresOf, WhatIsAbsentALinkAFileOrProtectedIsNone) {
    d_.tree.file("/var/elsewhere/a", 1);
    d_.tree.link(d_.device.temporaryDirectory(), "/var/elsewhere");
    d_.tree.file(d_.device.cachesDirectory(), 1);
    d_.tree.file(d_.support("keptCache/a"), 1);
    d_.protect(d_.support("keptCache"));
    d_.tree.file(d_.support("otherCache/.hidden/a"), 1);
    close(d_.support("keptCache"));
    close(d_.support("otherCache/.hidden"));
    closeAll();
    d_.engine.scan();
    EXPECT_THAT(unreadable(), IsEmpty());
}

TEST_F(FailuresOf, WhatVanishesMeanwhileIsNone) {
    d_.tree.file(d_.temporary("sub/a"), 1);
    d_.tree.file(d_.temporary("b"), 1);
    d_.files.failWhere(
        [&](Operation, const std::string& path) {
            return path == d_.temporary("sub") || path == d_.temporary("b");
        },
        ENOENT);
    d_.engine.getTempFilesSize();
    EXPECT_EQ(d_.clean(CleanType::TempFiles).bytes, 0U);
    EXPECT_THAT(unreadable(), IsEmpty());
    EXPECT_THAT(failed(), IsEmpty());
}

TEST_F(FailuresOf, EveryListNamesAFolderThatItCouldNotRead) {
    using List = std::vector<std::string> (FileCleanerEngine::*)();
    const std::vector<std::pair<List, std::string>> lists = {
        {&FileCleanerEngine::getTempFileList, d_.temporary("sub")},
        {&FileCleanerEngine::getCookieFileList, d_.library("Cookies")},
        {&FileCleanerEngine::getSystemLogFileList, d_.library("Logs/sub")},
        {&FileCleanerEngine::getDownloadsFileList, d_.documents("Downloads")},
        {&FileCleanerEngine::getImageCacheFileList, d_.caches("Kingfisher")},
        {&FileCleanerEngine::getCrashReportFileList, d_.library("Logs/CrashReporter")},
    };
    for (const auto& [list, folder] : lists) {
        d_.tree.file(folder + "/a", 1);
        close(folder);
    }
    closeAll();
    for (const auto& [list, folder] : lists) {
        Failures failures;
        d_.engine.setObserver(&failures);
        EXPECT_THAT((d_.engine.*list)(), IsEmpty());
        EXPECT_THAT(pathsOf(failures.unreadableFolders()), testing::Contains(folder));
    }
    d_.engine.setObserver(&failures_);
    EXPECT_THAT(d_.engine.getCacheFileList(), IsEmpty());
    EXPECT_THAT(unreadable(), ElementsAre(d_.caches("Kingfisher")));
}

TEST_F(FailuresOf, TheDatabasesSizeAndListNameALibraryThatCouldNotBeRead) {
    d_.tree.file(d_.library("x.sqlite"), 1);
    close(d_.device.libraryDirectory());
    closeAll();
    EXPECT_EQ(d_.engine.getDatabaseFilesSize(), 0U);
    EXPECT_THAT(d_.engine.getDatabaseFileList(), IsEmpty());
    EXPECT_EQ(d_.clean(CleanType::DatabaseFiles).bytes, 0U);
    EXPECT_THAT(unreadable(), ElementsAre(d_.device.libraryDirectory()));
}

TEST_F(FailuresOf, TheAnalysesNameAFolderThatTheyCouldNotRead) {
    const std::string bundle = "/var/containers/Bundle/Application/B";
    for (const std::string& folder : {bundle, d_.documents("closed")}) {
        d_.tree.file(folder + "/a", 1);
        close(folder);
    }
    closeAll();
    EXPECT_EQ(d_.engine.getInstalledAppsWithStorage().at(0).size, 0U);
    EXPECT_THAT(unreadable(), ElementsAre(bundle));
    const std::vector<std::function<void(Failures&)>> analyses = {
        [&](Failures&) { d_.engine.findLargeFilesWithMinSize(0); },
        [&](Failures&) { d_.engine.findDuplicateFiles(); },
        [&](Failures&) { d_.engine.analyzeStorageByCategory(); },
        [&](Failures& failures) { d_.storage.analyzeDirectoryUsage(unreadableTo(&failures)); }};
    for (const auto& analysis : analyses) {
        Failures failures;
        d_.engine.setObserver(&failures);
        analysis(failures);
        EXPECT_THAT(pathsOf(failures.unreadableFolders()), ElementsAre(d_.documents("closed")));
    }
    d_.engine.setObserver(&failures_);
}

// --- Cleaning ---

TEST_F(FailuresOf, ACleanNamesThePlacesThatItCouldNotReadAndGoesOn) {
    d_.tree.file(d_.library("Cookies/a"), 1);
    d_.tree.file(d_.library("WebKit/a"), 10);
    close(d_.library("Cookies"));
    closeAll();
    const auto outcome = d_.clean(CleanType::Cookies);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 10U);
    EXPECT_THAT(unreadable(), ElementsAre(d_.library("Cookies")));
}

TEST_F(FailuresOf, APlaceOfWhichNothingCanBeMeasuredIsNamed) {
    const std::string place = EngineDevice::shared("com.apple.springboard");
    d_.tree.file(place + "/a", 1);
    close(place);
    closeAll();
    EXPECT_EQ(d_.clean(CleanType::Cache).bytes, 0U);
    EXPECT_EQ(d_.deepClean().bytes, 0U);
    EXPECT_THAT(unreadable(), ElementsAre(place));
}

TEST_F(FailuresOf, ADeepCleanSaysNothingOfWhatItDoesNotClean) {
    d_.tree.file(EngineDevice::shared("Other/a"), 1);
    close(EngineDevice::shared("Other"));
    closeAll();
    d_.deepClean();
    EXPECT_THAT(unreadable(), IsEmpty());
}

TEST_F(FailuresOf, EntriesThatCouldNotBeRemovedAreThoseThatAPreviewNames) {
    for (const char* path : {"goes", "folder/stays", "folder/deep/stays", "folder/goes", "stays"})
        d_.tree.file(d_.temporary(path), 1);
    const auto isStuck = [](Operation operation, const std::string& path) {
        return operation == Operation::RemoveFileAt && path.ends_with("stays");
    };
    d_.files.failWhere(isStuck, EPERM);
    const auto preview = previewClean(d_.engineServices(), CleanType::TempFiles, &failures_);
    EXPECT_EQ(preview.value().entries.size(), 3U);
    EXPECT_THAT(failed(), IsEmpty());

    EXPECT_EQ(d_.clean(CleanType::TempFiles).bytes, 2U);
    EXPECT_THAT(failed(), ElementsAre(d_.temporary("folder"), d_.temporary("stays")));
    EXPECT_THAT(failures_.failedEntries().entries[0].reason,
                AllOf(StartsWith(d_.temporary("folder/")),
                      testing::EndsWith("stays: Operation not permitted")));
    EXPECT_THAT(unreadable(), IsEmpty());
}

TEST_F(FailuresOf, APreviewNamesTheFoldersThatItCouldNotRead) {
    d_.tree.file(d_.temporary("closed/a"), 1);
    d_.tree.file(d_.library("Logs/a"), 1);
    close(d_.temporary("closed"));
    close(d_.library("Logs"));
    closeAll();
    ASSERT_TRUE(previewClean(d_.engineServices(), CleanType::All, &failures_).has_value());
    EXPECT_THAT(unreadable(), ElementsAre(d_.library("Logs"), d_.temporary("closed")));
}

TEST_F(FailuresOf, WhatTheShellLeavesOfWhatWasThereIsNamed) {
    const std::string place = EngineDevice::shared("com.apple.springboard");
    for (const char* name : {"/goes", "/stays", "/.hidden"})
        d_.tree.file(place + name, 10);
    d_.commands.answer([&](const test::FakeCommandRunner::Command& command) {
        std::filesystem::remove(command.folder + "/goes");
        d_.tree.file(place + "/new", 1);
        return 0;
    });
    EXPECT_EQ(d_.engine.removeSystemPathWithSystemCommand(place), 9U);
    EXPECT_THAT(
        failures_.failedEntries().entries,
        ElementsAre(FailedEntry{place + "/stays", place + "/stays: rm could not remove it"}));
}

TEST_F(FailuresOf, WhatAShellThatFreedNothingLeavesIsNamed) {
    const std::string place = EngineDevice::shared("com.apple.springboard");
    d_.tree.file(place + "/stays", 10);
    d_.commands.answerOnly(0);
    d_.files.failWhere(
        [](Operation operation, const std::string&) { return operation == Operation::IsWritable; },
        EROFS);
    EXPECT_EQ(d_.engine.removeSystemPathWithSystemCommand(place), 0U);
    EXPECT_THAT(
        failures_.failedEntries().entries,
        ElementsAre(FailedEntry{place + "/stays", place + "/stays: its folder can't be written"}));
}

TEST_F(FailuresOf, WhatTheFileManagerLeavesInPlaceOfTheShellIsNamed) {
    const std::string place = EngineDevice::shared("com.apple.springboard");
    d_.tree.file(place + "/goes", 10);
    d_.tree.file(place + "/stays", 10);
    d_.commands.answerOnly(-1);
    failAbout(place + "/stays", {Operation::RemoveFileAt}, EPERM);
    EXPECT_EQ(d_.engine.removeSystemPathWithSystemCommand(place), 10U);
    EXPECT_THAT(
        failures_.failedEntries().entries,
        ElementsAre(FailedEntry{place + "/stays", place + "/stays: Operation not permitted"}));
}

TEST_F(FailuresOf, ADeepCleanNamesALocationThatStays) {
    const std::string file = "/var/mobile/Library/Safari/History.db-wal";
    d_.tree.file(file, 10);
    failAbout(file, {Operation::RemoveFileAt}, EPERM);
    EXPECT_EQ(d_.deepClean().bytes, 0U);
    EXPECT_THAT(failed(), ElementsAre(file));
}

TEST_F(FailuresOf, OnAReadOnlyDeviceNothingGoesAndEverythingIsNamed) {
    d_.tree.file(d_.temporary("a"), 10);
    d_.tree.file(d_.temporary("b/c"), 10);
    d_.tree.file(d_.library("x.db-wal"), 10);
    d_.files.failWhere(
        [](Operation operation, const std::string&) {
            return std::ranges::find(test::kChangingOperations, operation) !=
                   test::kChangingOperations.end();
        },
        EROFS);
    EXPECT_EQ(d_.clean(CleanType::All).bytes, 0U);
    EXPECT_THAT(failed(),
                ElementsAre(d_.library("x.db-wal"), d_.temporary("a"), d_.temporary("b")));
    EXPECT_THAT(failures_.failedEntries().entries[1].reason,
                d_.temporary("a") + ": Read-only file system");
}

TEST_F(FailuresOf, ACleanThatWasStoppedHasNotFailedAtWhatItDidNotComeTo) {
    d_.tree.file(d_.temporary("a"), 1);
    d_.tree.file(d_.temporary("b"), 1);
    d_.eraser.onRemove = [&](const std::string&) { d_.engine.stop(); };
    EXPECT_EQ(d_.clean(CleanType::TempFiles).bytes, 1U);
    EXPECT_THAT(failed(), IsEmpty());
}

// --- One clean's own observer ---

TEST_F(FailuresOf, ACleansOwnObserverHearsOfItInPlaceOfTheEngines) {
    d_.tree.file(d_.temporary("a"), 1);
    failAbout(d_.temporary("a"), {Operation::RemoveFileAt}, EPERM);
    const auto own = std::make_shared<Failures>();
    bool done = false;
    d_.engine.cleanWithType(
        CleanType::TempFiles, {}, [&](bool, std::uint64_t, const auto&) { done = true; }, own);
    d_.mainQueue.runUntil([&] { return done; });
    EXPECT_THAT(pathsOf(own->failedEntries()), ElementsAre(d_.temporary("a")));
    EXPECT_THAT(failed(), IsEmpty());
    d_.clean(CleanType::TempFiles);
    EXPECT_THAT(failed(), ElementsAre(d_.temporary("a")));
}

// --- Records ---

TEST_F(FailuresOf, ACleanWhoseRecordCannotBeStoredSaysSoAndIsASuccess) {
    d_.tree.file(d_.temporary("a"), 10);
    d_.tree.folder(d_.device.userDefaultsFile() + ".lock");
    const auto outcome = d_.clean(CleanType::TempFiles);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 10U);
    ASSERT_TRUE(failures_.recordError().has_value());
    EXPECT_EQ(failures_.recordError()->description,
              d_.device.userDefaultsFile() + ".lock: Is a directory");
    EXPECT_THAT(d_.history.getAllCleanHistory(), IsEmpty());
    EXPECT_THAT(failed(), IsEmpty());
}

TEST_F(FailuresOf, ACleanThatIsRecordedSaysNothing) {
    d_.tree.file(d_.temporary("a"), 10);
    d_.clean(CleanType::TempFiles);
    EXPECT_EQ(failures_.recordError(), std::nullopt);
}

}  // namespace
}  // namespace sweepwright
