#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/FileCleanerEngine.h"

namespace sweepwright {

/// A folder that a category empties, or whose entries it picks by their names.
struct Place {
    std::string_view folder;                        ///< beneath the home directory
    bool (*rule)(std::string_view name) = nullptr;  ///< picks entries; none for the folder itself
    bool isListed = true;
};

/// All that is told of a clean category, but for its name, which stands beside its value in
/// protection/CleanType.
struct Category {
    CleanType type;
    std::string_view word;   ///< what a person types: "crash-reports"
    std::string_view label;  ///< what a person reads while it is measured: "crash reports"
    std::string_view key;    ///< its figure's name in a scan: "crashReportsSize"
    std::uint64_t ScanResult::* figure;
    /// What the category looks into by this table alone; what it does beside that stands in the
    /// operations below.
    std::span<const Place> places;
    std::uint64_t (FileCleanerEngine::*size)();
    /// None where there is no list of paths: that of caches has sizes, offline data has no list.
    std::vector<std::string> (FileCleanerEngine::*list)();
    std::uint64_t (FileCleanerEngine::*clean)(const FileCleanerEngine::Progress& progress,
                                              FileCleanerEngine::ErrorSlot& error);
};

/// The nine categories in the order of their values.
std::span<const Category> categories();

/// The one of that value; nullptr when it is none of the nine.
const Category* categoryOf(CleanType type);

}  // namespace sweepwright
