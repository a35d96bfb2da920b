#include "sample/SampleDevice.h"

#include <cerrno>
#include <string_view>

#include <fmt/format.h>

#include "platform/files/HostFileManager.h"
#include "platform/files/NewHostFolder.h"
#include "sample/internal/SampleDeviceBuilder.h"

namespace sweepwright::sample {

using platform::Error;
using platform::Result;

namespace {

std::unexpected<Error> failed(Error error, std::string_view doing) {
    error.description = fmt::format("{}: {}", doing, error.description);
    return std::unexpected(std::move(error));
}

}  // namespace

Result<SampleDeviceSummary> makeSampleDevice(const std::string& hostFolder, unsigned scale,
                                             std::chrono::system_clock::time_point now,
                                             const std::stop_token& stop) {
    constexpr std::string_view kDoing = "can't make a sample device";
    if (scale == 0) return failed(platform::errorFromErrno(EINVAL, "scale 0"), kDoing);
    auto folder = platform::NewHostFolder::begin(hostFolder);
    if (!folder) return failed(folder.error(), kDoing);
    const auto root = platform::DeviceRoot::open(folder->staging());
    if (!root) return failed(root.error(), kDoing);

    const std::string inFolder = fmt::format("{} in {}", kDoing, hostFolder);
    platform::HostFileManager files(*root);
    const auto made = SampleDeviceBuilder(files, scale, now, stop).build();
    if (stop.stop_requested()) {
        return failed(
            {std::string(platform::kPosixErrorDomain), ECANCELED, "interrupted; nothing was made"},
            inFolder);
    }
    if (!made) return failed(made.error(), inFolder);
    const auto placed = folder->finish();
    if (!placed) return failed(placed.error(), inFolder);
    return *made;
}

}  // namespace sweepwright::sample
