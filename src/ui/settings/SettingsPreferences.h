#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/device/UserDefaults.h"

namespace sweepwright::ui {

/// What a person chose on the settings screen, in the user defaults. A file that can't be read is
/// left alone: readings answer the defaults, and a change is an error.
class SettingsPreferences {
  public:
    static constexpr std::string_view kShowHiddenFiles = "showHiddenFiles";
    static constexpr std::string_view kLargeFileThreshold = "largeFileThreshold";
    static constexpr std::string_view kScanDepth = "scanDepth";

    static constexpr std::uint64_t kDefaultThreshold = 52428800;  ///< bytes
    static constexpr std::string_view kDefaultScanDepth = "深度扫描";

    struct ThresholdChoice {
        std::string_view title;
        std::uint64_t bytes;
    };
    /// What is offered for the large-file threshold, in order.
    static constexpr std::array<ThresholdChoice, 5> kThresholdChoices{{{"10 MB", 10485760},
                                                                       {"50 MB", 52428800},
                                                                       {"100 MB", 104857600},
                                                                       {"500 MB", 524288000},
                                                                       {"1 GB", 1073741824}}};

    /// `defaults` must outlive this.
    explicit SettingsPreferences(platform::UserDefaults& defaults) : defaults_(defaults) {}

    /// Stores the defaults of what is not stored yet: a threshold of 0 counts as not stored.
    platform::Result<> storeMissing();

    /// From how many bytes on a file counts as large.
    [[nodiscard]] std::uint64_t largeFileThreshold() const;
    platform::Result<> setLargeFileThreshold(std::uint64_t bytes);

    /// The boolean under `key`; `fallback` when nothing is stored there.
    [[nodiscard]] bool isOn(std::string_view key, bool fallback) const;
    platform::Result<> setOn(std::string_view key, bool on);

  private:
    [[nodiscard]] platform::Result<> readable() const;
    platform::Result<> store(std::string_view key, platform::PropertyList value);

    platform::UserDefaults& defaults_;
};

}  // namespace sweepwright::ui
