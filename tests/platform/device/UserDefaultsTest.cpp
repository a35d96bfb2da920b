#include <atomic>
#include <cerrno>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/device/Device.h"
#include "platform/device/UserDefaults.h"
#include "platform/log/Log.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {
namespace {

using test::Operation;
using test::TemporaryDevice;
using Array = PropertyList::Array;
using Data = PropertyList::Data;
using Dictionary = PropertyList::Dictionary;

constexpr auto kDirectory = "/var/mobile/Library/Preferences";
const std::string kFile = std::string(kDirectory) + "/com.example.plist";

class UserDefaultsTest : public testing::Test {
  protected:
    UserDefaultsTest() {
        files.failWhere([this](Operation call, const std::string&) { return call == failing; },
                        EROFS);
        files.before([this](Operation call, const std::string&) {
            if (call == Operation::WriteFile) ++written;
        });
    }

    TemporaryDevice device;
    test::FaultyFileManager files{device.files(),
                                  {Operation::ReadFile, Operation::WriteFile, Operation::Lock,
                                   Operation::Rename, Operation::OpenDirectory}};
    std::optional<Operation> failing;  ///< with EROFS
    std::atomic<int> written = 0;      ///< calls of writeFile
    UserDefaults defaults{files, kFile};

    std::vector<std::string> names() { return files.contentsOfDirectory(kDirectory).value(); }
    std::vector<std::string> setAside() {
        auto all = names();
        std::erase_if(all, [](const std::string& name) {
            return !name.starts_with("com.example.plist.damaged-");
        });
        return all;
    }
};

TEST_F(UserDefaultsTest, WithoutAFileEverythingIsAbsentAndWell) {
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_EQ(defaults.read("a"), (Result<std::optional<PropertyList>>(std::nullopt)));
    EXPECT_EQ(defaults.string("a"), std::nullopt);
    EXPECT_EQ(defaults.integer("a"), 0);
    EXPECT_EQ(defaults.unsignedInteger("a"), 0U);
    EXPECT_FALSE(defaults.boolean("a"));
    EXPECT_EQ(defaults.damage(), std::nullopt);
    EXPECT_EQ(defaults.file(), kFile);
    // A reading makes nothing.
    EXPECT_FALSE(device.exists("/var"));
}

TEST_F(UserDefaultsTest, WhatIsSetIsReadByAnyoneWhoLooks) {
    ASSERT_TRUE(defaults.set("text", "清理"));
    ASSERT_TRUE(defaults.set("number", ~std::uint64_t{0}));
    ASSERT_TRUE(defaults.set("signed", -7));
    ASSERT_TRUE(defaults.set("on", true));
    const UserDefaults other(device.files(), kFile);
    EXPECT_EQ(other.string("text"), "清理");
    EXPECT_EQ(other.unsignedInteger("number"), ~std::uint64_t{0});
    EXPECT_EQ(other.integer("signed"), -7);
    EXPECT_TRUE(other.boolean("on"));
    EXPECT_TRUE(device.content(kFile).starts_with("bplist00"));
    EXPECT_THAT(names(),
                testing::UnorderedElementsAre("com.example.plist", "com.example.plist.lock"));
}

TEST_F(UserDefaultsTest, AReadingSeesWhatAnotherHasJustWritten) {
    ASSERT_TRUE(defaults.set("a", 1));
    EXPECT_EQ(defaults.integer("a"), 1);
    // Of the same size, within the same tick of the clock.
    device.fileWith(kFile, PropertyList(Dictionary{{"a", 2}}).toBinary());
    EXPECT_EQ(defaults.integer("a"), 2);
}

TEST_F(UserDefaultsTest, AnXmlFileIsReadAndTurnedIntoABinaryOneByTheFirstChange) {
    device.fileWith(kFile, PropertyList(Dictionary{{"a", 1}}).toXml());
    EXPECT_EQ(defaults.integer("a"), 1);
    ASSERT_TRUE(defaults.set("b", 2));
    EXPECT_EQ(PropertyList::parse(device.content(kFile)),
              PropertyList(Dictionary{{"a", 1}, {"b", 2}}));
    EXPECT_TRUE(device.content(kFile).starts_with("bplist00"));
}

TEST_F(UserDefaultsTest, AValueOfAnotherTypeReadsAsNone) {
    ASSERT_TRUE(defaults.set("text", "5"));
    ASSERT_TRUE(defaults.set("number", 5));
    ASSERT_TRUE(defaults.set("negative", -5));
    ASSERT_TRUE(defaults.set("list", Array{1}));
    EXPECT_EQ(defaults.integer("text"), 0);
    EXPECT_EQ(defaults.unsignedInteger("text"), 0U);
    EXPECT_FALSE(defaults.boolean("text"));
    EXPECT_FALSE(defaults.boolean("number"));
    EXPECT_EQ(defaults.string("number"), std::nullopt);
    EXPECT_EQ(defaults.string("list"), std::nullopt);
    EXPECT_EQ(defaults.integer("list"), 0);
    EXPECT_EQ(defaults.unsignedInteger("negative"), 0U);
}

TEST_F(UserDefaultsTest, AStringThatIsNotUtf8KeepsItsBytes) {
    ASSERT_TRUE(defaults.set("path", "/var/\xFF\xFE"));
    EXPECT_EQ(defaults.string("path"), "/var/\xFF\xFE");
    EXPECT_EQ(defaults.object("path"), PropertyList(Data{"/var/\xFF\xFE"}));
}

TEST_F(UserDefaultsTest, RemovingAKeyKeepsTheOthers) {
    ASSERT_TRUE(defaults.set("a", 1));
    ASSERT_TRUE(defaults.set("b", 2));
    ASSERT_TRUE(defaults.remove("a"));
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_EQ(defaults.integer("b"), 2);
}

TEST_F(UserDefaultsTest, AChangeGetsWhatIsStoredAndStoresWhatItAnswers) {
    const auto add = [](int item) {
        return [item](const PropertyList* stored) {
            Array list = stored != nullptr ? *stored->array() : Array();
            list.push_back(item);
            return PropertyList(std::move(list));
        };
    };
    ASSERT_TRUE(defaults.update("list", add(1)));
    ASSERT_TRUE(defaults.update("list", add(2)));
    EXPECT_EQ(defaults.object("list"), PropertyList(Array{1, 2}));
    ASSERT_TRUE(defaults.update("list", [](const PropertyList*) { return std::nullopt; }));
    EXPECT_EQ(defaults.object("list"), std::nullopt);
}

TEST_F(UserDefaultsTest, SeveralKeysChangeInOneReplacement) {
    ASSERT_TRUE(defaults.set("old", 1));
    written = 0;
    ASSERT_TRUE(defaults.updateAll([](Dictionary& stored) {
        EXPECT_EQ(stored.size(), 1U);
        stored.set("a", 1);
        stored.set("b", 2);
        stored.remove("old");
    }));
    EXPECT_EQ(written, 1);
    EXPECT_EQ(PropertyList::parse(device.content(kFile)),
              PropertyList(Dictionary{{"a", 1}, {"b", 2}}));
}

TEST_F(UserDefaultsTest, NothingIsWrittenWhenNothingChanges) {
    ASSERT_TRUE(defaults.set("a", "\xFF"));
    written = 0;
    EXPECT_TRUE(defaults.set("a", "\xFF"));
    EXPECT_TRUE(defaults.remove("absent"));
    EXPECT_TRUE(defaults.updateAll([](Dictionary&) {}));
    EXPECT_EQ(written, 0);
}

TEST_F(UserDefaultsTest, WhatCouldNotBeReadBackIsNotWritten) {
    ASSERT_TRUE(defaults.set("a", 1));
    const std::string before = device.content(kFile);
    PropertyList deep((Array()));
    for (int level = 0; level < 70; ++level)
        deep = Array{std::move(deep)};
    EXPECT_FALSE(defaults.set("deep", std::move(deep)));
    EXPECT_FALSE(defaults.set("large", std::string(std::size_t{17} << 20U, 'x')));
    EXPECT_FALSE(defaults.set("\xFF", 1));
    EXPECT_FALSE(defaults.set(std::string_view("a\0b", 3), 1));
    EXPECT_EQ(device.content(kFile), before);
}

TEST_F(UserDefaultsTest, OnAReadOnlyStoreAChangeFailsAndNothingIsLost) {
    ASSERT_TRUE(defaults.set("a", 1));
    const std::string before = device.content(kFile);
    failing = Operation::Lock;
    EXPECT_EQ(defaults.set("a", 2).error(), errorFromErrno(EROFS, kFile + ".lock"));
    failing = Operation::WriteFile;
    EXPECT_EQ(defaults.set("a", 2).error(), errorFromErrno(EROFS, kFile));
    EXPECT_EQ(device.content(kFile), before);
    EXPECT_EQ(defaults.integer("a"), 1);
    EXPECT_EQ(defaults.damage(), std::nullopt);
}

TEST_F(UserDefaultsTest, WithoutTheRightToWriteAReadingWorksAndAChangeFails) {
    if (const auto why = test::whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    namespace fs = std::filesystem;
    ASSERT_TRUE(defaults.set("a", 1));
    const std::string before = device.content(kFile);
    constexpr auto kReadable = fs::perms(0555);
    fs::permissions(device.root(), fs::perms(0755));
    fs::permissions(device.host(kDirectory), kReadable);
    test::asOrdinaryUser([&] {
        EXPECT_FALSE(defaults.set("a", 2));
        EXPECT_EQ(defaults.integer("a"), 1);
        EXPECT_EQ(defaults.damage(), std::nullopt);
    });
    fs::permissions(device.host(kDirectory), fs::perms(0755));
    EXPECT_EQ(device.content(kFile), before);
}

TEST_F(UserDefaultsTest, AFolderThatCannotBeMadeIsToldAsIs) {
    device.fileWith("/var", "a file");
    EXPECT_FALSE(defaults.set("a", 1));
    EXPECT_EQ(device.content("/var"), "a file");
}

TEST_F(UserDefaultsTest, AFileThatCannotBeReadIsLeftAloneAndReported) {
    ASSERT_TRUE(defaults.set("a", 1));
    const std::string before = device.content(kFile);
    written = 0;
    const Error error = errorFromErrno(EROFS, kFile);
    failing = Operation::ReadFile;
    bool called = false;
    const auto change = [&](const PropertyList*) {
        called = true;
        return PropertyList(2);
    };
    EXPECT_EQ(defaults.update("a", change).error(), error);
    EXPECT_FALSE(called);
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_EQ(defaults.integer("a"), 0);
    EXPECT_EQ(defaults.read("a").error(), error);
    EXPECT_EQ(defaults.damage(), error);
    failing.reset();
    EXPECT_EQ(written, 0);
    EXPECT_EQ(device.content(kFile), before);
    EXPECT_TRUE(setAside().empty());
}

TEST_F(UserDefaultsTest, AFolderInPlaceOfTheFileIsReported) {
    device.folder(kFile);
    EXPECT_FALSE(defaults.set("a", 1));
    EXPECT_TRUE(defaults.damage().has_value());
    EXPECT_TRUE(device.exists(kFile));
}

TEST_F(UserDefaultsTest, ADamagedFileReadsAsAbsentAndIsReported) {
    const std::string whole = PropertyList(Dictionary{{"a", 1}}).toBinary();
    for (const std::string& damaged :
         {std::string(), std::string("junk"), whole.substr(0, whole.size() - 1),
          PropertyList(Array{1}).toBinary()}) {
        device.fileWith(kFile, damaged);
        EXPECT_EQ(defaults.object("a"), std::nullopt);
        ASSERT_FALSE(defaults.read("a").has_value());
        ASSERT_TRUE(defaults.damage().has_value());
        EXPECT_EQ(defaults.damage()->domain, kFormatErrorDomain);
        EXPECT_TRUE(defaults.damage()->description.starts_with(kFile + ": "));
        EXPECT_EQ(device.content(kFile), damaged);
    }
}

// As when the first change of all is made on another thread.
TEST_F(UserDefaultsTest, AFileThatAppearsAfterTheFirstLookIsRead) {
    test::FaultyFileManager watching(device.files(), {Operation::Attributes});
    watching.before([this](Operation, const std::string&) {
        device.fileWith(kFile, PropertyList(Dictionary{{"a", 1}}).toBinary());
    });
    const UserDefaults late(watching, kFile);
    EXPECT_EQ(late.damage(), std::nullopt);
    EXPECT_EQ(late.integer("a"), 1);
}

TEST_F(UserDefaultsTest, AFileThatIsThereButNeverFoundIsAnErrorAndNotAbsent) {
    ASSERT_TRUE(defaults.set("a", 1));
    files.failWhere([](Operation call, const std::string&) { return call == Operation::ReadFile; },
                    ENOENT);
    const auto read = defaults.read("a");
    ASSERT_FALSE(read.has_value());
    EXPECT_EQ(read.error().code, ENOENT);
    EXPECT_FALSE(defaults.set("b", 2));
    EXPECT_EQ(defaults.damage()->code, ENOENT);
}

TEST_F(UserDefaultsTest, TheFirstChangeSetsADamagedFileAsideAndLogsIt) {
    device.fileWith(kFile, "junk");
    const LogCapture log;
    ASSERT_TRUE(defaults.set("a", 1));
    const auto aside = setAside();
    ASSERT_EQ(aside.size(), 1U);
    EXPECT_THAT(aside[0],
                testing::MatchesRegex("com\\.example\\.plist\\.damaged-[0-9]{8}-[0-9]{6}"));
    const std::string path = joinPath(kDirectory, aside[0]);
    EXPECT_EQ(device.content(path), "junk");
    EXPECT_TRUE(log.contains("⚠️ 用户设置文件已损坏，已另存为: " + path));
    EXPECT_EQ(defaults.integer("a"), 1);
}

TEST_F(UserDefaultsTest, SeveralFilesSetAsideWithinASecondAllStay) {
    for (const std::string damaged : {"one", "two", "three"}) {
        device.fileWith(kFile, damaged);
        ASSERT_TRUE(defaults.set("a", damaged));
    }
    std::vector<std::string> contents;
    for (const std::string& name : setAside()) {
        contents.push_back(device.content(joinPath(kDirectory, name)));
    }
    EXPECT_THAT(contents, testing::UnorderedElementsAre("one", "two", "three"));
}

TEST_F(UserDefaultsTest, DamageIsToldUntilTheFileSetAsideIsGone) {
    device.fileWith(kFile, "junk");
    ASSERT_TRUE(defaults.set("a", 1));
    const std::string path = joinPath(kDirectory, setAside().at(0));
    const UserDefaults other(device.files(), kFile);
    for (const UserDefaults* each : {&std::as_const(defaults), &other}) {
        ASSERT_TRUE(each->damage().has_value());
        EXPECT_EQ(each->damage()->domain, kFormatErrorDomain);
        EXPECT_TRUE(each->damage()->description.starts_with(path + ": "));
    }
    ASSERT_TRUE(defaults.set("b", 2));
    EXPECT_TRUE(defaults.damage().has_value());
    // Restored by hand: the damaged file is where it was.
    ASSERT_EQ(std::rename(device.host(path).c_str(), device.host(kFile).c_str()), 0);
    EXPECT_TRUE(defaults.damage()->description.starts_with(kFile + ": "));
    ASSERT_EQ(std::remove(device.host(kFile).c_str()), 0);
    EXPECT_EQ(defaults.damage(), std::nullopt);
}

TEST_F(UserDefaultsTest, AChangeThatChangesNothingLeavesADamagedFileWhereItIs) {
    device.fileWith(kFile, "junk");
    EXPECT_TRUE(defaults.remove("a"));
    EXPECT_EQ(device.content(kFile), "junk");
    EXPECT_TRUE(defaults.damage().has_value());
}

TEST_F(UserDefaultsTest, ADamagedFileThatCannotBeSetAsideIsNotReplaced) {
    device.fileWith(kFile, "junk");
    failing = Operation::Rename;
    EXPECT_EQ(defaults.set("a", 1).error(), errorFromErrno(EROFS, kFile));
    EXPECT_EQ(device.content(kFile), "junk");
    EXPECT_EQ(written, 0);
}

TEST_F(UserDefaultsTest, AFolderThatCannotBeListedCountsAsDamage) {
    ASSERT_TRUE(defaults.set("a", 1));
    failing = Operation::OpenDirectory;
    EXPECT_EQ(defaults.damage(), errorFromErrno(EROFS, kDirectory));
}

TEST_F(UserDefaultsTest, ThreadsThatChangeAListAtOnceLoseNothing) {
    constexpr int kThreads = 4;
    constexpr int kChanges = 25;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            for (int change = 0; change < kChanges; ++change) {
                EXPECT_TRUE(defaults.update("count", [](const PropertyList* stored) {
                    return PropertyList((stored != nullptr ? *stored->integer() : 0) + 1);
                }));
                EXPECT_GT(defaults.integer("count"), 0);
            }
        });
    }
    threads.clear();
    EXPECT_EQ(defaults.integer("count"), kThreads * kChanges);
}

TEST(UserDefaults, TheStandardOnesAreThoseOfTheCurrentDevice) {
    const TemporaryDevice device;
    // In a process of its own: the current device is set once.
    test::inChildProcess([&] {
        DeviceOptions options;
        options.rootFolder = device.root();
        options.home = "/var/mobile";
        Device::setCurrent(Device::open(options).value());
        EXPECT_TRUE(UserDefaults::standard().set("a", 5));
        EXPECT_EQ(&UserDefaults::standard(), &UserDefaults::standard());
    });
    const auto file = PropertyList::parse(
        device.content("/var/mobile/Library/Preferences/com.sweepwright.app.plist"));
    EXPECT_EQ(file, PropertyList(Dictionary{{"a", 5}}));
}

}  // namespace
}  // namespace sweepwright::platform
