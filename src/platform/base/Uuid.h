#pragma once

#include <string>

namespace sweepwright::platform {

/// A fresh random UUID (version 4) in its usual text, uppercase:
/// "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
std::string newUuid();

}  // namespace sweepwright::platform
