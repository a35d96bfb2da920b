#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Error.h"
#include "platform/device/UserDefaults.h"
#include "protection/CleanHistoryItem.h"

namespace sweepwright {

/// Figures about the entries that the history still holds. They are apart from the running totals
/// of CleanStatistics, which neither deleting nor the limit lessens.
struct CleanHistoryStatistics {
    std::uint64_t totalCleanedBytes = 0;
    std::int64_t totalCleanCount = 0;
    std::optional<CleanHistoryItem::Date> firstCleanDate;  ///< of the oldest entry
    std::optional<CleanHistoryItem::Date> lastCleanDate;   ///< of the newest entry
};

/// The record of the last successful cleans, kept in the user defaults under
/// "CleanHistoryRecords", oldest first. Nothing is kept in memory: every query reads what is stored
/// now, and every change is durable when it returns. Announces nothing; who adds an entry posts
/// "CleanHistoryUpdated". Thread-safe, and safe against other processes.
class CleanHistoryManager {
  public:
    using Now = std::function<CleanHistoryItem::Date()>;

    /// Entries kept; an older one gives way to a new one.
    static constexpr std::size_t kMaxEntries = 100;

    /// `defaults` must outlive this; `now` answers what time it is.
    explicit CleanHistoryManager(platform::UserDefaults& defaults,
                                 Now now = std::chrono::system_clock::now);

    /// The one of UserDefaults::standard(), made on first use.
    static CleanHistoryManager& sharedManager();

    /// Adds an entry dated now. 0 bytes are not recorded; an empty name becomes the type's.
    platform::Result<> saveCleanHistoryWithType(CleanType type, std::uint64_t cleanedBytes,
                                                std::string_view cleanTypeName = {});

    /// All entries, newest first; of one second, the one added last first.
    [[nodiscard]] std::vector<CleanHistoryItem> getAllCleanHistory() const;
    /// The newest `limit` of them.
    [[nodiscard]] std::vector<CleanHistoryItem> getRecentCleanHistory(std::size_t limit) const;

    /// Removes every entry with the item's identifier.
    platform::Result<> deleteHistoryItem(const CleanHistoryItem& item);
    platform::Result<> clearAllHistory();

    [[nodiscard]] CleanHistoryStatistics getStatistics() const;

    /// The name that the history gives to a type; "未知类型" for an unknown one.
    [[nodiscard]] static std::string_view cleanTypeNameForType(CleanType type);

  private:
    platform::UserDefaults& defaults_;
    Now now_;
};

}  // namespace sweepwright
