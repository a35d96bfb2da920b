#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/Require.h"

/// What every target defines: libFuzzer calls it with bytes it made up, and Replay.cpp with those
/// of files.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace sweepwright::fuzz {

inline std::string_view asText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace sweepwright::fuzz
