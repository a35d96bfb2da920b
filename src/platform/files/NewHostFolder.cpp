#include "platform/files/NewHostFolder.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include <unistd.h>

namespace sweepwright::platform {

namespace fs = std::filesystem;

namespace {

std::unexpected<Error> failed(const std::error_code& why, const std::string& path) {
    return std::unexpected(errorFromErrno(why.value(), path));
}

/// Makes an empty folder whose name begins with `stem`.
Result<std::string> makeStaging(const std::string& stem) {
    const std::string own = stem + std::to_string(getpid());
    for (int attempt = 0;; ++attempt) {
        std::string path = own + "-" + std::to_string(attempt);
        std::error_code why;
        if (fs::create_directory(path, why)) return path;
        if (why) return failed(why, path);
    }
}

}  // namespace

NewHostFolder::NewHostFolder(std::string target, bool targetExists)
    : target_(std::move(target)), targetExists_(targetExists) {}

NewHostFolder::NewHostFolder(NewHostFolder&& other) noexcept
    : target_(std::move(other.target_)),
      staging_(std::exchange(other.staging_, {})),
      targetExists_(other.targetExists_),
      foldersMade_(std::exchange(other.foldersMade_, 0)) {}

NewHostFolder::~NewHostFolder() {
    // Links in it are removed, not followed.
    std::error_code ignored;
    if (!staging_.empty()) fs::remove_all(staging_, ignored);
    // What somebody else put into one of these keeps it and those above it.
    fs::path folder = fs::path(target_).parent_path();
    for (; foldersMade_ > 0; --foldersMade_, folder = folder.parent_path())
        fs::remove(folder, ignored);
}

Result<NewHostFolder> NewHostFolder::begin(const std::string& target) {
    if (target.empty()) return std::unexpected(errorFromErrno(ENOENT, target));
    std::error_code why;
    fs::path path = fs::absolute(target, why).lexically_normal();
    if (why) return failed(why, target);
    if (!path.has_filename()) path = path.parent_path();

    const fs::file_status status = fs::status(path, why);
    const bool exists = fs::is_directory(status);
    if (exists) {
        const bool empty = fs::is_empty(path, why);
        if (why) return failed(why, target);
        if (!empty) return std::unexpected(errorFromErrno(ENOTEMPTY, target));
    } else {
        if (fs::exists(status)) return std::unexpected(errorFromErrno(ENOTDIR, target));
        if (status.type() != fs::file_type::not_found) return failed(why, target);
        if (fs::exists(fs::symlink_status(path, why)))
            return std::unexpected(errorFromErrno(EEXIST, target));
    }

    NewHostFolder folder(path.string(), exists);
    if (!exists)
        if (auto made = folder.makeFoldersAbove(); !made) return std::unexpected(made.error());
    const fs::path stem = exists
                              ? path / ".making-"
                              : path.parent_path() / ("." + path.filename().string() + ".making-");
    auto staging = makeStaging(stem.string());
    if (!staging) return std::unexpected(staging.error());
    folder.staging_ = std::move(*staging);
    return folder;
}

Result<> NewHostFolder::makeFoldersAbove() {
    std::error_code why;
    std::vector<fs::path> missing;
    fs::path folder = fs::path(target_).parent_path();
    for (; !fs::exists(folder, why); folder = folder.parent_path())
        missing.push_back(folder);
    if (!fs::is_directory(folder, why))
        return std::unexpected(errorFromErrno(ENOTDIR, folder.string()));
    for (; !missing.empty(); missing.pop_back()) {
        // One that somebody else has made meanwhile stays, and so do those above it.
        foldersMade_ = fs::create_directory(missing.back(), why) ? foldersMade_ + 1 : 0;
        if (why) return failed(why, missing.back().string());
    }
    return {};
}

Result<> NewHostFolder::finish() {
    if (targetExists_) {
        const auto moved = moveEntries();
        if (!moved) return moved;
    }
    std::error_code why;
    if (targetExists_)
        fs::remove(staging_, why);
    else
        fs::rename(staging_, target_, why);
    if (why) return failed(why, target_);
    staging_.clear();
    foldersMade_ = 0;
    return {};
}

Result<> NewHostFolder::moveEntries() const {
    std::error_code why;
    std::vector<fs::path> entries;
    for (fs::directory_iterator at(staging_, why), end; !why && at != end; at.increment(why))
        entries.push_back(at->path());
    if (why) return failed(why, staging_);
    const auto placeOf = [&](const fs::path& entry) {
        return fs::path(target_) / entry.filename();
    };
    // What somebody else put there since begin() is not replaced.
    for (const fs::path& entry : entries)
        if (fs::exists(fs::symlink_status(placeOf(entry), why)))
            return std::unexpected(errorFromErrno(EEXIST, placeOf(entry).string()));
    for (const fs::path& entry : entries) {
        fs::rename(entry, placeOf(entry), why);
        if (why) return failed(why, placeOf(entry).string());
    }
    return {};
}

}  // namespace sweepwright::platform
