#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright::test {
namespace {

using nlohmann::json;
using platform::PropertyList;
using testing::HasSubstr;
using testing::Not;

const std::string kBundles = "/var/containers/Bundle/Application/";

std::string bundle(TemporaryDevice& device, const std::string& container, const std::string& name,
                   std::uint64_t bytes) {
    const std::string path = kBundles + container;
    device.fileWith(path + "/X.app/Info.plist",
                    PropertyList(PropertyList::Dictionary{{"CFBundleName", name}}).toBinary());
    device.file(path + "/X.app/x", bytes);
    return path;
}

TEST(AnalyzeCommand, AppsAreListedLargestFirstAndOnATerminalByName) {
    Sweepctl sweepctl;
    bundle(sweepctl.device(), "A", "Small", 2000);
    bundle(sweepctl.device(), "B", "Large", 200'000);
    bundle(sweepctl.device(), "C", "Middle", 20'000);
    const std::string text = sweepctl.run({"analyze", "apps"}).output;
    EXPECT_EQ(text, "195.4 KB  " + kBundles + "B\n 19.6 KB  " + kBundles + "C\n  2.0 KB  " +
                        kBundles + "A\n");
    sweepctl.setTerminal({.output = true});
    EXPECT_THAT(sweepctl.run({"analyze", "apps"}).screen,
                testing::EndsWith("\n\n    SIZE  APP     PATH\n195.4 KB  Large   " + kBundles +
                                  "B\n 19.6 KB  Middle  " + kBundles + "C\n  2.0 KB  Small   " +
                                  kBundles + "A\n"));
}

TEST(AnalyzeCommand, OnATerminalItSaysWhatItLooksAt) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/Documents/a", 1000);
    const std::string piped = sweepctl.run({"analyze", "large", "--min-size", "1000"}).output;
    EXPECT_EQ(piped, "1000 B  /var/mobile/Documents/a\n");
    sweepctl.setTerminal({.output = true}, 60);
    EXPECT_EQ(sweepctl.run({"analyze", "large", "--min-size", "1000"}).screen,
              "Files of at least 1000 B, the largest first, 100 at most.\n"
              "Only Sweepwright's own container is looked at, in Documents\n"
              "and Library/Caches of /var/mobile\n"
              "For the whole device add: --folder /\n"
              "\n"
              "  SIZE  PATH\n"
              "1000 B  /var/mobile/Documents/a\n");
    for (const char* what : {"large", "duplicates", "extensions", "usage"}) {
        EXPECT_THAT(sweepctl.run({"analyze", what}).screen, HasSubstr("own container")) << what;
        const std::string whole = sweepctl.run({"analyze", what, "--folder", "/"}).screen;
        EXPECT_THAT(whole, HasSubstr("The whole device is looked at.")) << what;
        EXPECT_THAT(whole, Not(HasSubstr("own container"))) << what;
    }
}

TEST(AnalyzeCommand, AnotherFolderCanBeNamed) {
    Sweepctl sweepctl;
    TemporaryDevice& device = sweepctl.device();
    device.file("/var/mobile/Documents/own", 5000);
    device.file("/private/data/large.bin", 6000);
    device.file("/private/data/other.bin", 6000);
    device.file("/private/data/sub/small", 100);
    device.link("/data", "private/data");
    EXPECT_EQ(sweepctl.json({"analyze", "large", "--min-size", "6000", "--folder", "/"}).size(), 2U)
        << "links lead to them once more";
    EXPECT_EQ(sweepctl.json({"analyze", "duplicates"}), json::array());
    EXPECT_EQ(sweepctl.json({"analyze", "duplicates", "--folder", "/"})[0].size(), 2U);
    EXPECT_EQ(sweepctl.json({"analyze", "extensions", "--folder", "/private"}),
              (json{{"byExtension", {{"(no extension)", 100}, {"bin", 12000}}},
                    {"totalAnalyzed", 12100}}));
    EXPECT_EQ(sweepctl.json({"analyze", "usage", "--folder", "/"}),
              (json{{"private", {{"size", 12100}, {"formatted", "11.8 KB"}}},
                    {"var", {{"size", 5000}, {"formatted", "4.9 KB"}}}}));
    EXPECT_EQ(sweepctl.run({"analyze", "usage", "--folder", "/data/sub"}).output, "100 B  small\n")
        << "a link in the name is followed";
}

TEST(AnalyzeCommand, AFolderMustBeOneOfTheDevice) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/file", 1);
    const auto refused = [&](const std::string& what, const std::string& folder, int status,
                             const std::string& said) {
        const ProcessResult result = sweepctl.run({"analyze", what, "--folder", folder});
        EXPECT_EQ(result.status, status) << folder;
        EXPECT_TRUE(isOneLine(result.error)) << result.error;
        EXPECT_THAT(result.error, HasSubstr(said));
    };
    refused("large", "var", 2, "var: a device path begins with \"/\"");
    refused("large", "", 2, "--folder may not be empty");
    refused("apps", "/", 2, "--folder does not go with");
    refused("usage", "/none", 1, "/none: No such file or directory");
    refused("usage", "/var/mobile/file", 1, "/var/mobile/file: Not a directory");
}

}  // namespace
}  // namespace sweepwright::test
