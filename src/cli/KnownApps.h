#pragma once

#include <string>

namespace sweepwright::cli {

/// Why `identifier` names no app of the device, in one line with the one that was most likely
/// meant; empty when an app or a data container has it.
std::string whyUnknownApp(const std::string& identifier);

}  // namespace sweepwright::cli
