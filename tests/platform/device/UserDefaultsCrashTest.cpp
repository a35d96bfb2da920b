// What is left of the user defaults when a process ends at any moment, and when two work at once.
#include <csignal>
#include <functional>
#include <random>

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/base/UniqueDescriptor.h"
#include "platform/device/UserDefaults.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {
namespace {

using test::TemporaryDevice;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

constexpr auto kCrashFolder = "/Preferences";
constexpr auto kCrashFile = "/Preferences/com.example.plist";

/// The change that is made, and the calls that it takes.
std::uint64_t change(FileManager& target, std::uint64_t killAt) {
    test::FaultyFileManager files(target, test::everyOperation());
    files.killAt(killAt);
    EXPECT_TRUE(UserDefaults(files, kCrashFile).set("a", "new"));
    EXPECT_EQ(UserDefaults(target, kCrashFile).string("a"), "new");
    return files.calls();
}

/// Changes the user defaults in a process that ends before each of its calls in turn; looks at what
/// is left with `check` after each. Answers how many calls there are.
std::uint64_t endAtEveryCall(const std::function<void(TemporaryDevice&)>& prepare,
                             const std::function<void(TemporaryDevice&)>& check) {
    TemporaryDevice whole;
    prepare(whole);
    const std::uint64_t calls = change(whole.files(), 0);
    check(whole);
    for (std::uint64_t call = 1; call <= calls; ++call) {
        SCOPED_TRACE(call);
        TemporaryDevice device;
        prepare(device);
        EXPECT_EQ(test::exitStatusOfChild([&] { change(device.files(), call); }), test::kKilled);
        check(device);
    }
    return calls;
}

TEST(UserDefaultsCrash, AProcessThatEndsAtAnyCallLeavesTheOldOrTheNewFile) {
    const std::string before = PropertyList(Dictionary{{"a", "old"}, {"b", 1}}).toBinary();
    const std::string after = PropertyList(Dictionary{{"a", "new"}, {"b", 1}}).toBinary();
    const std::uint64_t calls = endAtEveryCall(
        [&](TemporaryDevice& device) { device.fileWith(kCrashFile, before); },
        [&](TemporaryDevice& device) {
            const std::string left = device.content(kCrashFile);
            EXPECT_TRUE(left == before || left == after);
            EXPECT_EQ(UserDefaults(device.files(), kCrashFile).damage(), std::nullopt);
        });
    EXPECT_GE(calls, 3U) << "it locks, reads and writes at least";
}

TEST(UserDefaultsCrash, AProcessThatEndsAtAnyCallKeepsADamagedFileAndItsReport) {
    const std::uint64_t calls = endAtEveryCall(
        [](TemporaryDevice& device) { device.fileWith(kCrashFile, "junk"); },
        [](TemporaryDevice& device) {
            std::size_t kept = 0;
            const auto names = device.files().contentsOfDirectory(kCrashFolder).value();
            for (const auto& name : names) {
                if (device.content(joinPath(kCrashFolder, name)) == "junk") ++kept;
            }
            EXPECT_EQ(kept, 1U);
            EXPECT_TRUE(UserDefaults(device.files(), kCrashFile).damage().has_value());
        });
    EXPECT_GE(calls, 4U) << "it locks, reads, renames and writes at least";
}

/// What a process saves as its `generation`: one that is torn would not hold together.
PropertyList generationOf(std::int64_t generation) {
    return Array{generation, std::string(static_cast<std::size_t>(generation % 50) * 100, 'x'),
                 generation};
}

/// Saves one generation after the other and writes a byte to `tell` after each.
void saveForever(FileManager& files, int tell) {
    UserDefaults defaults(files, kCrashFile);
    for (std::int64_t generation = 1;; ++generation) {
        ASSERT_TRUE(defaults.set("list", generationOf(generation)));
        ASSERT_EQ(write(tell, "", 1), 1);
    }
}

TEST(UserDefaultsCrash, AProcessKilledAtAnyMomentLeavesTheOldOrTheNewFile) {
    std::mt19937 random(20240229);  // NOLINT: the same moments each time, as far as can be
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        TemporaryDevice device;
        int ends[2] = {};
        ASSERT_EQ(pipe(ends), 0);
        const UniqueDescriptor told(ends[0]);
        pid_t child = 0;
        {
            const UniqueDescriptor tell(ends[1]);
            child = test::startChild([&] { saveForever(device.files(), tell.get()); });
        }
        // After some saves, somewhere within the next.
        std::int64_t saved = 0;
        const auto wanted = static_cast<std::int64_t>(random() % 5);
        char byte = 0;
        while (saved < wanted && read(told.get(), &byte, 1) == 1)
            ++saved;
        for (auto turn = random() % 200'000; turn > 0; --turn)
            asm volatile("");
        ASSERT_EQ(kill(child, SIGKILL), 0);
        EXPECT_EQ(test::exitStatusOf(child), test::kKilled);
        while (read(told.get(), &byte, 1) == 1)
            ++saved;

        UserDefaults defaults(device.files(), kCrashFile);
        const auto left = defaults.read("list");
        ASSERT_TRUE(left.has_value()) << left.error().description;
        EXPECT_EQ(defaults.damage(), std::nullopt);
        if (!left->has_value()) {
            EXPECT_EQ(saved, 0);
        } else {
            EXPECT_TRUE(*left == generationOf(saved) || *left == generationOf(saved + 1)) << saved;
        }
        // Neither the lock nor an unfinished file is in the way of the next.
        EXPECT_TRUE(defaults.set("list", "next"));
        EXPECT_EQ(defaults.string("list"), "next");
    }
}

TEST(UserDefaultsCrash, TwoProcessesThatChangeAListAtOnceLoseNothing) {
    constexpr int kChanges = 200;
    TemporaryDevice device;
    const auto work = [&](int first) {
        return [&device, first] {
            UserDefaults defaults(device.files(), kCrashFile);
            for (int change = 0; change < kChanges; ++change) {
                const auto added = defaults.update("list", [&](const PropertyList* stored) {
                    Array list = stored != nullptr ? *stored->array() : Array();
                    list.push_back(first + change);
                    return PropertyList(std::move(list));
                });
                ASSERT_TRUE(added);
            }
        };
    };
    const pid_t one = test::startChild(work(0));
    const pid_t two = test::startChild(work(1000));
    EXPECT_EQ(test::exitStatusOf(one), 0);
    EXPECT_EQ(test::exitStatusOf(two), 0);
    // All of both are there, each's in its order.
    const auto list = UserDefaults(device.files(), kCrashFile).object("list");
    ASSERT_TRUE(list.has_value());
    std::vector<std::int64_t> ones;
    std::vector<std::int64_t> twos;
    for (const PropertyList& item : *list->array()) {
        const std::int64_t number = *item.integer();
        (number < 1000 ? ones : twos).push_back(number);
    }
    ASSERT_EQ(ones.size(), std::size_t{kChanges});
    ASSERT_EQ(twos.size(), std::size_t{kChanges});
    for (int change = 0; change < kChanges; ++change) {
        EXPECT_EQ(ones[static_cast<std::size_t>(change)], change);
        EXPECT_EQ(twos[static_cast<std::size_t>(change)], 1000 + change);
    }
}

}  // namespace
}  // namespace sweepwright::platform
