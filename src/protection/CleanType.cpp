#include "protection/CleanType.h"

#include <array>

namespace sweepwright {

std::optional<std::string_view> nameOf(CleanType type) {
    static constexpr auto kNames = std::to_array<std::string_view>(
        {"缓存文件", "临时文件", "Cookie & 网页数据", "系统日志", "下载文件", "图片缓存",
         "数据库文件", "崩溃报告", "离线数据", "一键清理全部", "第三方应用缓存"});
    const auto value = static_cast<std::uint64_t>(type);
    if (value >= kNames.size()) return std::nullopt;
    return kNames[value];
}

}  // namespace sweepwright
