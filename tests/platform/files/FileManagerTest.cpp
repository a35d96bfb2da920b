// Listing, attributes and the other questions.
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <set>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/files/FileManagerFixture.h"
#include "support/ChildProcess.h"

namespace sweepwright::platform {

namespace {

const std::vector<std::string> kOddNames = {
    "'single'", "\"double\"", "new\nline",    "tab\t", "back\\slash", "-rf",
    "--",       "$(id)",      "`x`",          ";",     "*",           " ",
    "...",      ".hidden",    "\xff\xfe\x80", "名",    "a%s{}",       std::string(255, 'n')};

FileType typeOf(const Result<FileAttributes>& attributes) {
    return attributes ? attributes->type : FileType::Unknown;
}

}  // namespace

TEST_P(FileManagerTest, AListingHasEveryNameOnce) {
    std::set<std::string> expected;
    for (int i = 0; i < 6000; ++i) {
        const std::string name =
            "entry " + std::to_string(i) + std::string(static_cast<std::size_t>(i % 40), 'x');
        device_.folder("/big");
        std::filesystem::create_symlink("nowhere", device_.host("/big/" + name));
        expected.insert(name);
    }
    const auto names = files_.contentsOfDirectory("/big");
    ASSERT_TRUE(names);
    EXPECT_EQ(names->size(), expected.size());
    EXPECT_EQ(std::set(names->begin(), names->end()), expected);
}

TEST_P(FileManagerTest, NamesAreBytes) {
    for (const std::string& name : kOddNames)
        device_.fileWith("/odd/" + name, name);
    auto names = files_.contentsOfDirectory("/odd");
    ASSERT_TRUE(names);
    std::ranges::sort(*names);
    auto expected = kOddNames;
    std::ranges::sort(expected);
    EXPECT_EQ(*names, expected);
    const auto folder = files_.openDirectory("/odd", LastLink::Follow);
    ASSERT_TRUE(folder);
    for (const std::string& name : kOddNames) {
        EXPECT_EQ(files_.readFile("/odd/" + name, 1000), name);
        EXPECT_EQ(files_.attributesAt(*folder, name)->size, name.size());
        EXPECT_TRUE(files_.removeFileAt(*folder, name)) << name;
    }
    EXPECT_TRUE(device_.entriesBeneath("/odd").empty());
}

TEST_P(FileManagerTest, AListingTellsTypesAndInodes) {
    device_.file("/t/file", 1);
    device_.folder("/t/folder");
    device_.link("/t/link", "folder");
    device_.fifo("/t/fifo");
    auto folder = files_.openDirectory("/t", LastLink::Follow);
    ASSERT_TRUE(folder);
    EntryBuffer buffer;
    const auto entries = files_.readEntries(*folder, buffer);
    ASSERT_TRUE(entries);
    EXPECT_EQ(entries->size(), 4U);
    for (const DirectoryEntry& entry : *entries) {
        const auto attributes = files_.attributesAt(*folder, entry.name);
        ASSERT_TRUE(attributes);
        EXPECT_EQ(entry.inode, attributes->inode) << entry.name;
        EXPECT_TRUE(entry.type == attributes->type || entry.type == FileType::Unknown);
    }
    EXPECT_TRUE(files_.readEntries(*folder, buffer)->empty());
    EXPECT_EQ(typeOf(files_.attributesAt(*folder, "file")), FileType::Regular);
    EXPECT_EQ(typeOf(files_.attributesAt(*folder, "folder")), FileType::Directory);
    EXPECT_EQ(typeOf(files_.attributesAt(*folder, "link")), FileType::SymbolicLink);
    EXPECT_EQ(typeOf(files_.attributesAt(*folder, "fifo")), FileType::Other);
}

TEST_P(FileManagerTest, AnEmptyFolderListsNothingAndAMissingOneFails) {
    device_.folder("/empty");
    device_.file("/file", 1);
    device_.link("/link", "empty");
    EXPECT_TRUE(files_.contentsOfDirectory("/empty")->empty());
    EXPECT_TRUE(files_.contentsOfDirectory("/link")->empty());
    EXPECT_EQ(errorOf(files_.contentsOfDirectory("/missing")), ENOENT);
    EXPECT_EQ(errorOf(files_.contentsOfDirectory("/file")), ENOTDIR);
}

TEST_P(FileManagerTest, AttributesAreThoseOfTheFile) {
    device_.file("/file", 5'000'000'000);
    device_.hardLink("/again", "/file");
    device_.age("/file", 3600);
    const auto file = files_.attributes("/file", LastLink::Refuse);
    const auto again = files_.attributes("/again", LastLink::Refuse);
    ASSERT_TRUE(file && again);
    EXPECT_EQ(file->size, 5'000'000'000U);
    EXPECT_EQ(file->inode, again->inode);
    EXPECT_EQ(file->device, again->device);
    const auto age = std::chrono::system_clock::now() - file->modificationDate;
    EXPECT_GE(age, std::chrono::seconds(3600));
    EXPECT_LT(age, std::chrono::seconds(3660));
}

TEST_P(FileManagerTest, ALinkCountsByWhatItLeadsToWhereItIsFollowed) {
    device_.file("/folder/file", 7);
    device_.link("/toFile", "folder/file");
    device_.link("/toFolder", "folder");
    device_.link("/toNothing", "nowhere");
    EXPECT_EQ(files_.attributes("/toFile", LastLink::Follow)->size, 7U);
    EXPECT_EQ(files_.attributes("/toFile", LastLink::Refuse)->size, 11U);
    EXPECT_TRUE(files_.fileExists("/toFile"));
    EXPECT_TRUE(files_.fileExists("/toFolder"));
    EXPECT_TRUE(files_.fileExists("/toFolder/file"));
    EXPECT_FALSE(files_.fileExists("/toNothing"));
    EXPECT_TRUE(files_.isDirectory("/toFolder"));
    EXPECT_FALSE(files_.isDirectory("/toFile"));
    EXPECT_FALSE(files_.isDirectory("/toNothing"));
    EXPECT_FALSE(files_.fileExists("/toFile/x"));
}

TEST_P(FileManagerTest, ADateTheClockCannotTellIsTheLastItCan) {
    device_.file("/future", 1);
    device_.file("/past", 1);
    const std::array<timespec, 2> future{{{13'569'465'600, 0}, {13'569'465'600, 0}}};  // 2400
    const std::array<timespec, 2> past{{{-2'000'000'000, 0}, {-2'000'000'000, 0}}};    // 1906
    ASSERT_EQ(utimensat(AT_FDCWD, device_.host("/future").c_str(), future.data(), 0), 0);
    ASSERT_EQ(utimensat(AT_FDCWD, device_.host("/past").c_str(), past.data(), 0), 0);
    const auto now = std::chrono::system_clock::now();
    EXPECT_GT(files_.attributes("/future", LastLink::Refuse)->modificationDate, now);
    EXPECT_EQ(files_.attributes("/past", LastLink::Refuse)->modificationDate.time_since_epoch(),
              std::chrono::seconds(-2'000'000'000));
}

TEST_P(FileManagerTest, AModificationDateIsSetOnALinkItself) {
    device_.file("/file", 1);
    device_.link("/link", "file");
    const auto before = files_.attributes("/file", LastLink::Refuse)->modificationDate;
    const std::chrono::system_clock::time_point date{std::chrono::milliseconds(-1500)};
    ASSERT_TRUE(files_.setModificationDate("/link", date));
    EXPECT_EQ(files_.attributes("/link", LastLink::Refuse)->modificationDate, date);
    EXPECT_EQ(files_.attributes("/file", LastLink::Refuse)->modificationDate, before);
    EXPECT_EQ(errorOf(files_.setModificationDate("/missing", date)), ENOENT);
}

TEST_P(FileManagerTest, OnlyAnEntrysNameIsRemoved) {
    device_.file("/folder/sub/file", 1);
    device_.file("/other", 1);
    const auto folder = files_.openDirectory("/folder", LastLink::Follow);
    ASSERT_TRUE(folder);
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("sub/file"),
          std::string("../other"), std::string("sub\0x", 5)}) {
        EXPECT_EQ(errorOf(files_.removeFileAt(*folder, name)), EINVAL) << name;
        EXPECT_EQ(errorOf(files_.removeDirectoryAt(*folder, name)), EINVAL) << name;
    }
    EXPECT_EQ(errorOf(files_.removeFileAt(*folder, "sub")), EISDIR);
    EXPECT_EQ(errorOf(files_.removeDirectoryAt(*folder, "sub")), ENOTEMPTY);
    EXPECT_EQ(errorOf(files_.removeFileAt(*folder, "missing")), ENOENT);
    EXPECT_EQ(errorOf(files_.removeFileAt(*folder, std::string(300, 'x'))), ENAMETOOLONG);
    EXPECT_TRUE(device_.exists("/other"));
    EXPECT_TRUE(device_.exists("/folder/sub/file"));
}

TEST_P(FileManagerTest, ALinkIsRemovedAndWhatItLeadsToIsNot) {
    device_.file("/target/file", 1);
    device_.link("/toFolder", "target");
    device_.link("/toFile", "target/file");
    const auto root = files_.openDirectory("/", LastLink::Follow);
    ASSERT_TRUE(root);
    EXPECT_EQ(errorOf(files_.removeDirectoryAt(*root, "toFolder")), ENOTDIR);
    EXPECT_TRUE(files_.removeFileAt(*root, "toFolder"));
    EXPECT_TRUE(files_.removeFileAt(*root, "toFile"));
    EXPECT_EQ(device_.entriesBeneath("/"), (std::vector<std::string>{"/target", "/target/file"}));
}

TEST_P(FileManagerTest, AHostPathIsWhereTheDirectoryIsNow) {
    device_.folder("/a/b");
    device_.link("/link", "a/b");
    const auto folder = files_.openDirectory("/link", LastLink::Follow);
    ASSERT_TRUE(folder);
    EXPECT_EQ(files_.hostPath(*folder), device_.host("/a/b"));
    ASSERT_TRUE(files_.rename("/a/b", "/c"));
    EXPECT_EQ(files_.hostPath(*folder), device_.host("/c"));
}

TEST_P(FileManagerTest, ARemovedDirectoryHasNoHostPath) {
    device_.folder("/gone");
    const auto folder = files_.openDirectory("/gone", LastLink::Follow);
    ASSERT_TRUE(folder);
    std::filesystem::remove(device_.host("/gone"));
    EXPECT_EQ(errorOf(files_.hostPath(*folder)), ENOENT);
    device_.folder("/gone (deleted)");
    EXPECT_EQ(errorOf(files_.hostPath(*folder)), ENOENT);
}

TEST_P(FileManagerTest, WritableIsWhatThisUserMayWrite) {
    if (const std::string why = test::whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    device_.folder("/open");
    device_.folder("/closed");
    device_.link("/toOpen", "open");
    device_.link("/toClosed", "closed");
    ASSERT_EQ(chmod(device_.root().c_str(), 0755), 0);
    ASSERT_EQ(chmod(device_.host("/open").c_str(), 0777), 0);
    ASSERT_EQ(chmod(device_.host("/closed").c_str(), 0555), 0);
    test::asOrdinaryUser([&] {
        EXPECT_TRUE(files_.isWritable("/open"));
        EXPECT_TRUE(files_.isWritable("/toOpen"));
        EXPECT_FALSE(files_.isWritable("/closed"));
        EXPECT_FALSE(files_.isWritable("/toClosed"));
        EXPECT_FALSE(files_.isWritable("/missing"));
    });
}

TEST_P(FileManagerTest, TheVolumesTotalsAreTold) {
    device_.folder("/x");
    struct statvfs expected{};
    ASSERT_EQ(statvfs(device_.root().c_str(), &expected), 0);
    const auto totals = files_.fileSystemAttributes("/x");
    ASSERT_TRUE(totals && totals->has_value());
    EXPECT_EQ((*totals)->size, std::uint64_t{expected.f_blocks} * expected.f_frsize);
    EXPECT_GT((*totals)->freeSize, 0U);
    EXPECT_LE((*totals)->freeSize,
              std::uint64_t{expected.f_bfree} * expected.f_frsize + (std::uint64_t{1} << 30U));
    EXPECT_EQ(errorOf(files_.fileSystemAttributes("/missing")), ENOENT);
}

TEST_P(FileManagerTest, TheTotalsNeedNoRightToRead) {
    if (const std::string why = test::whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    device_.folder("/closed");
    ASSERT_EQ(chmod(device_.root().c_str(), 0755), 0);
    ASSERT_EQ(chmod(device_.host("/closed").c_str(), 0), 0);
    test::asOrdinaryUser([&] { EXPECT_TRUE(files_.fileSystemAttributes("/closed")); });
}

TEST_P(FileManagerTest, AVolumeThatDoesNotTellItsSizeHasNoTotals) {
    if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    device_.folder("/proc");
    device_.folder("/small");
    test::withOwnMounts([&] {
        test::mountReadOnlyAt("/proc", device_.host("/proc"));
        test::mountMemory(device_.host("/small"), "size=1m");
        HostFileManager files = reopened();
        const auto none = files.fileSystemAttributes("/proc");
        ASSERT_TRUE(none);
        EXPECT_FALSE(none->has_value());
        const auto small = files.fileSystemAttributes("/small");
        ASSERT_TRUE(small && small->has_value());
        EXPECT_EQ((*small)->size, 1U << 20U);
        EXPECT_EQ((*small)->freeSize, 1U << 20U);
    });
}

FOR_BOTH_CALLS(FileManagerTest);

}  // namespace sweepwright::platform
