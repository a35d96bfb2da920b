#include <array>
#include <string>

#include <gtest/gtest.h>

#include "platform/text/PathText.h"

namespace sweepwright::platform {

TEST(PathText, JoinsWithExactlyOneSlash) {
    EXPECT_EQ(joinPath("/a", "b"), "/a/b");
    EXPECT_EQ(joinPath("/a/", "b"), "/a/b");
    EXPECT_EQ(joinPath("/a///", "b"), "/a/b");
    EXPECT_EQ(joinPath("/", "b"), "/b");
    EXPECT_EQ(joinPath("", "b"), "/b");
    EXPECT_EQ(joinPath("/a", "\xff\n"), "/a/\xff\n");
}

TEST(PathText, TheLastComponentStandsBeforeTrailingSlashes) {
    EXPECT_EQ(lastPathComponent("/a/b"), "b");
    EXPECT_EQ(lastPathComponent("/a/b//"), "b");
    EXPECT_EQ(lastPathComponent("b"), "b");
    EXPECT_EQ(lastPathComponent("/b"), "b");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent("//"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
    EXPECT_EQ(lastPathComponent("/a/.hidden"), ".hidden");
}

TEST(PathText, TheExtensionFollowsTheLastDotOfTheName) {
    EXPECT_EQ(pathExtension("/a/b.txt"), "txt");
    EXPECT_EQ(pathExtension("/a/b.tar.gz"), "gz");
    EXPECT_EQ(pathExtension("/a/b.TXT/"), "TXT");
    EXPECT_EQ(pathExtension("/a.d/b"), "");
    EXPECT_EQ(pathExtension("/a/.hidden"), "");
    EXPECT_EQ(pathExtension("/a/.hidden.db"), "db");
    EXPECT_EQ(pathExtension("/a/b."), "");
    EXPECT_EQ(pathExtension("/"), "");
    EXPECT_EQ(pathExtension(""), "");
    EXPECT_EQ(pathExtension(".."), "");
}

TEST(PathText, OnlyLatinCapitalsAreLowered) {
    EXPECT_EQ(lowerCased("AZaz09@[`{"), "azaz09@[`{");
    EXPECT_EQ(lowerCased("CACHE-缓存-É-\xff"), "cache-缓存-É-\xff");
    EXPECT_EQ(lowerCased(""), "");
}

TEST(PathText, AnEntrysNameIsOneComponent) {
    EXPECT_TRUE(isEntryName("a"));
    EXPECT_TRUE(isEntryName("..."));
    EXPECT_TRUE(isEntryName(".a"));
    EXPECT_TRUE(isEntryName(" "));
    EXPECT_FALSE(isEntryName(""));
    EXPECT_FALSE(isEntryName("."));
    EXPECT_FALSE(isEntryName(".."));
    EXPECT_FALSE(isEntryName("a/b"));
    EXPECT_FALSE(isEntryName("a/"));
    EXPECT_FALSE(isEntryName(std::string_view("a\0b", 3)));
}

}  // namespace sweepwright::platform
