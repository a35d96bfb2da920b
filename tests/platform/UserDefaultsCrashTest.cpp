// What is left of the user defaults when a process ends at any moment, and when two work at once.
#include <csignal>
#include <functional>
#include <random>
#include <set>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/UniqueDescriptor.h"
#include "platform/UserDefaults.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {
namespace {

using test::TemporaryDevice;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

constexpr auto kDirectory = "/Preferences";
constexpr auto kFile = "/Preferences/com.example.plist";

/// Runs `work` in a process of its own, which ends with what it answers.
pid_t start(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    EXPECT_GT(child, 0);
    return child;
}

int statusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

const std::set<test::Operation> kCalls = {test::Operation::ReadFile, test::Operation::WriteFile,
                                          test::Operation::CreateDirectories,
                                          test::Operation::Rename, test::Operation::Lock};

/// Changes the user defaults in a process that ends before each of its calls in turn, until one
/// comes through; looks at what is left with `check` after each.
void endAtEveryCall(std::uint64_t calls, const std::function<void(TemporaryDevice&)>& prepare,
                    const std::function<void(TemporaryDevice&)>& check) {
    for (std::uint64_t call = 1; call <= calls + 1; ++call) {
        SCOPED_TRACE(call);
        TemporaryDevice device;
        prepare(device);
        const int status = test::exitStatusOfChild([&] {
            test::FaultyFileManager files(device.files(), kCalls);
            files.killAt(call);
            EXPECT_TRUE(UserDefaults(files, kFile).set("a", "new"));
        });
        EXPECT_EQ(status, call <= calls ? test::kKilled : 0);
        check(device);
        if (status != 0) continue;
        EXPECT_EQ(UserDefaults(device.files(), kFile).string("a"), "new");
    }
}

TEST(UserDefaultsCrash, AProcessThatEndsAtAnyCallLeavesTheOldOrTheNewFile) {
    const std::string before = PropertyList(Dictionary{{"a", "old"}, {"b", 1}}).toBinary();
    const std::string after = PropertyList(Dictionary{{"a", "new"}, {"b", 1}}).toBinary();
    endAtEveryCall(
        4,  // the folder, the lock, the reading and the writing
        [&](TemporaryDevice& device) { device.fileWith(kFile, before); },
        [&](TemporaryDevice& device) {
            const std::string left = device.content(kFile);
            EXPECT_TRUE(left == before || left == after);
            EXPECT_EQ(UserDefaults(device.files(), kFile).damage(), std::nullopt);
        });
}

TEST(UserDefaultsCrash, AProcessThatEndsAtAnyCallKeepsADamagedFileAndItsReport) {
    endAtEveryCall(
        5,  // the renaming as well
        [](TemporaryDevice& device) { device.fileWith(kFile, "junk"); },
        [](TemporaryDevice& device) {
            std::size_t kept = 0;
            const auto names = device.files().contentsOfDirectory(kDirectory).value();
            for (const auto& name : names) {
                if (device.content(joinPath(kDirectory, name)) == "junk") ++kept;
            }
            EXPECT_EQ(kept, 1U);
            EXPECT_TRUE(UserDefaults(device.files(), kFile).damage().has_value());
        });
}

/// What a process saves as its `generation`: one that is torn would not hold together.
PropertyList generationOf(std::int64_t generation) {
    return Array{generation, std::string(static_cast<std::size_t>(generation % 50) * 100, 'x'),
                 generation};
}

/// Saves one generation after the other and writes a byte to `tell` after each.
int saveForever(FileManager& files, int tell) {
    UserDefaults defaults(files, kFile);
    for (std::int64_t generation = 1;; ++generation) {
        if (!defaults.set("list", generationOf(generation))) return 1;
        if (write(tell, "", 1) != 1) return 1;
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
            child = start([&] { return saveForever(device.files(), tell.get()); });
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
        EXPECT_TRUE(WIFSIGNALED(statusOf(child)));
        while (read(told.get(), &byte, 1) == 1)
            ++saved;

        UserDefaults defaults(device.files(), kFile);
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
            UserDefaults defaults(device.files(), kFile);
            for (int change = 0; change < kChanges; ++change) {
                const auto added = defaults.update("list", [&](const PropertyList* stored) {
                    Array list = stored != nullptr ? *stored->array() : Array();
                    list.push_back(first + change);
                    return PropertyList(std::move(list));
                });
                if (!added) return 1;
            }
            return 0;
        };
    };
    const pid_t one = start(work(0));
    const pid_t two = start(work(1000));
    EXPECT_EQ(statusOf(one), 0);
    EXPECT_EQ(statusOf(two), 0);
    // All of both are there, each's in its order.
    const auto list = UserDefaults(device.files(), kFile).object("list");
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
