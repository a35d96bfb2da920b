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

}  // namespace sweepwright::platform
