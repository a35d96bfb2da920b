#include "protection/CleanStatistics.h"

#include <limits>
#include <string_view>
#include <utility>

#include "platform/log/Log.h"
#include "platform/plist/PropertyList.h"
#include "platform/text/DateText.h"

namespace sweepwright {

using platform::PropertyList;

namespace {

constexpr std::string_view kTotalBytes = "totalCleanedBytes";
constexpr std::string_view kCount = "cleanCount";
constexpr std::string_view kLastDate = "lastCleanDate";

}  // namespace

CleanStatistics& CleanStatistics::sharedStatistics() {
    static CleanStatistics statistics(platform::UserDefaults::standard());
    return statistics;
}

CleanStatistics::CleanStatistics(platform::UserDefaults& defaults, Now now)
    : defaults_(defaults), now_(std::move(now)) {}

platform::Result<> CleanStatistics::recordClean(std::uint64_t bytes) {
    auto recorded = defaults_.updateAll([&](PropertyList::Dictionary& stored) {
        const PropertyList* total = stored.find(kTotalBytes);
        const PropertyList* count = stored.find(kCount);
        const std::uint64_t bytesBefore = total ? total->unsignedInteger().value_or(0) : 0;
        const std::int64_t cleansBefore = count ? count->integer().value_or(0) : 0;
        stored.set(std::string(kTotalBytes), bytesBefore + bytes);
        // A number that someone else made that large stays, rather than turn negative.
        const bool full = cleansBefore == std::numeric_limits<std::int64_t>::max();
        stored.set(std::string(kCount), full ? cleansBefore : cleansBefore + 1);
        stored.set(std::string(kLastDate), platform::dateText(now_()));
    });
    if (!recorded) platform::log("❌ 保存 {} 失败: {}", kTotalBytes, recorded.error().description);
    return recorded;
}

CleanStatistics::Totals CleanStatistics::totals() const {
    return {.totalCleanedBytes = defaults_.unsignedInteger(kTotalBytes),
            .cleanCount = defaults_.integer(kCount),
            .lastCleanDate = defaults_.string(kLastDate)};
}

}  // namespace sweepwright
