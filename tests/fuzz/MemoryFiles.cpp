#include "fuzz/MemoryFiles.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "fuzz/Require.h"

namespace sweepwright::fuzz {

using platform::Result;

namespace {

std::unexpected<platform::Error> failure(int number, const std::string& path) {
    return std::unexpected(platform::errorFromErrno(number, path));
}

}  // namespace

std::unique_ptr<platform::HostFileManager> MemoryFiles::nothing() {
    std::string folder = std::filesystem::temp_directory_path() / "sweepwright-fuzz-XXXXXX";
    require(mkdtemp(folder.data()) != nullptr, "a temporary folder can be made");
    auto root = platform::DeviceRoot::open(folder);
    std::filesystem::remove(folder);
    require(root.has_value(), "a temporary folder can be opened");
    return std::make_unique<platform::HostFileManager>(*std::move(root));
}

MemoryFiles::MemoryFiles() : MemoryFiles(nothing()) {}

MemoryFiles::MemoryFiles(std::unique_ptr<platform::HostFileManager> nothing)
    : ForwardingFileManager(*nothing), nothing_(std::move(nothing)) {}

std::set<std::string> MemoryFiles::namesIn(const std::string& folder) const {
    const std::string prefix = folder == "/" ? folder : folder + "/";
    std::set<std::string> names;
    for (auto file = files_.lower_bound(prefix);
         file != files_.end() && file->first.starts_with(prefix); ++file) {
        const std::string rest = file->first.substr(prefix.size());
        names.insert(rest.substr(0, rest.find('/')));
    }
    return names;
}

Result<platform::Directory> MemoryFiles::openDirectory(const std::string& path,
                                                       platform::LastLink /*lastLink*/) {
    if (namesIn(path).empty()) return failure(ENOENT, path);
    listed_.erase(path);
    return platform::Directory(platform::UniqueDescriptor(), path);
}

Result<std::span<const platform::DirectoryEntry>> MemoryFiles::readEntries(
    platform::Directory& directory, platform::EntryBuffer& buffer) {
    buffer.bytes.clear();
    buffer.entries.clear();
    if (!listed_.insert(directory.path()).second) return buffer.entries;
    const auto names = namesIn(directory.path());
    std::size_t bytes = 0;
    for (const std::string& name : names)
        bytes += name.size();
    buffer.bytes.reserve(bytes);  // so that what points into it stays
    for (const std::string& name : names) {
        const std::size_t start = buffer.bytes.size();
        buffer.bytes.insert(buffer.bytes.end(), name.begin(), name.end());
        const bool isFile = files_.contains(platform::joinPath(directory.path(), name));
        buffer.entries.push_back(
            {.name = std::string_view(buffer.bytes.data() + start, name.size()),
             .type = isFile ? platform::FileType::Regular : platform::FileType::Directory});
    }
    return buffer.entries;
}

Result<platform::FileAttributes> MemoryFiles::attributes(const std::string& path,
                                                         platform::LastLink /*lastLink*/) {
    platform::FileAttributes found;
    if (const auto file = files_.find(path); file != files_.end()) {
        found.type = platform::FileType::Regular;
        found.size = file->second.size();
        return found;
    }
    if (namesIn(path).empty()) return failure(ENOENT, path);
    found.type = platform::FileType::Directory;
    return found;
}

Result<std::string> MemoryFiles::readFile(const std::string& path, std::size_t maxBytes) {
    const auto file = files_.find(path);
    if (file == files_.end()) return failure(ENOENT, path);
    if (file->second.size() > maxBytes) return failure(EFBIG, path);
    return file->second;
}

Result<> MemoryFiles::writeFile(const std::string& path, std::string_view content) {
    files_[path] = content;
    return {};
}

Result<> MemoryFiles::createDirectories(const std::string& /*path*/) {
    return {};
}

Result<> MemoryFiles::rename(const std::string& from, const std::string& to) {
    if (files_.contains(to)) return failure(EEXIST, to);
    auto file = files_.extract(from);
    if (file.empty()) return failure(ENOENT, from);
    file.key() = to;
    files_.insert(std::move(file));
    return {};
}

Result<platform::FileLock> MemoryFiles::lock(const std::string& /*path*/) {
    return platform::FileLock(platform::UniqueDescriptor());
}

}  // namespace sweepwright::fuzz
