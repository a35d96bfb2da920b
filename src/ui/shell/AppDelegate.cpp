#include "ui/shell/AppDelegate.h"

#include <QString>

#include <fmt/format.h>

#include "platform/log/Log.h"

namespace sweepwright::ui {

namespace {

constexpr int kCacheFiles = 10;
constexpr int kCacheLength = 10240;
constexpr int kTemporaryFiles = 15;
constexpr int kTemporaryLength = 20480;
constexpr int kLogFiles = 5;
constexpr int kLogLength = 5120;

// `text` made `length` UTF-16 characters long by repeating `pad`, as UTF-8.
std::string padded(const QString& text, int length, const QString& pad) {
    QString result = text;
    while (result.size() < length)
        result += pad;
    result.truncate(length);
    return result.toStdString();
}

}  // namespace

bool AppDelegate::applicationDidFinishLaunching() {
    createTestFiles();
    return true;
}

void AppDelegate::createTestFiles() {
    writeFiles(device_.cachesDirectory(), "cache_file_", "tmp", kCacheFiles,
               padded(QStringLiteral("这是缓存文件内容"), kCacheLength, QStringLiteral(".")));
    writeFiles(device_.temporaryDirectory(), "temp_file_", "dat", kTemporaryFiles,
               padded(QStringLiteral("这是临时文件内容"), kTemporaryLength, QStringLiteral("x")));
    const std::string logs = device_.homeDirectory() + "/Library/Logs";
    // Where it can't be made the files below fail, and that is ignored, too.
    [[maybe_unused]] const auto made = files_.createDirectories(logs);
    writeFiles(logs, "app_log_", "log", kLogFiles,
               padded(QStringLiteral("日志内容..."), kLogLength, QStringLiteral("log ")));
    platform::log("✅ 测试文件创建完成");
}

void AppDelegate::writeFiles(const std::string& directory, std::string_view prefix,
                             std::string_view extension, int count, const std::string& content) {
    for (int i = 0; i < count; ++i) {
        const std::string name = fmt::format("{}{}.{}", prefix, i, extension);
        [[maybe_unused]] const auto written =
            files_.writeFile(platform::joinPath(directory, name), content);
    }
}

}  // namespace sweepwright::ui
