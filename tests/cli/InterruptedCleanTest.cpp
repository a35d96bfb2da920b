#include <csignal>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/Arguments.h"
#include "cli/Context.h"
#include "platform/device/Device.h"
#include "platform/queue/DispatchQueue.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::cli {

namespace {

TEST(CleanCommand, AnInterruptDuringACleanReportsWhatWasFreedSoFar) {
    test::TemporaryDevice tree;
    tree.folder("/var/mobile");
    for (int i = 0; i < 10; ++i)
        tree.file("/var/mobile/tmp/" + std::to_string(i), 1);
    // In a process of its own: the current device is set once.
    test::inChildProcess([&] {
        platform::DeviceOptions options;
        options.rootFolder = tree.root();
        platform::Device::setCurrent(platform::Device::open(options).value());
        test::FaultyFileManager files(platform::FileManager::defaultManager(),
                                      {test::Operation::RemoveFileAt});
        platform::FileManager::setDefaultManager(files);
        std::signal(SIGINT, SIG_DFL);  // whoever runs the tests may have it ignored
        Interruption interruption([] {});
        Progress progress({});
        Output output(true, false);
        Context context(output, progress, interruption);
        int removals = 0;
        files.before([&](test::Operation, const std::string&) {
            if (++removals != 3) return;
            std::raise(SIGINT);
            while (!interruption.signal())
                std::this_thread::yield();
        });
        const Commands commands = allCommands();
        const auto clean = parseArguments(commands, {"clean", "temp", "--yes"});
        ASSERT_TRUE(clean.has_value());
        EXPECT_TRUE(clean->command->run(context, clean->call).has_value());
        testing::internal::CaptureStdout();
        EXPECT_TRUE(output.flush());
        EXPECT_EQ(nlohmann::json::parse(testing::internal::GetCapturedStdout(), nullptr, false),
                  (nlohmann::json{{"success", true}, {"cleanedBytes", 3}, {"error", nullptr}}));
    });
    EXPECT_EQ(tree.entriesBeneath("/var/mobile/tmp").size(), 7U);
}

}  // namespace

}  // namespace sweepwright::cli
