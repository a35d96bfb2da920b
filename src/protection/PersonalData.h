#pragma once

#include <string_view>
#include <vector>

namespace sweepwright {

/// What people keep at a device path, for who would let a clean empty it: "photos", "messages",
/// "documents of apps", "a whole home" and the like, each once; nothing for any other place. A
/// path holds what lies at it and beneath it, and is part of what it lies in. By the name alone:
/// "." and ".." and links are the caller's. `home` is the app's home directory.
std::vector<std::string_view> personalDataIn(std::string_view path, std::string_view home);

}  // namespace sweepwright
