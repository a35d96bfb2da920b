#include "cli/Wording.h"

#include <fmt/format.h>

#include "cli/Output.h"

namespace sweepwright::cli::wording {

std::string partHeading(std::string_view name, std::uint64_t bytes, std::size_t entries) {
    if (entries == 1) return fmt::format("{}: {}, 1 entry", name, sizeText(bytes));
    return fmt::format("{}: {}, {} entries", name, sizeText(bytes), entries);
}

std::string moreEntries(std::size_t count) {
    return fmt::format("and {} more (--full shows all)", count);
}

std::string moreApps(std::size_t count, std::uint64_t bytes) {
    if (count == 1) return fmt::format("and 1 more app: {} (--full shows all)", sizeText(bytes));
    return fmt::format("and {} more apps: {} (--full shows all)", count, sizeText(bytes));
}

std::string keptHeading(std::size_t entries) {
    if (entries == 1) return "1 entry stays:";
    return fmt::format("{} entries stay:", entries);
}

std::string aboutLargeFiles(std::uint64_t minSize) {
    return fmt::format("Files of at least {}, the largest first, 100 at most.", sizeText(minSize));
}

std::string inOwnFiles(std::string_view home) {
    return fmt::format(
        "Only Sweepwright's own container is looked at, in Documents and Library/Caches of {}",
        home);
}

std::string inOwnFolders(std::string_view home) {
    return fmt::format(
        "Only Sweepwright's own container is looked at, in Documents, Library and tmp of {}", home);
}

std::string inFolder(std::string_view folder) {
    if (folder == "/") return "The whole device is looked at. Links are not followed.";
    return fmt::format("Links are not followed in {}", folder);
}

}  // namespace sweepwright::cli::wording
