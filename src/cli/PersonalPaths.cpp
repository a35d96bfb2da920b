#include "cli/PersonalPaths.h"

#include <algorithm>
#include <ranges>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Translation.h"
#include "platform/device/Device.h"
#include "platform/files/FileManager.h"
#include "protection/PersonalData.h"

namespace sweepwright::cli {

namespace {

std::string inThisLanguage(std::string_view english) {
    return translated(english);
}

}  // namespace

std::string personalDataAt(const std::string& path) {
    const std::string& home = platform::Device::current().homeDirectory();
    auto held = personalDataIn(path, home);
    if (const auto target = platform::FileManager::defaultManager().resolvedPath(path)) {
        for (const std::string_view other : personalDataIn(*target, home))
            if (std::ranges::find(held, other) == held.end()) held.push_back(other);
    }
    return fmt::format("{}", fmt::join(held | std::views::transform(inThisLanguage), ", "));
}

}  // namespace sweepwright::cli
