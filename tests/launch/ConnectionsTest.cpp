#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "launch/Connections.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::launch {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Connections whose mount table the test writes.
class ConnectionsTest : public testing::Test {
  protected:
    void mounted(const std::string& name) {
        fs::create_directories(devices() + name);
        std::ofstream(table_, std::ios::app)
            << "36 35 0:58 / " << devices() << name << " rw,nosuid - fuse.sshfs x rw\n";
    }
    void chosen(const std::string& name) {
        std::ofstream(folder_.path() + "/chosen") << name << '\n';
    }
    [[nodiscard]] std::string devices() const { return folder_.path() + "/devices/"; }
    [[nodiscard]] Connections connections() const { return Connections(folder_.path(), table_); }

    test::TemporaryFolder folder_;
    std::string table_ = folder_.path() + "/mounts";
};

TEST_F(ConnectionsTest, AreWhatIsMountedInTheirFolder) {
    mounted("root@phone");
    mounted("usb");
    fs::create_directories(devices() + "left-behind");
    std::ofstream(table_, std::ios::app) << "1 2 0:3 / /media/usb rw - ext4 x rw\n";
    chosen("usb");
    const auto all = connections().all();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].name, "root@phone");
    EXPECT_FALSE(all[0].isChosen);
    EXPECT_EQ(all[1].name, "usb");
    EXPECT_EQ(all[1].folder, devices() + "usb");
    EXPECT_TRUE(all[1].isChosen);
}

TEST_F(ConnectionsTest, ThatAnswerNoMoreAreGone) {
    mounted("usb");
    fs::remove(devices() + "usb");
    EXPECT_EQ(connections().all().at(0).state, Connection::State::Gone);
}

TEST_F(ConnectionsTest, ChosenIsNoneThatIsNotMounted) {
    mounted("root@phone");
    EXPECT_EQ(connections().chosen(), std::nullopt);
    chosen("usb");
    EXPECT_EQ(connections().chosen(), std::nullopt);
    chosen("root@phone");
    ASSERT_TRUE(connections().chosen().has_value());
}

TEST_F(ConnectionsTest, NeedARunTimeFolder) {
    const auto none = Connections::ofPerson([](const std::string&) { return std::nullopt; });
    ASSERT_FALSE(none.has_value());
    EXPECT_THAT(none.error().description, HasSubstr("$XDG_RUNTIME_DIR is not set"));
}

TEST_F(ConnectionsTest, WithoutOneTheSampleDeviceIsUsed) {
    const fs::path runtime = folder_.path() + "/run";
    fs::create_directories(runtime);
    const auto environment = [&](const std::string& name) -> std::optional<std::string> {
        if (name == "XDG_RUNTIME_DIR") return runtime.string();
        if (name == "HOME") return folder_.path();
        return std::nullopt;
    };
    const auto choice = nameDevice({}, environment);
    ASSERT_TRUE(choice.has_value());
    EXPECT_TRUE(choice->isSampleDevice);
    EXPECT_EQ(choice->connection, "");
}

}  // namespace
}  // namespace sweepwright::launch
