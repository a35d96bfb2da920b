#include "cli/Wording.h"

#include <fmt/format.h>

#include "cli/Output.h"
#include "cli/Translation.h"

namespace sweepwright::cli::wording {

std::string partHeading(std::string_view name, std::uint64_t bytes, std::size_t entries) {
    if (entries == 1) return told("{}: {}, 1 entry", name, sizeText(bytes));
    return told("{}: {}, {} entries", name, sizeText(bytes), entries);
}

std::string moreEntries(std::size_t count) {
    return told("and {} more (--full shows all)", count);
}

std::string moreApps(std::size_t count, std::uint64_t bytes) {
    if (count == 1) return told("and 1 more app: {} (--full shows all)", sizeText(bytes));
    return told("and {} more apps: {} (--full shows all)", count, sizeText(bytes));
}

std::string keptHeading(std::size_t entries) {
    if (entries == 1) return translated("1 entry stays:");
    return told("{} entries stay:", entries);
}

std::string aboutLargeFiles(std::uint64_t minSize) {
    return told("Files of at least {}, the largest first, 100 at most.", sizeText(minSize));
}

std::string inOwnFiles(std::string_view home) {
    return told(
        "Only Sweepwright's own container is looked at, in Documents and Library/Caches of {}",
        home);
}

std::string inOwnFolders(std::string_view home) {
    return told(
        "Only Sweepwright's own container is looked at, in Documents, Library and tmp of {}", home);
}

std::string inFolder(std::string_view folder) {
    if (folder == "/") return translated("The whole device is looked at. Links are not followed.");
    return told("Links are not followed in {}", folder);
}

}  // namespace sweepwright::cli::wording
