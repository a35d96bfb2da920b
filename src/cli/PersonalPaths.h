#pragma once

#include <string>

namespace sweepwright::cli {

/// What people keep at a device path, by its name and by where it leads: "photos, voice memos".
/// Empty when it is no such place.
std::string personalDataAt(const std::string& path);

}  // namespace sweepwright::cli
