// Trees and devices at and beyond what one expects.
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/CleanPreview.h"
#include "engine/FolderAnalysis.h"
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

/// Levels of the deep tree: few enough for every run, or as many as asked for.
int levels() {
    const char* given = std::getenv("SWEEPWRIGHT_DEEP_TREE");
    return given == nullptr ? 3'000 : std::atoi(given);
}

/// KiB that this process has ever held at once.
long peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// Fails when `body` needs more than `most` KiB beyond what was needed before, which a sanitizer
/// hides.
void expectLittleMemory(const char* what, long most, const std::function<void()>& body) {
    const long before = peakMemory();
    body();
    const long more = peakMemory() - before;
    std::printf("%s: %ld KiB more at the peak\n", what, more);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(more, most) << what;
#else
    (void)most;
#endif
}

/// What only looks at a device: each by its name.
void expectThatLookingNeedsLittleMemory(Worker& worker, std::uint64_t wouldFree, long most) {
    const EngineServices services = worker.engineServices();
    expectLittleMemory("preview", most, [&] {
        const auto preview = previewClean(services, CleanType::TempFiles);
        ASSERT_TRUE(preview);
        EXPECT_EQ(preview->wouldFree, wouldFree);
    });
    expectLittleMemory("size", most, [&] { (void)worker.engine.getTempFilesSize(); });
    expectLittleMemory("list", most, [&] {
        EXPECT_LE(worker.engine.getTempFileList().size(), FileCleanerEngine::kMaxListedPaths);
    });
    expectLittleMemory("large files", most, [&] {
        EXPECT_LE(FolderAnalysis(services, "/").largeFiles(0).size(),
                  FileCleanerEngine::kMaxLargeFiles);
    });
    expectLittleMemory("extensions", most,
                       [&] { (void)FolderAnalysis(services, "/").extensions(); });
    expectLittleMemory("usage", most, [&] { (void)FolderAnalysis(services, "/").usage(); });
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

TEST(Limits, AFolderOfManyEntriesIsLookedAtAndGoesInLittleMemory) {
    if (test::ranInFreshProcess()) return;
    SmallDevice device;
    makeFiles(device, temporary("many"), entries());
    // Lists and analyses remember a folder's names: so many bytes each, in blocks.
    const long names = entries() * 20L / 1024;
    test::inChildProcess([&] {
        Worker worker(device.tree());
        expectThatLookingNeedsLittleMemory(worker, 32'768U, 8 * 1024 + names);
        expectLittleMemory("clean", 8 * 1024,
                           [&] { EXPECT_EQ(worker.clean(kTemp).bytes, 32'768U); });
        EXPECT_FALSE(device.tree().exists(temporary("many")));
    });
}

TEST(Limits, ADeepTreeIsLookedAtAndGoesInLittleMemory) {
    if (test::ranInFreshProcess()) return;
    SmallDevice device;
    makeChain(device, temporary("deep"), "d", levels());
    // What is on the way down is remembered by its name alone.
    const long way = levels() * 400L / 1024;
    test::inChildProcess([&] {
        Worker worker(device.tree());
        expectThatLookingNeedsLittleMemory(worker, 32'768U + 100, 4 * 1024 + way);
        expectLittleMemory("clean", 4 * 1024 + way,
                           [&] { EXPECT_EQ(worker.clean(kTemp).bytes, 32'768U + 100); });
        EXPECT_FALSE(device.tree().exists(temporary("deep")));
    });
}

TEST(Limits, ADeepTreeThatMustStayIsLeftWithoutDeepRecursion) {
    if (test::ranInFreshProcess()) return;
    SmallDevice device;
    makeChain(device, temporary("deep"), "d", 560);
    test::inChildProcess([&] {
        Worker worker(device.tree());
        worker.files.failWhere(
            [](test::Operation operation, const std::string& path) {
                return operation == test::Operation::RemoveDirectoryAt && path.contains("/deep");
            },
            EACCES);
        EXPECT_TRUE(worker.clean(kTemp).success);
    });
    EXPECT_TRUE(device.tree().exists(temporary("deep/d/d/d")));
    Worker worker(device.tree());
    EXPECT_TRUE(worker.clean(kTemp).success);
    EXPECT_FALSE(device.tree().exists(temporary("deep")));
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
