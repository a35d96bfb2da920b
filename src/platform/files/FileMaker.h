#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// Fills a tree of its own, which nobody else knows yet, and quickly: nothing is synced. Paths and
/// errors are those of FileManager. No clean has one.
class FileMaker {
  public:
    virtual ~FileMaker() = default;

    /// Creates a regular file with `content`. EEXIST if something is there.
    virtual Result<> createFile(const std::string& path, std::string_view content) = 0;
    /// Creates a regular file of `size` bytes that holds no blocks.
    virtual Result<> createSparseFile(const std::string& path, std::uint64_t size) = 0;
    /// As FileManager::createDirectories().
    virtual Result<> createDirectories(const std::string& path) = 0;
    virtual Result<> createSymbolicLink(const std::string& path, const std::string& target) = 0;
    /// Links are not followed.
    virtual Result<> setModificationDate(const std::string& path,
                                         std::chrono::system_clock::time_point date) = 0;
};

}  // namespace sweepwright::platform
