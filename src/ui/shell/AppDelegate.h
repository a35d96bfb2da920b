#pragma once

#include <string>
#include <string_view>

#include "platform/device/Device.h"
#include "platform/files/FileManager.h"

namespace sweepwright::ui {

/// What happens once at every start, before there is a window.
class AppDelegate {
  public:
    /// Both must outlive this.
    AppDelegate(const platform::Device& device, platform::FileManager& files)
        : device_(device), files_(files) {}

    /// Puts the sample files in place. The language is loaded by then.
    bool applicationDidFinishLaunching();

    /// Writes 30 files of sample junk, about 400 KB, so that the first scan has something to find.
    /// Files of a former start are overwritten; what can't be written is left out.
    void createTestFiles();

  private:
    void writeFiles(const std::string& directory, std::string_view prefix,
                    std::string_view extension, int count, const std::string& content);

    const platform::Device& device_;
    platform::FileManager& files_;
};

}  // namespace sweepwright::ui
