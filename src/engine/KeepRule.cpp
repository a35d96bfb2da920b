#include "engine/KeepRule.h"

#include <algorithm>

#include "engine/CategoryRules.h"
#include "platform/log/Log.h"

namespace sweepwright {

namespace {

bool staysFor(KeptReason reason, const EntryInQuestion& entry) {
    switch (reason) {
        case KeptReason::Hidden:
            return entry.name().starts_with('.');
        case KeptReason::OwnFolder:
            return entry.name().contains(rules::kProductName);
        case KeptReason::Protected:
            return entry.isProtected();
        case KeptReason::Link:
            return entry.isLink();
        case KeptReason::Database:
            return rules::isSQLiteDatabaseFile(entry.path());
        case KeptReason::Maps:
            return rules::isMapsAppPath(entry.path());
        default:
            return false;
    }
}

}  // namespace

std::optional<KeptReason> reasonToKeep(const EntryInQuestion& entry,
                                       std::span<const KeptReason> asked) {
    const auto found =
        std::ranges::find_if(asked, [&](KeptReason reason) { return staysFor(reason, entry); });
    return found == asked.end() ? std::nullopt : std::optional(*found);
}

void logKept(const std::string& path, KeptReason reason) {
    if (reason == KeptReason::Protected) {
        platform::log("🔒 跳过白名单路径: {}", path);
    } else if (reason == KeptReason::Database) {
        platform::log("⚠️ 跳过 SQLite 数据库文件: {}", path);
    } else if (reason == KeptReason::Maps) {
        platform::log("🗺️ 跳过地图应用缓存: {} (保护地图图片缓存)", path);
    }
}

}  // namespace sweepwright
