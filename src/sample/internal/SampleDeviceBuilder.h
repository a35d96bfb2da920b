#pragma once

#include <chrono>
#include <cstdint>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/files/FileMaker.h"
#include "sample/SampleDevice.h"
#include "sample/internal/SampleDeviceCatalog.h"

namespace sweepwright::sample {

/// A UUID, in the form devices name containers by, that is always the same for the same `seed`.
std::string sampleUuid(std::string_view seed);

/// Lays the catalogue out on an empty device. Used once.
class SampleDeviceBuilder {
  public:
    /// `files` must outlive this.
    SampleDeviceBuilder(platform::FileMaker& files, unsigned scale,
                        std::chrono::system_clock::time_point now, std::stop_token stop = {});

    /// Makes everything; what was made before an error, or a stop (ECANCELED), stays.
    platform::Result<SampleDeviceSummary> build();

  private:
    platform::Result<> layPlaces();
    platform::Result<> layHeap(const catalog::Heap& heap, const std::string& folder);
    platform::Result<> layText(const std::string& path, std::string_view content);
    platform::Result<> layLink(const std::string& path, const std::string& target);
    platform::Result<> laySparse(const std::string& path, std::uint64_t bytes,
                                 std::chrono::seconds age);

    platform::Result<> layApp(const catalog::App& app);
    platform::Result<> layBundle(const catalog::App& app);
    platform::Result<> layData(const catalog::App& app, const std::string& data);
    platform::Result<> layHeapsOf(const catalog::App& app, const std::string& data);

    /// Makes the folder `path` and those above it, each only once.
    platform::Result<> folder(const std::string& path);
    platform::Result<> folderAbove(const std::string& path);
    /// Dates and counts a file that was just made.
    platform::Result<> finishFile(const std::string& path, std::uint64_t bytes,
                                  std::chrono::seconds age);
    [[nodiscard]] std::string expanded(std::string_view path) const;

    platform::FileMaker& files_;
    unsigned scale_;
    std::chrono::system_clock::time_point now_;
    std::stop_token stop_;
    std::string home_;
    std::unordered_set<std::string> folders_;
    SampleDeviceSummary summary_;
};

}  // namespace sweepwright::sample
