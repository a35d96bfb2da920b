// Trees and devices at and beyond what one expects.
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "hardening/SmallDevice.h"
#include "support/ChildProcess.h"

namespace sweepwright {
namespace {

using test::SmallDevice;
using test::Worker;

constexpr int kTemp = static_cast<int>(CleanType::TempFiles);

std::string temporary(const std::string& relative) {
    return SmallDevice::home("tmp/" + relative);
}

/// A chain of folders `name` beneath `path`, each with a file of one byte.
void makeChain(SmallDevice& device, const std::string& path, const std::string& name, int levels) {
    device.tree().folder(path);
    int folder = open(device.tree().host(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; level < levels; ++level) {
        const int file = openat(folder, "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        ASSERT_EQ(ftruncate(file, 1), 0);
        close(file);
        ASSERT_EQ(mkdirat(folder, name.c_str(), 0755), 0);
        const int next = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        close(folder);
        folder = next;
        ASSERT_GE(folder, 0);
    }
    close(folder);
}

void makeFiles(SmallDevice& device, const std::string& path, int count) {
    device.tree().folder(path);
    const int folder = open(device.tree().host(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < count; ++i) {
        const std::string name = "file-" + std::to_string(i);
        const int file = openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        ASSERT_GE(file, 0);
        close(file);
    }
    close(folder);
}

/// Entries of the large folder: few enough for every run, or as many as asked for.
int entries() {
    const char* given = std::getenv("SWEEPWRIGHT_HUGE_FOLDER");
    return given == nullptr ? 20'000 : std::atoi(given);
}

class Descriptors : public testing::TestWithParam<int> {};

TEST_P(Descriptors, SixtyFourAreEnough) {
    if (test::ranInFreshProcess()) return;
    SmallDevice device;
    const auto healthy = test::answerOfChild<std::uint64_t>(
        [&] { return Worker(device.tree()).clean(GetParam()).bytes; });
    device.restore();
    test::inChildProcess([&] {
        test::limitDescriptors(64);
        Worker worker(device.tree());
        worker.commands.answer([](const test::FakeCommandRunner::Command& command) {
            return platform::SpawnCommandRunner().run(command.text, command.folder);
        });
        const auto outcome = worker.clean(GetParam());
        EXPECT_TRUE(outcome.success);
        EXPECT_EQ(outcome.bytes, healthy);
        EXPECT_EQ(device.bytesGone(), healthy);
    });
    EXPECT_EQ(device.damage(), "");
}

INSTANTIATE_TEST_SUITE_P(, Descriptors, testing::Range(0, int{test::kCleans}),
                         [](const auto& each) { return test::cleanName(each.param); });

TEST(Limits, ATreeOfFiveThousandLevelsGoesAndCountsAsFarAsAWalkMeasures) {
    SmallDevice device;
    makeChain(device, temporary("deep"), "d", 5'000);
    Worker worker(device.tree());
    const std::uint64_t measured = worker.engine.getTempFilesSize();
    const auto outcome = worker.clean(kTemp);
    EXPECT_TRUE(outcome.success);
    EXPECT_FALSE(device.tree().exists(temporary("deep")));
    // Entries of the temporary folder are at level 100, so 99 files of the chain are within.
    EXPECT_EQ(measured, 32'768U + 99);
    // A removal counts from its own start: one level more.
    EXPECT_EQ(outcome.bytes, 32'768U + 100);
}

TEST(Limits, PathsFarBeyondWhatTheSystemTakesAtOnceGo) {
    SmallDevice device;
    makeChain(device, temporary("long"), std::string(255, 'n'), 90);
    Worker worker(device.tree());
    EXPECT_EQ(worker.engine.getTempFilesSize(), 32'768U + 90);
    EXPECT_EQ(worker.clean(kTemp).bytes, 32'768U + 90);
    EXPECT_FALSE(device.tree().exists(temporary("long")));
    EXPECT_EQ(device.damage(), "");
}

TEST(Limits, NamesOf255BytesAndOfNoTextGo) {
    SmallDevice device;
    const std::string longest(255, 'x');
    const std::string noText(255, '\xff');
    for (const std::string& name :
         {longest, noText, std::string("\xc3\x28"), std::string("\n\x1b[2J"), std::string("-rf"),
          std::string("'"), std::string("*")}) {
        device.tree().file(temporary(name + "/" + name), 1);
        device.tree().file("/var/mobile/Library/Caches/SomeCache/" + name, 1);
        device.tree().file("/var/mobile/Library/Caches/com.apple.springboard/" + name, 1);
    }
    Worker worker(device.tree());
    worker.commands.answer([](const test::FakeCommandRunner::Command& command) {
        return platform::SpawnCommandRunner().run(command.text, command.folder);
    });
    const std::string spared =
        SmallDevice::home("Library/Application Support/cache" + std::string(250, '\xff'));
    device.tree().file(spared + "/" + noText, 1);
    ASSERT_TRUE(worker.pathWhitelist.addPathToWhitelist(spared));
    const auto outcome = worker.clean(test::kAll);
    EXPECT_TRUE(device.tree().exists(spared + "/" + noText));
    EXPECT_FALSE(device.tree().exists(temporary(noText)));
    EXPECT_FALSE(device.tree().exists(temporary(longest)));
    EXPECT_EQ(outcome.bytes, device.bytesGone() + 7 + 7 + 7);
    EXPECT_EQ(device.damage(), "");
}

TEST(Limits, AFolderOfManyEntriesGoesInLittleMemory) {
    if (test::ranInFreshProcess()) return;
    SmallDevice device;
    makeFiles(device, temporary("many"), entries());
    test::inChildProcess([&] {
        Worker worker(device.tree());
        rusage before{};
        getrusage(RUSAGE_SELF, &before);
        EXPECT_EQ(worker.clean(kTemp).bytes, 32'768U);
        rusage after{};
        getrusage(RUSAGE_SELF, &after);
        EXPECT_FALSE(device.tree().exists(temporary("many")));
        std::printf("%d entries: %ld KiB more at the peak\n", entries(),
                    after.ru_maxrss - before.ru_maxrss);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 8 * 1024);
#endif
    });
}

TEST(Limits, AThousandProtectedPathsAllStay) {
    SmallDevice device;
    platform::PropertyList::Array stored;
    constexpr int kPaths = 1'000;
    const std::string support = SmallDevice::home("Library/Application Support");
    for (int i = 0; i < kPaths; ++i) {
        const std::string number = std::to_string(i);
        device.tree().file(support + "/cache" + number + "/keep/file", 1);
        device.tree().file(support + "/temp" + number + "/file", 1);
        stored.emplace_back(support + "/cache" + number + "/keep");
    }
    Worker worker(device.tree());
    ASSERT_TRUE(worker.defaults.set("PathWhitelistPaths", stored));
    const auto outcome = worker.clean(static_cast<int>(CleanType::Cache));
    EXPECT_GE(outcome.bytes, device.bytesGone() + kPaths);
    for (int i = 0; i < kPaths; ++i) {
        const std::string number = std::to_string(i);
        EXPECT_TRUE(device.tree().exists(support + "/cache" + number + "/keep/file")) << i;
        EXPECT_FALSE(device.tree().exists(support + "/temp" + number + "/file")) << i;
    }
}

}  // namespace
}  // namespace sweepwright
