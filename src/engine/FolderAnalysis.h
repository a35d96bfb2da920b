#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "engine/FileCleanerEngine.h"
#include "engine/LinklessFileManager.h"
#include "engine/StorageAnalyzer.h"

namespace sweepwright {

/// The read-only analyses of any folder of the device in place of the app's own ones; "/" is the
/// whole device. Links beneath it are left out, so that no file counts twice. Synchronous.
class FolderAnalysis {
  public:
    /// `folder` is a device path. What `services` refers to must outlive this.
    FolderAnalysis(const EngineServices& services, std::string folder);

    /// An error when the folder can't be read.
    platform::Result<> readiness();

    /// The largest, at most FileCleanerEngine::kMaxLargeFiles, of at least `minSize` bytes.
    std::vector<LargeFileEntry> largeFiles(std::uint64_t minSize);
    /// Groups of two or more files of equal size, which are not compared.
    std::vector<std::vector<DuplicateEntry>> duplicates();
    ExtensionAnalysis extensions();
    /// The visible folders and files right in the folder with what they hold, largest first.
    std::vector<std::pair<std::string, FolderUsage>> usage();

  private:
    LinklessFileManager files_;
    FileCleanerEngine engine_;
    StorageAnalyzer storage_;
    std::string folder_;
};

}  // namespace sweepwright
