#pragma once

#include <cstdint>
#include <string>

namespace sweepwright::platform {

/// How this process is known to others: its program's name and its number.
struct ThisProcess {
    static std::string program();
    static std::int64_t number();
};

}  // namespace sweepwright::platform
