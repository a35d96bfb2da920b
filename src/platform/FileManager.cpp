#include "platform/FileManager.h"

#include <algorithm>

#include <unistd.h>

namespace sweepwright::platform {

UniqueDescriptor::~UniqueDescriptor() {
    if (descriptor_ >= 0) close(descriptor_);
}

std::string Directory::pathOf(std::string_view name) const {
    return joinPath(path(), name);
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

std::string joinPath(std::string_view directory, std::string_view name) {
    while (directory.ends_with('/'))
        directory.remove_suffix(1);
    std::string joined;
    joined.reserve(directory.size() + 1 + name.size());
    joined.append(directory).append("/").append(name);
    return joined;
}

bool isEntryName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

std::string_view lastPathComponent(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos || path.size() == 1 ? path : path.substr(slash + 1);
}

std::string_view pathExtension(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return name.substr(dot + 1);
}

std::string lowerCased(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

}  // namespace sweepwright::platform
