#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <stop_token>

#include <gtest/gtest.h>

#include "launch/GlobalOptions.h"
#include "sample/ForwardingFileMaker.h"
#include "sample/SampleDevice.h"
#include "sample/internal/SampleDeviceBuilder.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::sample {
namespace {

namespace fs = std::filesystem;

std::stop_token alreadyStopped() {
    std::stop_source source;
    source.request_stop();
    return source.get_token();
}

TEST(SampleDevice, AStopLeavesNothingBehindNotEvenTheFoldersAbove) {
    const test::TemporaryFolder folder;
    const auto now = std::chrono::system_clock::now();
    const auto made = makeSampleDevice(folder.path() + "/a/b/new", 1, now, alreadyStopped());
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().code, ECANCELED);
    EXPECT_EQ(made.error().description, "can't make a sample device in " + folder.path() +
                                            "/a/b/new: interrupted; nothing was made");
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(SampleDevice, AStopOfItsMakingOnFirstUseLeavesNothingBehind) {
    const test::TemporaryFolder folder;
    const launch::Environment environment =
        [&](const std::string& name) -> std::optional<std::string> {
        if (name == "XDG_DATA_HOME") return folder.path();
        return std::nullopt;
    };
    EXPECT_EQ(launch::chooseDevice({}, environment, alreadyStopped()).error().code, ECANCELED);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

/// Asks for the stop at the n-th file.
class StoppingFiles final : public test::ForwardingFileMaker {
  public:
    StoppingFiles(platform::FileMaker& target, int files)
        : ForwardingFileMaker(target), left_(files) {}

    platform::Result<> createSparseFile(const std::string& path, std::uint64_t size) override {
        if (--left_ == 0) stop.request_stop();
        return ForwardingFileMaker::createSparseFile(path, size);
    }

    std::stop_source stop;

  private:
    int left_;
};

TEST(SampleDevice, AStopIsHeededAfterTheFileInHand) {
    test::TemporaryDevice device;
    StoppingFiles files(device.files(), 100);
    const auto made =
        SampleDeviceBuilder(files, 1, std::chrono::system_clock::now(), files.stop.get_token())
            .build();
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().code, ECANCELED);
    const auto isFile = [&](const std::string& path) {
        return fs::is_regular_file(fs::symlink_status(device.host(path)));
    };
    EXPECT_EQ(std::ranges::count_if(device.entriesBeneath("/"), isFile), 100);
}

}  // namespace
}  // namespace sweepwright::sample
