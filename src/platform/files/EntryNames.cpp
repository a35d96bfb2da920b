#include "platform/files/EntryNames.h"

namespace sweepwright::platform {

Result<EntryNames> namesOf(FileManager& files, Directory& directory) {
    EntryNames names;
    EntryBuffer buffer;
    for (;;) {
        const auto entries = files.readEntries(directory, buffer);
        if (!entries) return std::unexpected(entries.error());
        if (entries->empty()) return names;
        for (const DirectoryEntry& entry : *entries)
            names.add(entry.name);
    }
}

Result<EntryNames> namesAt(FileManager& files, const std::string& path) {
    auto directory = files.openDirectory(path, LastLink::Follow);
    if (!directory) return std::unexpected(directory.error());
    return namesOf(files, *directory);
}

}  // namespace sweepwright::platform
