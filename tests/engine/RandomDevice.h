#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/engine/EngineDevice.h"

namespace sweepwright {

/// What a device holds, made up at random: data of every category, protected paths, links, hidden
/// entries, databases and their side files. The same one can be built more than once.
struct RandomDevice {
    struct Step {
        enum class Kind { File, Folder, Link, Protect, CustomPath };
        Kind kind = Kind::File;
        std::string path;
        std::string target{};     ///< of a link
        std::uint64_t bytes = 0;  ///< of a file
        int age = 0;              ///< of a file, seconds
    };
    std::vector<Step> steps;

    [[nodiscard]] std::unique_ptr<test::EngineDevice> build() const;
    static RandomDevice generate();
};

void showValue(const RandomDevice& device, std::ostream& out);

}  // namespace sweepwright
