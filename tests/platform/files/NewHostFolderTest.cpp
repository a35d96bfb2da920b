#include <cerrno>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "platform/files/NewHostFolder.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {
namespace {

namespace fs = std::filesystem;

class NewHostFolderTest : public testing::Test {
  protected:
    [[nodiscard]] std::string at(const std::string& name) const { return folder_.path() + name; }

    static void fill(const NewHostFolder& folder) {
        std::ofstream(folder.staging() + "/file") << "text";
        fs::create_directory(folder.staging() + "/inner");
    }

    [[nodiscard]] std::size_t entries() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path()), {}));
    }

  private:
    test::TemporaryFolder folder_;
};

TEST_F(NewHostFolderTest, AnAbsentFolderAppearsOnlyWhenItIsFinished) {
    auto folder = NewHostFolder::begin(at("/above/new/"));
    ASSERT_TRUE(folder) << folder.error().description;
    fill(*folder);
    EXPECT_FALSE(fs::exists(at("/above/new")));
    ASSERT_TRUE(folder->finish());
    EXPECT_TRUE(fs::exists(at("/above/new/file")));
    EXPECT_EQ(std::distance(fs::directory_iterator(at("/above")), {}), 1);
}

TEST_F(NewHostFolderTest, AnEmptyFolderThatWasThereStaysTheSameFolder) {
    fs::create_directory(at("/empty"));
    fs::permissions(at("/empty"), fs::perms::owner_all);
    auto folder = NewHostFolder::begin(at("/empty"));
    ASSERT_TRUE(folder) << folder.error().description;
    fill(*folder);
    ASSERT_TRUE(folder->finish());
    EXPECT_TRUE(fs::is_directory(at("/empty/inner")));
    EXPECT_EQ(std::distance(fs::directory_iterator(at("/empty")), {}), 2);
    EXPECT_EQ(fs::status(at("/empty")).permissions(), fs::perms::owner_all);
}

TEST_F(NewHostFolderTest, WhatIsNotFinishedLeavesNothing) {
    fs::create_directory(at("/empty"));
    {
        auto absent = NewHostFolder::begin(at("/absent"));
        auto empty = NewHostFolder::begin(at("/empty"));
        ASSERT_TRUE(absent && empty);
        fill(*absent);
        fill(*empty);
    }
    EXPECT_EQ(entries(), 1U);
    EXPECT_TRUE(fs::is_empty(at("/empty")));
}

TEST_F(NewHostFolderTest, FoldersMadeAboveGoWithWhatIsNotFinishedUnlessSomebodyUsesThem) {
    {
        ASSERT_TRUE(NewHostFolder::begin(at("/a/b/c/new")));
    }
    EXPECT_EQ(entries(), 0U);
    fs::create_directory(at("/mine"));
    {
        ASSERT_TRUE(NewHostFolder::begin(at("/mine/a/new")));
    }
    EXPECT_TRUE(fs::is_empty(at("/mine")));
    {
        auto folder = NewHostFolder::begin(at("/a/b/new"));
        ASSERT_TRUE(folder);
        std::ofstream(at("/a/somebodys")) << "text";
    }
    EXPECT_FALSE(fs::exists(at("/a/b")));
    EXPECT_TRUE(fs::exists(at("/a/somebodys")));
}

TEST_F(NewHostFolderTest, AFileAboveIsAnErrorAndNothingIsMade) {
    std::ofstream(at("/file")) << "mine";
    EXPECT_EQ(NewHostFolder::begin(at("/file/a/new")).error().code, ENOTDIR);
    EXPECT_EQ(entries(), 1U);
}

TEST_F(NewHostFolderTest, WhatIsThereIsRefusedAndStays) {
    fs::create_directory(at("/full"));
    std::ofstream(at("/full/mine")) << "mine";
    std::ofstream(at("/file")) << "mine";
    fs::create_symlink("nowhere", at("/link"));

    EXPECT_EQ(NewHostFolder::begin(at("/full")).error().code, ENOTEMPTY);
    EXPECT_EQ(NewHostFolder::begin(at("/file")).error().code, ENOTDIR);
    EXPECT_EQ(NewHostFolder::begin(at("/link")).error().code, EEXIST);
    EXPECT_EQ(NewHostFolder::begin("").error().code, ENOENT);
    EXPECT_EQ(entries(), 3U);
    EXPECT_TRUE(fs::exists(at("/full/mine")));
}

TEST_F(NewHostFolderTest, WhatCameThereMeanwhileIsNotReplaced) {
    fs::create_directory(at("/empty"));
    auto empty = NewHostFolder::begin(at("/empty"));
    auto absent = NewHostFolder::begin(at("/absent"));
    ASSERT_TRUE(empty && absent);
    fill(*empty);
    fill(*absent);
    std::ofstream(at("/empty/file")) << "somebody's";
    fs::create_directory(at("/absent"));
    std::ofstream(at("/absent/file")) << "somebody's";

    EXPECT_FALSE(empty->finish());
    EXPECT_FALSE(absent->finish());
    EXPECT_EQ(fs::file_size(at("/empty/file")), 10U);
    EXPECT_EQ(fs::file_size(at("/absent/file")), 10U);
}

}  // namespace
}  // namespace sweepwright::platform
