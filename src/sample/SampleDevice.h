#pragma once

#include <chrono>
#include <cstdint>
#include <stop_token>
#include <string>

#include "platform/base/Error.h"

namespace sweepwright::sample {

/// What a sample device holds.
struct SampleDeviceSummary {
    std::uint64_t files = 0;  ///< regular files
    std::uint64_t bytes = 0;  ///< the sum of their sizes; most take no room on the disk
};

/// Makes a believable device tree in `hostFolder`, which must be absent or an empty folder, to try
/// the product on: some 40 apps, every place that a category looks at, and what protection is for.
/// `scale` (1 or more) multiplies the number of files.
///
/// Names, sizes and identifiers are the same each time; the files' ages are counted back from
/// `now`. The tree appears whole or not at all: a failure leaves the folder as it was, and so does
/// a stop (ECANCELED), which is heeded after the file in hand.
platform::Result<SampleDeviceSummary> makeSampleDevice(
    const std::string& hostFolder, unsigned scale,
    std::chrono::system_clock::time_point now = std::chrono::system_clock::now(),
    const std::stop_token& stop = {});

}  // namespace sweepwright::sample
