#include <cerrno>
#include <chrono>
#include <filesystem>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using test::Operation;
using testing::ElementsAre;
using testing::IsEmpty;

class DatabaseCleanerTest : public EngineTest {
  protected:
    /// A side file of 10 bytes, changed that many seconds before now.
    void sideFile(const std::string& name, double age) {
        d_.tree.file(d_.library(name), 10);
        const auto ago = std::chrono::duration_cast<std::chrono::system_clock::duration>(
            std::chrono::duration<double>(age));
        ASSERT_TRUE(
            d_.tree.files().setModificationDate(d_.library(name), d_.time - ago).has_value());
    }
    std::uint64_t clean() {
        FileCleanerEngine::ErrorSlot error;
        return d_.engine.cleanDatabaseFilesWithProgress(
            [](const std::string&, double) { ADD_FAILURE() << "tells no progress"; }, error);
    }
    [[nodiscard]] bool isThere(const std::string& name) const {
        return d_.tree.exists(d_.library(name));
    }
};

TEST_F(DatabaseCleanerTest, SideFilesOfThreeEndingsGoAndNothingElseDoes) {
    sideFile("a.sqlite-wal", 1);
    sideFile("b-shm", 1);
    sideFile("c.db-journal", 1);
    for (const char* other : {"a.db", "x.sqlite-journal", "y-WAL", "z.db-journal.txt", "wal"})
        sideFile(other, 1'000);
    d_.tree.file(d_.library("Sub/d-wal"), 10);
    EXPECT_EQ(clean(), 30U);
    EXPECT_FALSE(isThere("a.sqlite-wal"));
    EXPECT_FALSE(isThere("b-shm"));
    EXPECT_FALSE(isThere("c.db-journal"));
    for (const char* other :
         {"a.db", "x.sqlite-journal", "y-WAL", "z.db-journal.txt", "wal", "Sub/d-wal"})
        EXPECT_TRUE(isThere(other)) << other;
    while (d_.mainQueue.drain() > 0) {
    }
}

TEST_F(DatabaseCleanerTest, ARecentSideFileBesideItsDatabaseIsKeptWithItsAge) {
    d_.tree.file(d_.library("x.db"), 1);
    sideFile("x.db-wal", 299.9);
    sideFile("x.db-shm", 0.0);
    EXPECT_EQ(clean(), 0U);
    EXPECT_TRUE(isThere("x.db-wal"));
    EXPECT_TRUE(isThere("x.db-shm"));
    EXPECT_THAT(lines(), testing::UnorderedElementsAre(
                             "⚠️ 跳过可能正在使用的数据库临时文件: " + d_.library("x.db-wal") +
                                 " (最近修改: 299.9秒前)",
                             "⚠️ 跳过可能正在使用的数据库临时文件: " + d_.library("x.db-shm") +
                                 " (最近修改: 0.0秒前)"));
}

TEST_F(DatabaseCleanerTest, ASideFileOfExactlyThreeHundredSecondsGoes) {
    d_.tree.file(d_.library("x.db"), 1);
    sideFile("x.db-wal", 300.0);
    EXPECT_EQ(clean(), 10U);
    EXPECT_FALSE(isThere("x.db-wal"));
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(DatabaseCleanerTest, ASideFileOfTheFutureBesideItsDatabaseIsKept) {
    d_.tree.file(d_.library("x.db"), 1);
    sideFile("x.db-wal", -3'600);
    EXPECT_EQ(clean(), 0U);
    EXPECT_TRUE(isThere("x.db-wal"));
}

TEST_F(DatabaseCleanerTest, FourCharactersAreCutForTheDatabasesName) {
    d_.tree.file(d_.library("a.sqlite"), 1);
    sideFile("a.sqlite-wal", 1);
    sideFile("a.sqlite-shm", 1);
    sideFile("b.sqlite-wal", 1);  // its database is not there
    EXPECT_EQ(clean(), 10U);
    EXPECT_TRUE(isThere("a.sqlite-wal"));
    EXPECT_TRUE(isThere("a.sqlite-shm"));
    EXPECT_FALSE(isThere("b.sqlite-wal"));
}

TEST_F(DatabaseCleanerTest, AJournalIsNotHeldBackByItsAgeBecauseNineCharactersAreCut) {
    d_.tree.file(d_.library("x.db"), 1);
    sideFile("x.db-journal", 1);
    EXPECT_EQ(clean(), 10U);
    EXPECT_FALSE(isThere("x.db-journal"));
}

TEST_F(DatabaseCleanerTest, AJournalBesideAFileOfWhatNineCharactersLeaveIsHeldBack) {
    d_.tree.file(d_.library("x.d"), 1);
    sideFile("x.db-journal", 1);
    EXPECT_EQ(clean(), 0U);
    EXPECT_TRUE(isThere("x.db-journal"));
}

TEST_F(DatabaseCleanerTest, ASideFileWhoseDateCannotBeReadGoes) {
    d_.tree.file(d_.library("x.db"), 1);
    sideFile("x.db-wal", 1);
    failAbout(d_.library("x.db-wal"), {Operation::AttributesAt, Operation::Attributes}, EIO);
    clean();
    EXPECT_FALSE(isThere("x.db-wal"));
}

TEST_F(DatabaseCleanerTest, ASideFileThatCannotBeRemovedIsToldOfAndNotCounted) {
    sideFile("x.db-wal", 1);
    sideFile("y.db-wal", 1);
    failAbout(d_.library("x.db-wal"), {Operation::RemoveFileAt}, EPERM);
    EXPECT_EQ(clean(), 10U);
    EXPECT_TRUE(isThere("x.db-wal"));
    EXPECT_THAT(lines(),
                ElementsAre("⚠️ 无法删除数据库临时文件: " + d_.library("x.db-wal") +
                            ", 错误: " + d_.library("x.db-wal") + ": Operation not permitted"));
}

TEST_F(DatabaseCleanerTest, OnlyPlainVisibleFilesGo) {
    sideFile(".hidden-wal", 1'000);
    d_.tree.file(d_.library("folder-wal/a"), 10);
    d_.tree.file("/var/elsewhere", 10);
    d_.tree.link(d_.library("link-wal"), "/var/elsewhere");
    d_.tree.fifo(d_.library("pipe-wal"));
    EXPECT_EQ(clean(), 0U);
    for (const char* name : {".hidden-wal", "folder-wal/a", "link-wal", "pipe-wal"})
        EXPECT_TRUE(isThere(name)) << name;
    EXPECT_TRUE(d_.tree.exists("/var/elsewhere"));
}

TEST_F(DatabaseCleanerTest, AWhitelistedSideFileStaysAndTheOthersGo) {
    sideFile("x.db-wal", 1'000);
    sideFile("y.db-wal", 1'000);
    d_.protect(d_.library("x.db-wal"));
    log_.clear();
    EXPECT_EQ(clean(), 10U);
    EXPECT_TRUE(isThere("x.db-wal"));
    EXPECT_THAT(lines(), ElementsAre("🔒 跳过白名单路径: " + d_.library("x.db-wal")));
}

TEST_F(DatabaseCleanerTest, ASideFileWhitelistedByAnotherNameOfItsFolderStays) {
    sideFile("x.db-wal", 1'000);
    d_.tree.link("/alias", "/var/mobile");
    d_.protect("/alias" + d_.library("x.db-wal").substr(std::string("/var/mobile").size()));
    EXPECT_EQ(clean(), 0U);
    EXPECT_TRUE(isThere("x.db-wal"));
}

TEST_F(DatabaseCleanerTest, ALibraryThatIsALinkStaysAsItIs) {
    test::EngineDevice d("/var/other");
    std::filesystem::remove_all(d.tree.host("/var/other/Library"));
    d.tree.file("/var/elsewhere/x-wal", 10);
    d.tree.link("/var/other/Library", "/var/elsewhere");
    FileCleanerEngine::ErrorSlot error;
    EXPECT_EQ(d.engine.cleanDatabaseFilesWithProgress({}, error), 0U);
    EXPECT_TRUE(d.tree.exists("/var/elsewhere/x-wal"));
}

TEST_F(DatabaseCleanerTest, AnUnreadableLibraryFreesNothing) {
    sideFile("x.db-wal", 1'000);
    failAbout(d_.device.libraryDirectory(), {Operation::ReadEntries}, EIO);
    EXPECT_EQ(clean(), 0U);
    EXPECT_TRUE(isThere("x.db-wal"));
}

}  // namespace
}  // namespace sweepwright
