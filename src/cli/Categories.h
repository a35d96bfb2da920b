#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/FileCleanerEngine.h"

namespace sweepwright::cli {

/// A clean category as the command line knows it.
struct Category {
    std::string_view word;   ///< what a person types: "crash-reports"
    std::string_view label;  ///< what a person reads while it is measured: "crash reports"
    std::string_view key;    ///< its figure's name in a scan: "crashReportsSize"
    CleanType type;
    std::uint64_t ScanResult::* figure;
    std::uint64_t (FileCleanerEngine::*size)();
};

/// The nine categories in the order of their values.
std::span<const Category> categories();

/// The one of that value; nullptr when it is none of the nine.
const Category* categoryOf(CleanType type);

/// The one that `word` names; nullptr when none does.
const Category* categoryNamed(std::string_view word);

/// The nine words, and those in `more`.
std::vector<std::string> categoryWords(std::vector<std::string> more = {});

}  // namespace sweepwright::cli
