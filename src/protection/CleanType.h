#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace sweepwright {

/// What a clean is about. The values are stored in history records.
enum class CleanType : std::int64_t {
    Cache = 0,
    TempFiles = 1,
    Cookies = 2,
    SystemLogs = 3,
    Downloads = 4,
    ImageCache = 5,
    DatabaseFiles = 6,
    CrashReports = 7,
    OfflineData = 8,
    All = 9,              ///< the nine above, in order
    ThirdPartyApps = 10,  ///< cleaned by the app manager, not by the engine
};

/// The name under which it is recorded and shown; none for any other value.
std::optional<std::string_view> nameOf(CleanType type);

}  // namespace sweepwright
