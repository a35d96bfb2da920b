#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/plist/PropertyList.h"
#include "protection/CleanType.h"

namespace sweepwright {

/// One recorded clean.
struct CleanHistoryItem {
    using Date = std::chrono::system_clock::time_point;

    /// What stands for a missing name and names an unknown type.
    static constexpr std::string_view kUnknownTypeName = "未知类型";

    std::string identifier{};  ///< a UUID, unique to the entry
    Date cleanDate{};          ///< when the clean ended; stored to the whole second
    CleanType cleanType = CleanType::Cache;
    std::string cleanTypeName{};  ///< the name shown at the time of the clean
    std::uint64_t cleanedBytes = 0;

    /// The item that `dictionary` stands for. What is missing or of a wrong type is repaired: a new
    /// UUID, type 0, "未知类型", 0 bytes, and `now` for a date that can't be read. None when there
    /// is no dictionary.
    static std::optional<CleanHistoryItem> initWithDictionary(
        const platform::PropertyList::Dictionary* dictionary, Date now);

    /// The stored form, of five keys. An empty identifier or name is replaced as above.
    [[nodiscard]] platform::PropertyList::Dictionary toDictionary() const;

    bool operator==(const CleanHistoryItem&) const = default;
};

}  // namespace sweepwright
