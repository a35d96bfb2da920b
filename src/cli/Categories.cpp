#include "cli/Categories.h"

#include <algorithm>

namespace sweepwright::cli {

const Category* categoryNamed(std::string_view word) {
    const auto all = categories();
    const auto found = std::ranges::find(all, word, &Category::word);
    return found == all.end() ? nullptr : &*found;
}

std::uint64_t scannedSize(FileCleanerEngine& engine, const Category* category) {
    if (category == nullptr) return engine.scan().totalSize;
    const std::uint64_t size = (engine.*category->size)();
    // A scan counts the custom paths among the caches a second time.
    return category->type == CleanType::Cache ? size + engine.getCustomPathsSize() : size;
}

std::vector<std::string> categoryWords(std::vector<std::string> more) {
    std::vector<std::string> words(categories().size());
    std::ranges::transform(categories(), words.begin(),
                           [](const Category& category) { return std::string(category.word); });
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

}  // namespace sweepwright::cli
