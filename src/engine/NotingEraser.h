#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/CleanObserver.h"
#include "engine/Eraser.h"
#include "engine/HidingFileManager.h"
#include "platform/tree/TreeWalker.h"

namespace sweepwright {

/// Stands in for removal in a preview: notes what would go and hides it from the rest of the run.
/// Several threads may remove entries at once.
class NotingEraser final : public Eraser, public CleanObserver {
  public:
    /// `files` is what the run works on, `observer`, if any, who hears of what can't be read; both
    /// must outlive this.
    NotingEraser(HidingFileManager& files, CleanObserver* observer)
        : files_(files),
          walker_(files, platform::TreeWalker::kDefaultThreads, crew_),
          wholeWalker_(files.whole(), platform::TreeWalker::kDefaultThreads, crew_),
          observer_(observer) {}

    platform::Removal removeEntry(const platform::Directory& parent, const std::string& name,
                                  const platform::WalkRules& rules) override;
    platform::Crew* crew() override { return crew_.get(); }
    std::int32_t runShellCommand(const std::string& command,
                                 const platform::Directory& directory) override;
    void settle() override {}
    platform::Result<> removeAllCachedResponses() override { return {}; }
    platform::Result<> deleteAllCookies() override { return {}; }

    void removed(const std::string& path, std::uint64_t bytes) override;
    void kept(const std::string& path, KeptReason reason, const std::string& by) override;
    void unreadable(const std::string& folder, const platform::Error& error) override {
        if (observer_ != nullptr) observer_->unreadable(folder, error);
    }
    void finished(const CleanPart& part, std::uint64_t bytes) override;

    /// What was noted, with the total that the run came to.
    CleanPreview take(std::uint64_t wouldFree);

  private:
    platform::Removal removeFolder(const platform::Directory& parent, const std::string& name,
                                   const platform::WalkRules& rules);
    /// A folder on the way to a mount point.
    struct Around {
        platform::Directory directory;
        platform::WalkRules rules;  ///< of its entries
        bool counts = true;
    };

    /// Notes as gone all in `directory` but what leads to the mount points, which are sorted; their
    /// bytes. The folders on the way are gone through one by one, however deep.
    std::uint64_t noteAround(platform::Directory directory, const platform::WalkRules& rules,
                             const std::vector<std::string>& mountPoints);
    /// Notes one entry of such a folder as gone, or puts it into `left` if it is another one.
    std::uint64_t noteBeside(const Around& around, const std::string& name,
                             const std::vector<std::string>& mountPoints,
                             std::vector<Around>& left);
    /// What the command would come to where the directory's path breaks it.
    std::optional<std::int32_t> statusOfOddCommand(const platform::Directory& directory);

    HidingFileManager& files_;
    std::shared_ptr<platform::Crew> crew_ = std::make_shared<platform::Crew>();
    platform::TreeWalker walker_;
    platform::TreeWalker wholeWalker_;  ///< of the device with what is hidden
    CleanObserver* observer_;
    std::mutex mutex_;  ///< guards what was noted
    CleanPreview preview_;
    std::size_t entriesOfParts_ = 0;  // of the parts that are finished
    std::set<std::pair<std::string, KeptReason>> seen_;
};

}  // namespace sweepwright
