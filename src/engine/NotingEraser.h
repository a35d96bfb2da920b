#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/CleanObserver.h"
#include "engine/Eraser.h"
#include "engine/HidingFileManager.h"

namespace sweepwright {

/// Stands in for removal in a preview: notes what would go and hides it from the rest of the run.
class NotingEraser final : public Eraser, public CleanObserver {
  public:
    /// `files` is what the run works on; it must outlive this.
    explicit NotingEraser(HidingFileManager& files) : files_(files) {}

    platform::Removal removeEntry(const platform::Directory& parent, const std::string& name,
                                  const platform::WalkRules& rules) override;
    std::int32_t runShellCommand(const std::string& command,
                                 const platform::Directory& directory) override;
    void settle() override {}
    platform::Result<> removeAllCachedResponses() override { return {}; }
    platform::Result<> deleteAllCookies() override { return {}; }

    void removed(const std::string& path, std::uint64_t bytes) override;
    void kept(const std::string& path, KeptReason reason, const std::string& by) override;
    void finished(const CleanPart& part, std::uint64_t bytes) override;

    /// What was noted, with the total that the run came to.
    CleanPreview take(std::uint64_t wouldFree);

  private:
    /// Notes as gone all of directory `name` but what leads to the mount points; their bytes.
    std::uint64_t noteAround(const platform::Directory& parent, const std::string& name,
                             const platform::WalkRules& rules,
                             const std::vector<std::string>& mountPoints);
    /// What the command would come to where the directory's path breaks it.
    std::optional<std::int32_t> statusOfOddCommand(const platform::Directory& directory);

    HidingFileManager& files_;
    CleanPreview preview_;
    std::size_t entriesOfParts_ = 0;  // of the parts that are finished
    std::set<std::pair<std::string, KeptReason>> seen_;
};

}  // namespace sweepwright
