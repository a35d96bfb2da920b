#include <gtest/gtest.h>

#include "platform/log/Log.h"
#include "ui/shell/AppDelegate.h"
#include "ui/support/TestApp.h"

namespace sweepwright::ui {
namespace {

class AppDelegateTest : public testing::Test {
  protected:
    void start() {
        AppDelegate(app_.services().device, app_.device.files()).applicationDidFinishLaunching();
    }
    std::size_t entries(const std::string& path) {
        const auto names = app_.device.files().contentsOfDirectory(path);
        return names ? names->size() : 0;
    }
    const std::string caches_ = "/var/mobile/Library/Caches";
    const std::string tmp_ = "/var/mobile/tmp";
    const std::string logs_ = "/var/mobile/Library/Logs";
    test::TestApp app_{{}, test::withoutHome};
};

TEST_F(AppDelegateTest, WritesThirtySampleFilesOfTheSizesSaid) {
    const platform::LogCapture log;
    start();
    EXPECT_EQ(entries(caches_), 10U);
    EXPECT_EQ(entries(tmp_), 15U);
    EXPECT_EQ(entries(logs_), 5U);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(app_.device.content(caches_ + "/cache_file_" + std::to_string(i) + ".tmp").size(),
                  10256U);
    }
    for (int i = 0; i < 15; ++i) {
        EXPECT_EQ(app_.device.content(tmp_ + "/temp_file_" + std::to_string(i) + ".dat").size(),
                  20496U);
    }
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(app_.device.content(logs_ + "/app_log_" + std::to_string(i) + ".log").size(),
                  5128U);
    }
    EXPECT_TRUE(log.contains("✅ 测试文件创建完成"));
}

TEST_F(AppDelegateTest, PadsTheTextsWithTheirOwnPadding) {
    start();
    const std::string cache = app_.device.content(caches_ + "/cache_file_0.tmp");
    EXPECT_EQ(cache.substr(0, 26), "这是缓存文件内容..");
    EXPECT_EQ(cache.back(), '.');
    const std::string temporary = app_.device.content(tmp_ + "/temp_file_14.dat");
    EXPECT_EQ(temporary.substr(0, 26), "这是临时文件内容xx");
    const std::string line = app_.device.content(logs_ + "/app_log_4.log");
    EXPECT_EQ(line.substr(0, 23), "日志内容...log log ");
    // 5113 characters of padding are 1278 times "log " and one more.
    EXPECT_EQ(line.substr(line.size() - 5), "log l");
}

TEST_F(AppDelegateTest, WritesTheSameFilesAgainAtTheNextStart) {
    start();
    app_.device.fileWith(caches_ + "/cache_file_3.tmp", "changed");
    start();
    EXPECT_EQ(app_.device.content(caches_ + "/cache_file_3.tmp").size(), 10256U);
    EXPECT_EQ(entries(caches_) + entries(tmp_) + entries(logs_), 30U);
}

TEST_F(AppDelegateTest, GoesOnWhenAFileCannotBeWritten) {
    app_.device.folder(caches_ + "/cache_file_0.tmp/in the way");
    start();
    EXPECT_EQ(app_.device.content(caches_ + "/cache_file_1.tmp").size(), 10256U);
    EXPECT_EQ(entries(logs_), 5U);
}

}  // namespace
}  // namespace sweepwright::ui
