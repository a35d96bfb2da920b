#include <csignal>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"

namespace sweepwright::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

/// Regular files beneath `folder` and their bytes, counted without the product.
json counted(const std::string& folder) {
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!fs::is_regular_file(entry.symlink_status())) continue;
        ++files;
        bytes += entry.file_size();
    }
    return {{"root", folder}, {"files", files}, {"bytes", bytes}};
}

TEST(SampleDevice, AnAbsentFolderBecomesADeviceAndTheDocumentTellsWhatIsInIt) {
    Sweepctl sweepctl;
    const std::string folder = sweepctl.homeFolder() + "/phone";
    const ProcessResult made = sweepctl.runBare({"sample-device", folder, "--json"});
    EXPECT_EQ(made.status, 0) << made.error;
    EXPECT_EQ(json::parse(made.output, nullptr, false), counted(folder));
    EXPECT_EQ(sweepctl.runBare({"--device-root", folder, "scan"}).status, 0);
}

TEST(SampleDevice, AScaleMultipliesTheFiles) {
    Sweepctl sweepctl;
    const auto files = [&](const std::string& name, const std::string& scale) {
        return sweepctl
            .json({"sample-device", sweepctl.homeFolder() + name, "--scale", scale})["files"]
            .get<std::uint64_t>();
    };
    EXPECT_GT(files("/two", "2"), files("/one", "1"));
}

TEST(SampleDevice, AFolderThatIsNotEmptyIsRefusedAndLeftAsItWas) {
    Sweepctl sweepctl;
    sweepctl.device().fileWith("/keep", "me");
    const std::string folder = sweepctl.device().root();
    const ProcessResult text = sweepctl.runBare({"sample-device", folder});
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.output, "");
    EXPECT_THAT(text.error, HasSubstr(folder + ": Directory not empty"));
    EXPECT_TRUE(isOneLine(text.error)) << text.error;
    const ProcessResult document = sweepctl.runBare({"sample-device", folder, "--json"});
    EXPECT_EQ(document.status, 1);
    EXPECT_THAT(errorIn(document.output), HasSubstr("Directory not empty"));
    EXPECT_EQ(sweepctl.device().content("/keep"), "me");
    EXPECT_EQ(counted(folder)["files"], 1);
}

TEST(SampleDevice, AnInterruptLeavesNothingBehind) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Sweepctl sweepctl;
        const TemporaryFolder folder;
        sweepctl.setTerminal({.error = true});
        Process process(sweepctl.bareOptions(
            {"sample-device", folder.path() + "/above/phone", "--scale", "1000"}));
        process.waitForText("making a sample device");
        process.signal(signal);
        const ProcessResult result = process.wait();
        EXPECT_EQ(result.status, 128 + signal);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.screen, HasSubstr("interrupted; nothing was made"));
        EXPECT_TRUE(fs::is_empty(folder.path()));
    }
}

TEST(SampleDevice, AnUnusableDeviceRootDoesNotMatterToIt) {
    Sweepctl sweepctl;
    const std::string folder = sweepctl.homeFolder() + "/phone";
    EXPECT_EQ(sweepctl.runBare({"--device-root", "/nowhere", "sample-device", folder}).status, 0);
}

}  // namespace
}  // namespace sweepwright::test
