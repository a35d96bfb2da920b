#include "platform/files/FileManager.h"

#include <cstdio>
#include <cstdlib>

namespace sweepwright::platform {

namespace {

FileManager*& defaultFiles() {
    static FileManager* files = nullptr;
    return files;
}

}  // namespace

std::string Directory::pathOf(std::string_view name) const {
    return joinPath(path(), name);
}

FileManager& FileManager::defaultManager() {
    if (defaultFiles() == nullptr) {
        std::fputs("sweepwright: files were asked for before the device was set\n", stderr);
        std::abort();
    }
    return *defaultFiles();
}

void FileManager::setDefaultManager(FileManager& files) {
    defaultFiles() = &files;
}

Result<std::vector<std::string>> FileManager::contentsOfDirectory(const std::string& path) {
    auto directory = openDirectory(path, LastLink::Follow);
    if (!directory) return std::unexpected(directory.error());
    return contentsOfDirectory(*directory);
}

Result<std::vector<std::string>> FileManager::contentsOfDirectory(Directory& directory) {
    std::vector<std::string> names;
    EntryBuffer buffer;
    for (;;) {
        const auto entries = readEntries(directory, buffer);
        if (!entries) return std::unexpected(entries.error());
        if (entries->empty()) return names;
        for (const DirectoryEntry& entry : *entries)
            names.emplace_back(entry.name);
    }
}

bool FileManager::fileExists(const std::string& path) {
    return attributes(path, LastLink::Follow).has_value();
}

bool FileManager::isDirectory(const std::string& path) {
    const auto found = attributes(path, LastLink::Follow);
    return found && found->type == FileType::Directory;
}

}  // namespace sweepwright::platform
